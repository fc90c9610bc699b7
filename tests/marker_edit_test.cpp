#include <gtest/gtest.h>

#include <cstring>

#include "support/case_name.h"
#include "support/exif_block.h"
#include "support/tag_steps.h"
#include "support/thumb_jpeg.h"
#include "support/tree_check.h"
#include "tree/walk.h"

namespace {

// A payload in a buffer of the array allocator, as the reader hands it out;
// an insert that succeeds takes it over.
struct Payload {
    explicit Payload(const std::vector<uint8_t> &bytes)
        : buffer{new unsigned char[bytes.size()], uint32_t(bytes.size())}
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

std::vector<uint8_t> Block(const ExifBlockDef &def = {})
{
    return ExifPayload(ExifBlock(def));
}

// A payload to insert, and the thumbnail the document must then serve; no
// outline: the insert is refused.
struct InsertCase {
    const char *name;
    std::vector<uint8_t> payload;
    std::vector<uint8_t> thumbnail;
    std::string outline;
};

class InsertExifMarker : public ::testing::TestWithParam<InsertCase> {};

// The new APP1 goes behind APP0 and takes over the block, whose values and
// thumbnail are then the document's without the source. What is not an Exif
// block is refused before anything changes, and the buffer stays the
// caller's.
TEST_P(InsertExifMarker, TakesOverTheBlock)
{
    Payload payload(GetParam().payload);
    MemoryJpeg jpeg;
    auto doc = jpeg.Segment(0xE0, JfifPayload()).Segment(0xDB, {0, 1}).Load();
    std::string before = Outline(*doc);
    ASSERT_EQ(GetParam().outline.empty() ? -1 : 0, payload.InsertInto(doc.get()));
    if (GetParam().outline.empty()) {
        EXPECT_EQ(before, Outline(*doc));
        EXPECT_EQ(nullptr, doc->m_exifMarker);
        return;
    }
    EXPECT_EQ(GetParam().outline, Outline(*doc));
    EXPECT_EQ(doc->m_exifMarker, MarkersOf(*doc)[2]);
    EXPECT_EQ("", ShortcutFaults(*doc));
    DropSource(*doc);
    EXPECT_EQ("", RunSteps(*doc, {Get(Ascii(36867, kBlockDate), 0)}));
    EXPECT_EQ(GetParam().thumbnail, GetThumbnail(doc.get()));
    EXPECT_EQ(GetParam().thumbnail.empty() ? 0 : 1, zExifIsThumbnailExist(doc.get()));
}

const std::vector<uint8_t> kThumb = FakeThumbnail(100);
const std::string kIfd0 = "216 224'JFIF' 225'Exif'[1 2:0[3:3 271 274 34665[3:1 36867 60] 60]";
const std::string kWithThumb = kIfd0 + " 2:1[3:3 259 513 514 60]] 219 217";

// The thumbnail lies at block offset 130 and the payload ends 100 bytes
// later; it is copied only from inside the payload.
InsertCase Lie(const char *name, int64_t offset, int64_t length, bool withLength = true)
{
    ExifBlockDef def{false, kThumb, offset, length, withLength};
    std::vector<uint8_t> block = ExifBlock(def);
    std::vector<uint8_t> thumb;
    if (offset == 180) thumb.assign(block.begin() + offset, block.begin() + offset + length);
    std::string outline = withLength ? kWithThumb : kIfd0 + " 2:1[3:2 259 513 60]] 219 217";
    return {name, ExifPayload(block), thumb, outline};
}

INSTANTIATE_TEST_SUITE_P(
    Payloads, InsertExifMarker,
    ::testing::Values(InsertCase{"LittleEndian", Block({false, kThumb}), kThumb, kWithThumb},
                      InsertCase{"BigEndian", Block({true, kThumb}), kThumb, kWithThumb},
                      InsertCase{"WithoutThumbnail", Block(), {}, kIfd0 + "] 219 217"},
                      Lie("EndingAtThePayloadEnd", 180, 50), Lie("OneBytePast", 181, 50), Lie("OffsetZero", 0, 50),
                      Lie("HugeLength", 130, 0x7FFFFFFF), Lie("WrappingOffset", 0xFFFFFFF0, 0x20),
                      Lie("NoLength", -1, -1, false), InsertCase{"Empty", {0}, {}, ""},
                      InsertCase{"SignatureOnly", {'E', 'x', 'i', 'f', 0, 0}, {}, ""},
                      InsertCase{"ShortHeader", {'E', 'x', 'i', 'f', 0, 0, 'I', 'I', 42, 0, 8, 0, 0}, {}, ""},
                      InsertCase{"OtherSignature", {'X', 'M', 'P', ' ', 0, 0, 'I', 'I', 42, 0, 8, 0, 0, 0}, {}, ""},
                      InsertCase{"NoByteOrder", {'E', 'x', 'i', 'f', 0, 0, 'I', 'M', 42, 0, 8, 0, 0, 0}, {}, ""}),
    CaseName());

// The new block stands in front of the old APP1 and is the one that lookups,
// edits and the save see; nothing of the old block's thumbnail carries over.
// Once every APP1 is gone, a new block brings its own thumbnail or none.
TEST(InsertExifMarker, ReplacesAnOlderBlockAndItsThumbnail)
{
    InMemoryExifJpeg file(400, FakeThumbnail(200), {{{271, 2, 4, 0}, {34665, 4, 1, 0}}, OldThumbIfd(200)});
    file.doc->m_thumbLoaded = 1;
    Payload payload(Block());
    ASSERT_EQ(0, payload.InsertInto(file.doc.get()));
    std::vector<CMarker *> markers = MarkersOf(*file.doc);
    EXPECT_EQ(file.app1, markers[3]);
    EXPECT_EQ(markers[2], file.doc->m_exifMarker);
    EXPECT_EQ(markers[2], file.doc->m_exifIfdTag->m_parent->m_parent);
    EXPECT_EQ("", ShortcutFaults(*file.doc));
    EXPECT_EQ(0, zExifIsThumbnailExist(file.doc.get()));
    EXPECT_EQ("", RunSteps(*file.doc, {Get(Ascii(36867, kBlockDate), 0)}));

    ASSERT_EQ(0, zExifRemoveMarker(file.doc.get(), 0xE1, 0));
    Payload withThumb(Block({false, kThumb}));
    ASSERT_EQ(0, withThumb.InsertInto(file.doc.get()));
    EXPECT_EQ(kThumb, GetThumbnail(file.doc.get()));
}

uint32_t SignatureOf(const char *text)
{
    return uint32_t(uint8_t(text[0])) | uint32_t(uint8_t(text[1])) << 8 | uint32_t(uint8_t(text[2])) << 16 |
           uint32_t(uint8_t(text[3])) << 24;
}

std::vector<uint8_t> App2(const char *signature)
{
    std::vector<uint8_t> payload(signature, signature + 4);
    payload.resize(12, 0);
    return payload;
}

// SOI, APP0, an Exif APP1 with a thumbnail and an Exif pointer, a second APP1,
// two APP2 segments, DQT, EOI; the cursor stands on the thumbnail's tag.
struct TwoApp1 : ::testing::Test {
    void SetUp() override
    {
        jpeg.Segment(0xE0, JfifPayload())
            .Segment(0xE1, std::vector<uint8_t>{'E', 'x', 'i', 'f', 0, 0, 'I', 'I', 42, 0})
            .Segment(0xE1, std::vector<uint8_t>{'h', 't', 't', 'p', ':', '/', '/'})
            .Segments(0xE2, {App2("ICC_"), App2("FPXR")})
            .Segment(0xDB, {0, 1, 2});
        doc = jpeg.Load();
        HangTiffBlock(*doc, MarkersOf(*doc)[2], {{{271, 2, 4, 0}, {34665, 4, 1, 0}}, OldThumbIfd(20)});
        doc->m_exifMarker = MarkersOf(*doc)[2];
        doc->MoveTo(doc->m_thumbTag);
    }

