#include <gtest/gtest.h>

#include <cstdlib>

#include "streams/stream.h"
#include "support/thumb_jpeg.h"
#include "tree/walk.h"

namespace {

const std::vector<HandTag> kIfd0 = {{271, 2, 4, 0}};

// Bytes that a failed read must overwrite in the caller's buffer record.
unsigned char g_stale[1];

TEST(ReadThumbnail, ReadsTheSourceOnceAndKeepsACopy)
{
    std::vector<uint8_t> old = FakeThumbnail(200, 3);
    InMemoryExifJpeg file(400, old, {kIfd0, OldThumbIfd(200)});
    EXPECT_EQ(old, GetThumbnail(file.doc.get()));
    EXPECT_EQ(1, file.doc->m_thumbLoaded);
    DropSource(*file.doc);
    EXPECT_EQ(old, GetThumbnail(file.doc.get()));
}

TEST(ReadThumbnail, FindsALengthTagThatStandsInFront)
{
    std::vector<uint8_t> old = FakeThumbnail(200, 3);
    InMemoryExifJpeg file(400, old, {kIfd0, {{514, 4, 1, 200}, {513, 4, 1, kOldThumbOffset}}});
    EXPECT_EQ(old, GetThumbnail(file.doc.get()));
}

struct Placement {
    const char *name;
    uint32_t offset;
    uint32_t size;
    bool found;
};

class ThumbnailPlacement : public ::testing::TestWithParam<Placement> {};

// The TIFF block starts at byte 30 of a 431-byte file, whose last segment, a
// DQT, lies behind the APP1: the source ends at offset 401 of the block.
TEST_P(ThumbnailPlacement, StaysInsideTheSource)
{
    InMemoryExifJpeg file(400, FakeThumbnail(200), {kIfd0, {{513, 4, 1, GetParam().offset}, {514, 4, 1, GetParam().size}}});
    ExifBuffer out{g_stale, 99};
    int result = zExifGetThumbnailData(file.doc.get(), &out);
    EXPECT_EQ(GetParam().found ? 0 : -1, result);
    EXPECT_EQ(GetParam().found ? GetParam().size : 0u, out.size);
    if (!GetParam().found) {
        EXPECT_EQ(nullptr, out.data);
        EXPECT_EQ(0, file.doc->m_thumbLoaded);
    }
    std::free(out.data);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ThumbnailPlacement,
    ::testing::Values(Placement{"OffsetZero", 0, 10, false}, Placement{"SizeZero", 100, 0, false},
                      Placement{"UpToTheFileEnd", 100, 301, true}, Placement{"OneBytePastTheEnd", 100, 302, false},
                      Placement{"HugeSize", 100, 0x7FFFFFF0u, false}, Placement{"NegativeOffset", 0x80000000u, 10, false},
                      Placement{"SizeWrapsTheOffset", 0xFFFFFFF0u, 0x20, false}),
    [](const ::testing::TestParamInfo<Placement> &param) { return std::string(param.param.name); });

TEST(ReadThumbnail, FailsCleanlyWithoutWhatItNeeds)
{
    InMemoryExifJpeg noLength(400, FakeThumbnail(200), {kIfd0, {{513, 4, 1, kOldThumbOffset}}});
    EXPECT_TRUE(GetThumbnail(noLength.doc.get()).empty());

    InMemoryExifJpeg noTag(400, FakeThumbnail(200), {kIfd0, OldThumbIfd(200)});
    noTag.doc->m_thumbTag = nullptr;
    EXPECT_TRUE(GetThumbnail(noTag.doc.get()).empty());

    InMemoryExifJpeg noSource(400, FakeThumbnail(200), {kIfd0, OldThumbIfd(200)});
    DropSource(*noSource.doc);
    EXPECT_TRUE(GetThumbnail(noSource.doc.get()).empty());

    // A tag 513 that no APP1 holds has no block to count its offset in.
    CExifDoc orphan;
    orphan.m_format = FORMAT_JPEG;
    HangTiffBlock(orphan, nullptr, {kIfd0, OldThumbIfd(200)});
    EXPECT_TRUE(GetThumbnail(&orphan).empty());
}

// A loaded thumbnail whose tag lost its bytes has nothing to hand out.
TEST(ReadThumbnail, LoadedWithoutBytesGivesNothing)
{
    InMemoryExifJpeg file(400, FakeThumbnail(200), {kIfd0, OldThumbIfd(200)});
    file.doc->m_thumbLoaded = 1;
    ExifBuffer out{g_stale, 99};
    EXPECT_EQ(-1, zExifGetThumbnailData(file.doc.get(), &out));
    EXPECT_EQ(nullptr, out.data);
    EXPECT_EQ(0u, out.size);
}

TEST(ReadThumbnail, CountsTiffOffsetsFromTheFileStart)
{
    std::vector<uint8_t> file(600, 0);
    std::vector<uint8_t> thumb = FakeThumbnail(250, 5);
    std::copy(thumb.begin(), thumb.end(), file.begin() + 300);
    CExifDoc doc;
    doc.m_format = FORMAT_TIFF;
    CreateMemoryStream(&doc.m_stream, file.data(), int32_t(file.size()));
    HangTiffBlock(doc, nullptr, {kIfd0, {{513, 4, 1, 300}, {514, 4, 1, 250}}});
    EXPECT_EQ(thumb, GetThumbnail(&doc));
}

// Only the type of the loaded thumbnail is served from memory; another type
// with the JPEG bit reads the source, which never overwrites a new thumbnail.
TEST(ThumbDataEx, ServesByType)
{
    std::vector<uint8_t> old = FakeThumbnail(200, 3);
    InMemoryExifJpeg file(400, old, {kIfd0, OldThumbIfd(200)});
    ExifBuffer out{g_stale, 99};
    EXPECT_EQ(-1, zExifGetThumbDataEx(file.doc.get(), &out, 0x100));
    EXPECT_EQ(g_stale, out.data);

    std::vector<uint8_t> replaced = FakeThumbnail(200, 8);
    ExifBuffer buffer = BufferOf(replaced);
    ASSERT_EQ(0, zExifSetThumbnailData(file.doc.get(), &buffer));
    ASSERT_EQ(0, zExifGetThumbDataEx(file.doc.get(), &out, 0x800));
    EXPECT_EQ(replaced, BytesOf(out));
    std::free(out.data);
    ASSERT_EQ(0, zExifGetThumbDataEx(file.doc.get(), &out, 0x801));
    EXPECT_EQ(old, BytesOf(out));
    std::free(out.data);
    EXPECT_EQ(replaced, GetThumbnail(file.doc.get()));

    EXPECT_EQ(-1, zExifGetThumbDataEx(nullptr, &out, 0x800));
}

// The APP1's payload in memory serves once the source is closed, as after a
// save; a thumbnail beyond the segment then has nowhere to come from.
TEST(ThumbDataEx, ReadsALoadedPayloadWithoutTheSource)
{
    std::vector<uint8_t> old = FakeThumbnail(200, 3);
    InMemoryExifJpeg file(400, old, {kIfd0, OldThumbIfd(200)});
    unsigned char *payload = nullptr;
    int32_t size = 0;
    ASSERT_EQ(1, file.app1->Load(file.doc->m_stream, &payload, &size));
    DropSource(*file.doc);
    ExifBuffer out{nullptr, 0};
    ASSERT_EQ(0, zExifGetThumbDataEx(file.doc.get(), &out, 0x801));
    EXPECT_EQ(old, BytesOf(out));
    std::free(out.data);

    AsTag(FindNode(file.app1, 514))->m_value = 295;
    EXPECT_EQ(-1, zExifGetThumbDataEx(file.doc.get(), &out, 0x801));
    EXPECT_EQ(nullptr, out.data);
}

TEST(ThumbDataEx, NeedsAThumbnail)
{
    InMemoryExifJpeg file(400, {}, {kIfd0});
    ExifBuffer out{g_stale, 99};
    EXPECT_EQ(-1, zExifGetThumbDataEx(file.doc.get(), &out, 0x800));
    EXPECT_EQ(-1, zExifGetThumbnailData(file.doc.get(), &out));
    EXPECT_EQ(g_stale, out.data);
    EXPECT_EQ(-1, zExifGetThumbnailData(nullptr, &out));
}

}  // namespace
