#include <gtest/gtest.h>

#include "edit/thumbnail_edit.h"
#include "support/thumb_jpeg.h"
#include "tree/walk.h"

namespace {

const char *const kNewApp1 =
    "225'Exif'[1 2:0[3:3 282 283 296 60] 2:1[3:6 259 282 283 296 513 514 60]]";

uint32_t ThumbLength(CExifDoc *doc)
{
    return FindThumbLengthTag(doc)->m_value;
}

struct LimitCase {
    size_t size;
    int result;
};

class NewApp1Limit : public ::testing::TestWithParam<LimitCase> {};

// A JPEG without APP1 gets one built for the thumbnail, behind APP0.
TEST_P(NewApp1Limit, BoundsTheThumbnail)
{
    MemoryJpeg jpeg;
    jpeg.Segment(0xE0, JfifPayload());
    auto doc = jpeg.Load();
    std::string before = TreeShape(*doc);
    std::vector<uint8_t> thumb = FakeThumbnail(GetParam().size);
    ExifBuffer buffer = BufferOf(thumb);

    ASSERT_EQ(GetParam().result, zExifSetThumbnailData(doc.get(), &buffer));
    if (GetParam().result != 0) {
        EXPECT_EQ(before, TreeShape(*doc));
        EXPECT_EQ(0, zExifIsThumbnailExist(doc.get()));
        return;
    }
    EXPECT_EQ(std::string("216 224'JFIF' ") + kNewApp1 + " 217", TreeShape(*doc));
    EXPECT_EQ(thumb.size(), ThumbLength(doc.get()));
    EXPECT_EQ(THUMB_TYPE_JPEG, zExifGetThumbType(doc.get()));
    EXPECT_EQ(0, doc->m_bigEndian);
    DropSource(*doc);  // what was set must not need the source
    EXPECT_EQ(thumb, GetThumbnail(doc.get()));
}

INSTANTIATE_TEST_SUITE_P(AtTheBound, NewApp1Limit,
                         ::testing::Values(LimitCase{THUMB_NEW_LIMIT, 0}, LimitCase{THUMB_NEW_LIMIT + 1, -1}));

TEST(NewApp1, GoesBehindSoiWithoutApp0AndNowhereWithoutEither)
{
    MemoryJpeg jpeg;
    jpeg.Segment(0xDB, {0, 1});
    auto doc = jpeg.Load();
    std::vector<uint8_t> thumb = FakeThumbnail(50);
    ExifBuffer buffer = BufferOf(thumb);
    ASSERT_EQ(0, zExifSetThumbnailData(doc.get(), &buffer));
    EXPECT_EQ(std::string("216 ") + kNewApp1 + " 219 217", TreeShape(*doc));

    CExifDoc empty;
    empty.m_format = FORMAT_JPEG;
    EXPECT_EQ(-1, zExifSetThumbnailData(&empty, &buffer));
    EXPECT_EQ(nullptr, empty.m_root);
    EXPECT_EQ(nullptr, empty.m_thumbTag);
}

class ReplaceLimit : public ::testing::TestWithParam<LimitCase> {};

// 6,900 - 3,000 + 60,000 is exactly the limit.
TEST_P(ReplaceLimit, CountsTheApp1AndTheOldThumbnail)
{
    std::vector<uint8_t> old = FakeThumbnail(3000, 1);
    InMemoryExifJpeg file(60000, old, {{{271, 2, 4, 0}}, OldThumbIfd(3000)});
    std::string before = TreeShape(*file.doc);
    std::vector<uint8_t> thumb = FakeThumbnail(GetParam().size, 2);
    ExifBuffer buffer = BufferOf(thumb);

    ASSERT_EQ(GetParam().result, zExifSetThumbnailData(file.doc.get(), &buffer));
    EXPECT_EQ(before, TreeShape(*file.doc));
    EXPECT_EQ(GetParam().result == 0 ? thumb : old, GetThumbnail(file.doc.get()));
    EXPECT_EQ(GetParam().result == 0 ? thumb.size() : old.size(), ThumbLength(file.doc.get()));
}

INSTANTIATE_TEST_SUITE_P(AtTheBound, ReplaceLimit, ::testing::Values(LimitCase{6900, 0}, LimitCase{6901, -1}));

TEST(ReplaceThumbnail, NeedsNoSourceAndSetsExactlyTheJpegBit)
{
    InMemoryExifJpeg file(400, FakeThumbnail(200), {{{271, 2, 4, 0}}, OldThumbIfd(200)});
    file.doc->m_thumbType = 0x801;
    std::vector<uint8_t> thumb = FakeThumbnail(300, 9);
    ExifBuffer buffer = BufferOf(thumb);
    ASSERT_EQ(0, zExifSetThumbnailData(file.doc.get(), &buffer));
    EXPECT_EQ(uint32_t(THUMB_TYPE_JPEG), zExifGetThumbType(file.doc.get()));
    DropSource(*file.doc);
    EXPECT_EQ(thumb, GetThumbnail(file.doc.get()));
}

// An APP1 with a TIFF block and no thumbnail: IFD 1 is made or rebuilt, IFD 0
// made when it is missing.
struct AddCase {
    const char *name;
    std::vector<std::vector<HandTag>> ifds;
    bool dropIfd0;
    const char *shape;
};

class AddToApp1 : public ::testing::TestWithParam<AddCase> {};

TEST_P(AddToApp1, BuildsTheThumbnailIfd)
{
    InMemoryExifJpeg file(200, {}, GetParam().ifds);
    if (GetParam().dropIfd0) {
        CNode *header = file.app1->m_child;
        CNode *ifd0 = header->m_next;
        header->m_next = ifd0->m_next;
        ifd0->m_next = nullptr;
        DeleteTree(ifd0);
    }
    std::vector<uint8_t> thumb = FakeThumbnail(500);
    ExifBuffer buffer = BufferOf(thumb);
    ASSERT_EQ(0, zExifSetThumbnailData(file.doc.get(), &buffer));
    EXPECT_EQ(GetParam().shape, IfdShape(file.app1));
    EXPECT_EQ(1, zExifIsThumbnailExist(file.doc.get()));
    EXPECT_EQ(nullptr, file.doc->m_exifIfdTag);
    EXPECT_EQ(thumb, GetThumbnail(file.doc.get()));
}

INSTANTIATE_TEST_SUITE_P(
    Shapes, AddToApp1,
    ::testing::Values(
        AddCase{"Ifd0Only", {{{271, 2, 4, 0}}}, false, "1 2:0[3:1 271 60] 2:1[3:6 259 282 283 296 513 514 60]"},
        AddCase{"Ifd1WithoutThumbnail",
                {{{271, 2, 4, 0}}, {{259, 3, 1, 6}, {34665, 4, 1, 0}}, {{256, 3, 1, 1}}},
                false,
                "1 2:0[3:1 271 60] 2:1[3:6 259 282 283 296 513 514 60]"},
        AddCase{"Ifd1Alone",
                {{{271, 2, 4, 0}}, {{259, 3, 1, 6}, {34665, 4, 1, 0}}},
                true,
                "1 2:0[3:3 282 283 296 60] 2:1[3:6 259 282 283 296 513 514 60]"}),
    [](const ::testing::TestParamInfo<AddCase> &param) { return std::string(param.param.name); });

TEST(AddToApp1, IsBoundedLikeAReplacementOfNothing)
{
    for (LimitCase c : {LimitCase{3900, 0}, LimitCase{3901, -1}}) {
        InMemoryExifJpeg file(60000, {}, {{{271, 2, 4, 0}}});
        std::string before = TreeShape(*file.doc);
        std::vector<uint8_t> thumb = FakeThumbnail(c.size);
        ExifBuffer buffer = BufferOf(thumb);
        EXPECT_EQ(c.result, zExifSetThumbnailData(file.doc.get(), &buffer)) << c.size;
        if (c.result != 0) {
            EXPECT_EQ(before, TreeShape(*file.doc));
        }
    }
}

// The payload that the tree would give counts too: here a 60,000-byte value
// that the source's small APP1 never had.
TEST(ThumbnailBudget, CountsWhatTheTreeHolds)
{
    std::vector<uint8_t> maker(60000, 7);
    for (bool withThumbnail : {false, true}) {
        for (LimitCase c : {LimitCase{3000, 0}, LimitCase{4000, -1}}) {
            std::vector<std::vector<HandTag>> ifds = {{{37500, 7, 60000, 0}}};
            if (withThumbnail) ifds.push_back(OldThumbIfd(200));
            InMemoryExifJpeg file(400, FakeThumbnail(200), ifds);
            AsTag(FindNode(file.app1, 37500))->SetData(maker.data(), int32_t(maker.size()));
            std::string before = TreeShape(*file.doc);
            std::vector<uint8_t> thumb = FakeThumbnail(c.size);
            ExifBuffer buffer = BufferOf(thumb);
            EXPECT_EQ(c.result, zExifSetThumbnailData(file.doc.get(), &buffer)) << c.size << " " << withThumbnail;
            if (c.result != 0) {
                EXPECT_EQ(before, TreeShape(*file.doc));
            }
        }
    }
}

// An APP1 of XMP holds no block: it stays as it is, behind a new Exif APP1.
TEST(NewApp1, StandsInFrontOfAnApp1WithoutBlock)
{
    MemoryJpeg jpeg;
    jpeg.Segment(0xE0, JfifPayload()).Segment(0xE1, {'h', 't', 't', 'p', ':', '/', '/', 'n', 's'});
    auto doc = jpeg.Load();
    std::vector<uint8_t> thumb = FakeThumbnail(100);
    ExifBuffer buffer = BufferOf(thumb);
    ASSERT_EQ(0, zExifSetThumbnailData(doc.get(), &buffer));
    EXPECT_EQ(std::string("216 224'JFIF' ") + kNewApp1 + " 225'http' 217", TreeShape(*doc));
    EXPECT_EQ(MarkersOf(*doc)[2], doc->m_exifMarker);
    EXPECT_EQ(thumb, GetThumbnail(doc.get()));
}

// Nothing is stored that would leave a tag 513 without bytes.
TEST(SetThumbnail, RefusesEmptyAndMissingBuffers)
{
    InMemoryExifJpeg file(400, FakeThumbnail(200), {{{271, 2, 4, 0}}, OldThumbIfd(200)});
    std::vector<uint8_t> thumb = FakeThumbnail(10);
    ExifBuffer empty{thumb.data(), 0};
    ExifBuffer noData{nullptr, 10};
    std::string before = TreeShape(*file.doc);
    EXPECT_EQ(-1, zExifSetThumbnailData(file.doc.get(), &empty));
    EXPECT_EQ(-1, zExifSetThumbnailData(file.doc.get(), &noData));
    EXPECT_EQ(-1, zExifSetThumbnailData(file.doc.get(), nullptr));
    EXPECT_EQ(-1, zExifSetThumbnailData(nullptr, &empty));
    EXPECT_EQ(before, TreeShape(*file.doc));
    EXPECT_EQ(200u, ThumbLength(file.doc.get()));

    MemoryJpeg jpeg;
    auto bare = jpeg.Load();
    EXPECT_EQ(-1, zExifSetThumbnailData(bare.get(), &empty));
    EXPECT_EQ(0, zExifIsThumbnailExist(bare.get()));
}

TEST(SetThumbDataEx, IsNeverDone)
{
    InMemoryExifJpeg file(400, FakeThumbnail(200), {{{271, 2, 4, 0}}, OldThumbIfd(200)});
    std::vector<uint8_t> thumb = FakeThumbnail(10);
    ExifBuffer buffer = BufferOf(thumb);
    EXPECT_EQ(-1, zExifSetThumbDataEx(file.doc.get(), &buffer, THUMB_TYPE_JPEG));
    EXPECT_EQ(-1, zExifSetThumbDataEx(nullptr, nullptr, 0));
    EXPECT_EQ(0, zExifIsThumbnailExist(nullptr));
    EXPECT_EQ(0u, zExifGetThumbType(nullptr));
}

}  // namespace