    MemoryJpeg jpeg;
    std::unique_ptr<CExifDoc> doc;
};

// Every APP1 goes, and with them the shortcuts into the block; a new
// thumbnail builds anew.
TEST_F(TwoApp1, App1TakesEveryApp1AndTheExifShortcuts)
{
    ASSERT_EQ(0, zExifRemoveMarker(doc.get(), 0xE1, 0));
    EXPECT_EQ("216 224'JFIF' 226'ICC_' 226'FPXR' 219 217", Outline(*doc));
    EXPECT_EQ("", TreeFaults(*doc, false) + ShortcutFaults(*doc));
    EXPECT_EQ(1, doc->m_hasExif);
    std::vector<uint8_t> thumb = FakeThumbnail(30);
    ExifBuffer buffer = BufferOf(thumb);
    ASSERT_EQ(0, zExifSetThumbnailData(doc.get(), &buffer));
    EXPECT_EQ(thumb, GetThumbnail(doc.get()));
}

// Other codes leave the Exif block alone; of a code, only the first marker's
// signature is compared.
TEST_F(TwoApp1, OtherCodesOnlyTheFirstOfACode)
{
    std::string before = Outline(*doc);
    EXPECT_EQ(0, zExifRemoveMarker(doc.get(), 0xE2, SignatureOf("FPXR")));
    EXPECT_EQ(before, Outline(*doc));
    EXPECT_EQ(0, zExifRemoveMarker(doc.get(), 0xE2, SignatureOf("ICC_")));
    EXPECT_EQ(0, zExifRemoveMarker(doc.get(), 0xE2, SignatureOf("FPXR")));
    EXPECT_EQ(-1, zExifRemoveMarker(doc.get(), 0xE2, SignatureOf("FPXR")));
    EXPECT_EQ(0, zExifRemoveMarker(doc.get(), 0xE0, SignatureOf("JFIF")));
    EXPECT_EQ(-1, zExifRemoveMarker(doc.get(), 0xE0, SignatureOf("JFIF")));
    EXPECT_EQ(0, zExifRemoveMarker(doc.get(), 0xDB, 0));
    EXPECT_EQ(0, zExifRemoveMarker(doc.get(), 0xD8, 0));
    EXPECT_EQ("216 225'Exif'[1 2:0[3:2 271 34665 60] 2:1[3:3 259 513 514 60]] 225'http' 219 217", Outline(*doc));
    EXPECT_EQ(1, zExifIsThumbnailExist(doc.get()));
}

// Tag numbers share the number space with marker codes: a tag 226 that the
// walk meets before the APP2 segments is not a marker.
TEST(RemoveMarker, NeverRemovesATag)
{
    MemoryJpeg jpeg;
    jpeg.Segment(0xE1, std::vector<uint8_t>{'E', 'x', 'i', 'f', 0, 0, 'I', 'I', 42, 0}).Segment(0xE2, App2("ICC_"));
    auto doc = jpeg.Load();
    HangTiffBlock(*doc, MarkersOf(*doc)[1], {{{226, 2, 4, SignatureOf("ICC_")}, {0xE0, 2, 4, 0}}});
    EXPECT_EQ(-1, zExifRemoveMarker(doc.get(), 0xE0, 0));
    EXPECT_EQ(0, zExifRemoveMarker(doc.get(), 0xE2, SignatureOf("ICC_")));
    EXPECT_EQ("216 225'Exif'[1 2:0[3:2 226 224 60]] 217", Outline(*doc));
}

// A TIFF document has no markers to remove or insert; a JPEG without the
// marker keeps its thumbnail flags.
TEST(RemoveMarker, NeedsAJpegWithThatMarker)
{
    MemoryJpeg jpeg;
    auto doc = jpeg.Segment(0xE0, JfifPayload()).Load();
    doc->m_hasThumb = 1;
    doc->m_thumbType = 0x800;
    EXPECT_EQ(-1, zExifRemoveMarker(doc.get(), 0xE1, SignatureOf("Exif")));
    EXPECT_EQ(1, doc->m_hasThumb);
    EXPECT_EQ(0x800u, doc->m_thumbType);

    CExifDoc tiff;
    tiff.m_format = FORMAT_TIFF;
    HangTiffBlock(tiff, nullptr, {{{271, 2, 4, 0}}});
    Payload payload(Block());
    EXPECT_EQ(-1, zExifRemoveMarker(&tiff, 1, 0));
    EXPECT_EQ(-1, payload.InsertInto(&tiff));
    EXPECT_EQ("1 2:0[3:1 271 60]", Outline(tiff));
}

}  // namespace
