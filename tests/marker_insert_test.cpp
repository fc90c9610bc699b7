#include <gtest/gtest.h>

#include <cstring>

#include "support/exif_block.h"
#include "support/thumb_jpeg.h"
#include "tree/walk.h"

namespace {

// A payload in a buffer of the array allocator, as the reader hands it out.
struct Payload {
    explicit Payload(const std::vector<uint8_t> &bytes) : buffer{new unsigned char[bytes.size()], uint32_t(bytes.size())}
    {
        std::memcpy(buffer.data, bytes.data(), bytes.size());
    }
    ~Payload()
    {
        if (!taken) delete[] buffer.data;
    }
    int InsertInto(CExifDoc *doc)
    {
        int result = zExifInsertExifMarker(doc, &buffer);
        taken = result == 0;
        return result;
    }

    ExifBuffer buffer;
    bool taken = false;
};

std::string DateOf(CExifDoc *doc)
{
    ExifTagValue value{0, 0, nullptr};
    if (zExifGetTag(doc, 36867, &value, 0) != 0) return "";
    std::string date(static_cast<char *>(value.data), value.count - 1);
    std::free(value.data);
    return date;
}

class InsertOrder : public ::testing::TestWithParam<bool> {};

TEST_P(InsertOrder, TakesOverTheBlockWithItsThumbnail)
{
    std::vector<uint8_t> thumb = FakeThumbnail(333);
    Payload payload(ExifPayload(ExifBlock({GetParam(), thumb})));
    MemoryJpeg jpeg;
    jpeg.Segment(0xE0, JfifPayload()).Segment(0xDB, {0, 1});
    auto doc = jpeg.Load();
    ASSERT_EQ(0, payload.InsertInto(doc.get()));
    EXPECT_EQ(0, TreeShape(*doc).rfind("216 224'JFIF' 225'Exif'[1 2:0[3:3 271 274 34665[3:1 36867 60] 60] 2:1[", 0));
    EXPECT_EQ(doc->m_exifMarker, MarkersOf(*doc)[2]);
    EXPECT_EQ(1, zExifIsExifExist(doc.get()));
    EXPECT_EQ(kBlockDate, DateOf(doc.get()));
    DropSource(*doc);
    EXPECT_EQ(thumb, GetThumbnail(doc.get()));
    ExifBuffer out{nullptr, 0};
    ASSERT_EQ(0, zExifGetThumbDataEx(doc.get(), &out, 0x801));
    EXPECT_EQ(thumb, BytesOf(out));
    std::free(out.data);
}

INSTANTIATE_TEST_SUITE_P(ByteOrders, InsertOrder, ::testing::Values(false, true));

TEST(InsertExifMarker, GoesBehindSoiWithoutApp0)
{
    Payload payload(ExifPayload(ExifBlock({})));
    MemoryJpeg jpeg;
    jpeg.Segment(0xDB, {0, 1});
    auto doc = jpeg.Load();
    ASSERT_EQ(0, payload.InsertInto(doc.get()));
    EXPECT_EQ(0, TreeShape(*doc).rfind("216 225'Exif'[", 0));
    EXPECT_EQ(0, zExifIsThumbnailExist(doc.get()));
}

// The new block stands in front of the old APP1 and is the one that lookups,
// edits and the save see; nothing of the old block's thumbnail carries over.
TEST(InsertExifMarker, ReplacesTheShortcutsOfAnOlderBlock)
{
    InMemoryExifJpeg file(400, FakeThumbnail(200), {{{271, 2, 4, 0}, {34665, 4, 1, 0}}, OldThumbIfd(200)});
    file.doc->m_thumbLoaded = 1;
    Payload payload(ExifPayload(ExifBlock({})));
    ASSERT_EQ(0, payload.InsertInto(file.doc.get()));
    std::vector<CMarker *> markers = MarkersOf(*file.doc);
    EXPECT_EQ(0xE1, markers[2]->m_id);
    EXPECT_EQ(file.app1, markers[3]);
    EXPECT_EQ(markers[2], file.doc->FindIfd(0)->m_parent);
    EXPECT_EQ(nullptr, file.doc->m_thumbTag);
    EXPECT_EQ(0, zExifIsThumbnailExist(file.doc.get()));
    EXPECT_EQ(0, file.doc->m_thumbLoaded);
    EXPECT_EQ(0u, zExifGetThumbType(file.doc.get()));
    EXPECT_EQ(markers[2], file.doc->m_exifIfdTag->m_parent->m_parent);
    EXPECT_EQ(kBlockDate, DateOf(file.doc.get()));
}

struct Lie {
    const char *name;
    int64_t offset;
    int64_t length;
    bool withLength;
    bool loaded;
};

class ThumbnailTags : public ::testing::TestWithParam<Lie> {};

// The thumbnail lies at block offset 130 and the payload ends 100 bytes later.
TEST_P(ThumbnailTags, CopyOnlyFromInsideThePayload)
{
    std::vector<uint8_t> thumb = FakeThumbnail(100);
    ExifBlockDef def{false, thumb, GetParam().offset, GetParam().length, GetParam().withLength};
    Payload payload(ExifPayload(ExifBlock(def)));
    MemoryJpeg jpeg;
    auto doc = jpeg.Load();
    ASSERT_EQ(0, payload.InsertInto(doc.get()));
    EXPECT_EQ(GetParam().loaded ? 1 : 0, doc->m_thumbLoaded);
    EXPECT_EQ(GetParam().loaded ? 1 : 0, zExifIsThumbnailExist(doc.get()));
    EXPECT_EQ(GetParam().loaded ? uint32_t(THUMB_TYPE_JPEG) : 0u, zExifGetThumbType(doc.get()));
    if (!GetParam().loaded) {
        EXPECT_TRUE(GetThumbnail(doc.get()).empty());
    }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ThumbnailTags,
    ::testing::Values(Lie{"AsWritten", -1, -1, true, true}, Lie{"EndingAtThePayloadEnd", 180, 50, true, true},
                      Lie{"OneBytePast", 181, 50, true, false}, Lie{"OffsetZero", 0, 50, true, false},
                      Lie{"HugeLength", 130, 0x7FFFFFFF, true, false},
                      Lie{"WrappingOffset", 0xFFFFFFF0, 0x20, true, false}, Lie{"NoLength", -1, -1, false, false}),
    [](const ::testing::TestParamInfo<Lie> &param) { return std::string(param.param.name); });

struct Refusal {
    const char *name;
    std::vector<uint8_t> bytes;
};

class RefusedPayload : public ::testing::TestWithParam<Refusal> {};

// What is not an Exif block is refused before anything changes, and the
// buffer stays the caller's.
TEST_P(RefusedPayload, LeavesDocumentAndBuffer)
{
    Payload payload(GetParam().bytes);
    MemoryJpeg jpeg;
    jpeg.Segment(0xE0, JfifPayload());
    auto doc = jpeg.Load();
    std::string before = TreeShape(*doc);
    EXPECT_EQ(-1, payload.InsertInto(doc.get()));
    EXPECT_EQ(before, TreeShape(*doc));
    EXPECT_EQ(nullptr, doc->m_exifMarker);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, RefusedPayload,
    ::testing::Values(Refusal{"Empty", {0}}, Refusal{"SignatureOnly", {'E', 'x', 'i', 'f', 0, 0}},
                      Refusal{"ShortHeader", {'E', 'x', 'i', 'f', 0, 0, 'I', 'I', 42, 0, 8, 0, 0}},
                      Refusal{"OtherSignature", {'X', 'M', 'P', ' ', 0, 0, 'I', 'I', 42, 0, 8, 0, 0, 0}},
                      Refusal{"NoByteOrder", {'E', 'x', 'i', 'f', 0, 0, 'I', 'M', 42, 0, 8, 0, 0, 0}}),
    [](const ::testing::TestParamInfo<Refusal> &param) { return std::string(param.param.name); });

TEST(InsertExifMarker, RefusesATiffDocument)
{
    Payload payload(ExifPayload(ExifBlock({})));
    CExifDoc tiff;
    tiff.m_format = FORMAT_TIFF;
    HangTiffBlock(tiff, nullptr, {{{271, 2, 4, 0}}});
    EXPECT_EQ(-1, payload.InsertInto(&tiff));
    EXPECT_EQ("1 2:0[3:1 271 60]", TreeShape(tiff));
}

// After all APP1 are gone, a new block brings its own thumbnail or none.
TEST(InsertExifMarker, AfterRemovalBringsOnlyItsOwnThumbnail)
{
    InMemoryExifJpeg file(400, FakeThumbnail(200), {{{271, 2, 4, 0}}, OldThumbIfd(200)});
    ASSERT_EQ(0, zExifRemoveMarker(file.doc.get(), 0xE1, 0));
    Payload plain(ExifPayload(ExifBlock({})));
    ASSERT_EQ(0, plain.InsertInto(file.doc.get()));
    EXPECT_EQ(0, zExifIsThumbnailExist(file.doc.get()));
    ASSERT_EQ(0, zExifRemoveMarker(file.doc.get(), 0xE1, 0));
    std::vector<uint8_t> thumb = FakeThumbnail(40);
    Payload withThumb(ExifPayload(ExifBlock({false, thumb})));
    ASSERT_EQ(0, withThumb.InsertInto(file.doc.get()));
    EXPECT_EQ(thumb, GetThumbnail(file.doc.get()));
}

}  // namespace
