#include <gtest/gtest.h>

#include "support/thumb_jpeg.h"
#include "tree/walk.h"

namespace {

constexpr uint32_t kExif = 0x66697845;
constexpr uint32_t kJfif = 0x4649464A;

std::vector<uint8_t> App2(const char *signature)
{
    std::vector<uint8_t> payload(signature, signature + 4);
    payload.resize(12, 0);
    return payload;
}

uint32_t SignatureOf(const char *text)
{
    return uint32_t(uint8_t(text[0])) | uint32_t(uint8_t(text[1])) << 8 | uint32_t(uint8_t(text[2])) << 16 |
           uint32_t(uint8_t(text[3])) << 24;
}

// SOI, APP0, an Exif APP1 with a thumbnail and an Exif pointer, a second APP1,
// two APP2 segments, DQT, EOI.
struct TwoApp1 : ::testing::Test {
    void SetUp() override
    {
        jpeg.Segment(0xE0, JfifPayload())
            .Segment(0xE1, std::vector<uint8_t>{'E', 'x', 'i', 'f', 0, 0, 'I', 'I', 42, 0})
            .Segment(0xE1, std::vector<uint8_t>{'h', 't', 't', 'p', ':', '/', '/'})
            .Segment(0xE2, App2("ICC_"))
            .Segment(0xE2, App2("FPXR"))
            .Segment(0xDB, {0, 1, 2});
        doc = jpeg.Load();
        HangTiffBlock(*doc, MarkersOf(*doc)[2], {{{271, 2, 4, 0}, {34665, 4, 1, 0}}, OldThumbIfd(20)});
        doc->m_exifMarker = MarkersOf(*doc)[2];
        doc->MoveTo(doc->m_thumbTag);
    }

    MemoryJpeg jpeg;
    std::unique_ptr<CExifDoc> doc;
};

TEST_F(TwoApp1, App1TakesEveryApp1AndTheExifShortcuts)
{
    ASSERT_EQ(0, zExifRemoveMarker(doc.get(), 0xE1, 0));
    EXPECT_EQ("216 224'JFIF' 226'ICC_' 226'FPXR' 219 217", TreeShape(*doc));
    EXPECT_EQ(nullptr, doc->m_exifMarker);
    EXPECT_EQ(nullptr, doc->m_exifIfdTag);
    EXPECT_EQ(nullptr, doc->m_thumbTag);
    EXPECT_EQ(0, zExifIsThumbnailExist(doc.get()));
    EXPECT_EQ(0u, zExifGetThumbType(doc.get()) & 0xe00);
    EXPECT_EQ(1, doc->m_hasExif);

    // The cursor stood inside the removed block; a new thumbnail builds anew.
    std::vector<uint8_t> thumb = FakeThumbnail(30);
    ExifBuffer buffer = BufferOf(thumb);
    ASSERT_EQ(0, zExifSetThumbnailData(doc.get(), &buffer));
    EXPECT_EQ(thumb, GetThumbnail(doc.get()));
}

TEST_F(TwoApp1, OnlyTheFirstMarkerOfACodeIsCompared)
{
    std::string before = TreeShape(*doc);
    EXPECT_EQ(0, zExifRemoveMarker(doc.get(), 0xE2, SignatureOf("FPXR")));
    EXPECT_EQ(before, TreeShape(*doc));
    EXPECT_EQ(0, zExifRemoveMarker(doc.get(), 0xE2, SignatureOf("ICC_")));
    EXPECT_EQ(0, zExifRemoveMarker(doc.get(), 0xE2, SignatureOf("FPXR")));
    EXPECT_EQ(-1, zExifRemoveMarker(doc.get(), 0xE2, SignatureOf("FPXR")));
}

TEST_F(TwoApp1, OtherCodesLeaveTheExifAlone)
{
    EXPECT_EQ(0, zExifRemoveMarker(doc.get(), 0xE0, kJfif));
    EXPECT_EQ(0, zExifRemoveMarker(doc.get(), 0xDB, 0));
    EXPECT_EQ(0, zExifRemoveMarker(doc.get(), 0xD8, 0));
    EXPECT_EQ(-1, zExifRemoveMarker(doc.get(), 0xE0, kJfif));
    EXPECT_EQ(0, TreeShape(*doc).rfind("216 225'Exif'[", 0));
    EXPECT_NE(std::string::npos, TreeShape(*doc).find(" 219 217"));
    EXPECT_NE(nullptr, doc->m_thumbTag);
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
    EXPECT_EQ("216 225'Exif'[1 2:0[3:2 226 224 60]] 217", TreeShape(*doc));
}

TEST(RemoveMarker, NeedsAJpegWithThatMarker)
{
    MemoryJpeg jpeg;
    jpeg.Segment(0xE0, JfifPayload());
    auto doc = jpeg.Load();
    doc->m_hasThumb = 1;
    doc->m_thumbType = 0x800;
    EXPECT_EQ(-1, zExifRemoveMarker(doc.get(), 0xE1, kExif));
    EXPECT_EQ(1, doc->m_hasThumb);
    EXPECT_EQ(0x800u, doc->m_thumbType);

    CExifDoc tiff;
    tiff.m_format = FORMAT_TIFF;
    HangTiffBlock(tiff, nullptr, {{{271, 2, 4, 0}}});
    EXPECT_EQ(-1, zExifRemoveMarker(&tiff, 1, 0));
    EXPECT_EQ("1 2:0[3:1 271 60]", TreeShape(tiff));
}

}  // namespace
