#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "reader/reader.h"
#include "support/byte_builder.h"
#include "support/fpxr_builder.h"
#include "support/reader_file.h"
#include "support/tiff_layout.h"

namespace {

std::vector<uint8_t> App(uint8_t code, const std::string &signature, size_t extra = 4)
{
    std::vector<uint8_t> payload(signature.begin(), signature.end());
    payload.insert(payload.end(), extra, 0x11);
    return JpegSegment(code, payload);
}

std::vector<uint8_t> SmallExif(uint8_t marker = 0xE1)
{
    TiffLayout tiff;
    tiff.AddIfd({Ascii(271, "Make")});
    std::vector<uint8_t> segment = ExifApp1(tiff.Build());
    segment[1] = marker;
    return segment;
}

struct BadStart {
    const char *name;
    std::vector<uint8_t> bytes;
};

class UnknownStart : public ::testing::TestWithParam<BadStart> {};

TEST_P(UnknownStart, OpensNothing)
{
    ReaderFile file(GetParam().bytes);
    EXPECT_EQ(nullptr, file.get());
}

INSTANTIATE_TEST_SUITE_P(Reader, UnknownStart,
                         ::testing::Values(BadStart{"Empty", {}}, BadStart{"OneByte", {0xFF}},
                                           BadStart{"MixedOrder", {'I', 'M', 42, 0}},
                                           BadStart{"FfNotSoi", {0xFF, 0xD9, 0xFF, 0xD8}},
                                           BadStart{"Text", {'G', 'I', 'F', '8'}}),
                         [](const auto &param) { return std::string(param.param.name); });

TEST(ReaderOpen, AMissingFileOpensNothing)
{
    EXPECT_EQ(nullptr, zRExifBeginRead("/nonexistent/zexif/reader.jpg"));
}

// An application that didn't check zRExifBeginRead's result gets failures.
TEST(ReaderOpen, ANullReaderAnswersEveryQuestionWithAFailure)
{
    ExifTagValue value = {};
    ExifBuffer buffer = {};
    TifTagList *list = nullptr;
    zRExifEndRead(nullptr);
    EXPECT_EQ(0, zRExifGetFileFormat(nullptr));
    EXPECT_EQ(0, zRExifIsExifExist(nullptr));
    EXPECT_EQ(-1, zRExifGetTag(nullptr, 271, &value));
    EXPECT_EQ(0, zRExifIsThumbnailExist(nullptr));
    EXPECT_EQ(-1, zRExifGetThumbnailData(nullptr, &buffer));
    EXPECT_EQ(-1, zRExifGetExifMarker(nullptr, &buffer));
    EXPECT_EQ(-1, zRExifGetTIFExifData(nullptr, &list));
    EXPECT_EQ(0, zRExifIsAudioExist(nullptr));
    EXPECT_EQ(-1, zRExifGetAudioFile(nullptr, "out.wav"));
}

TEST(ReaderOpen, NullOutputsAreRefused)
{
    ReaderFile file(JpegFile({SmallExif()}));
    ASSERT_NE(nullptr, file.get());
    EXPECT_EQ(-1, zRExifGetTag(file.get(), 271, nullptr));
    EXPECT_EQ(-1, zRExifGetThumbnailData(file.get(), nullptr));
    EXPECT_EQ(-1, zRExifGetExifMarker(file.get(), nullptr));
    EXPECT_EQ(-1, zRExifGetTIFExifData(file.get(), nullptr));
    EXPECT_EQ(-1, zRExifGetAudioFile(file.get(), nullptr));
}

TEST(ReaderOpen, ABareSoiIsAJpegWithoutExif)
{
    ReaderFile file({0xFF, 0xD8});
    ASSERT_NE(nullptr, file.get());
    EXPECT_EQ(FORMAT_JPEG, zRExifGetFileFormat(file.get()));
    EXPECT_EQ(0, zRExifIsExifExist(file.get()));
    ExifTagValue value;
    EXPECT_EQ(-1, zRExifGetTag(file.get(), 271, &value));
}

TEST(ReaderOpen, ATiffOfAnyVersionOpens)
{
    TiffLayout tiff(true);
    tiff.AddIfd({Ascii(271, "Make")});
    std::vector<uint8_t> bytes = tiff.Build();
    bytes[3] = 43;
    ReaderFile file(bytes, "image.tif");
    ASSERT_NE(nullptr, file.get());
    EXPECT_EQ(FORMAT_TIFF, zRExifGetFileFormat(file.get()));
    EXPECT_EQ(1, file.get()->m_tagFound);
    EXPECT_EQ(0, zRExifIsExifExist(file.get()));
}

TEST(ReaderOpen, OfTwoExifSegmentsTheLastCounts)
{
    std::vector<uint8_t> first = SmallExif();
    std::vector<uint8_t> second = ExifApp1(std::vector<uint8_t>(40, 0));
    std::vector<uint8_t> app0 = App(0xE0, "JFIF");
    ReaderFile file(JpegFile({app0, first, second}));
    const ReaderSegment &segment = file.get()->m_exifSegment;
    EXPECT_EQ(1, zRExifIsExifExist(file.get()));
    EXPECT_EQ(int32_t(second.size() - 4), segment.size);
    EXPECT_EQ(int32_t(2 + app0.size() + first.size() + 4), segment.offset);
    EXPECT_STREQ("Exif", segment.signature);
}

TEST(ReaderOpen, SegmentsBehindTheFirstSosAreNotRecorded)
{
    std::vector<uint8_t> bytes = JpegFile({App(0xE0, "JFIF")});
    std::vector<uint8_t> late = Concat({SmallExif(), App(0xE2, "FPXR", 60)});
    bytes.insert(bytes.end() - 2, late.begin(), late.end());
    ReaderFile file(bytes);
    EXPECT_EQ(0, zRExifIsExifExist(file.get()));
    EXPECT_EQ(0, file.get()->m_fpxrCount);
}

// Each signature counts in its own APP marker only; "Exif" needs no NULs behind it.
TEST(ReaderOpen, SignaturesCountInTheirOwnMarkers)
{
    std::vector<uint8_t> exifWithoutNuls = JpegSegment(0xE1, {'E', 'x', 'i', 'f', 'X', 'Y', 'I', 'I'});
    ReaderFile file(JpegFile({App(0xE1, "FPXR"), App(0xE2, "Exif"), App(0xE2, "ICC_"), App(0xE2, "FPXR"),
                              App(0xE3, "FPXR"), exifWithoutNuls}));
    EXPECT_EQ(1, zRExifIsExifExist(file.get()));
    EXPECT_EQ(8, file.get()->m_exifSegment.size);
    EXPECT_EQ(1, file.get()->m_fpxrCount);
    EXPECT_EQ(8, file.get()->m_fpxrSegments[0].size);
}

TEST(ReaderOpen, ScanningGoesOnBehindAnEoiInTheMiddle)
{
    ReaderFile file(JpegFile({App(0xE0, "JFIF"), {0xFF, 0xD9}, SmallExif()}));
    EXPECT_EQ(1, zRExifIsExifExist(file.get()));
}

// A length of 0 or 1 leads back onto the length field; the scan has to move
// on from there and still find what follows.
class ShortLength : public ::testing::TestWithParam<uint8_t> {};

TEST_P(ShortLength, TheScanMovesOn)
{
    std::vector<uint8_t> broken = {0xFF, 0xE4, 0x00, GetParam(), 'A', 'B', 'C', 'D'};
    std::vector<uint8_t> brokenDqt = {0xFF, 0xDB, 0x00, GetParam()};
    ReaderFile file(JpegFile({broken, brokenDqt, SmallExif()}));
    ASSERT_NE(nullptr, file.get());
    EXPECT_EQ(1, zRExifIsExifExist(file.get()));
}

INSTANTIATE_TEST_SUITE_P(Reader, ShortLength, ::testing::Values(uint8_t(0), uint8_t(1)));

TEST(ReaderOpen, AFileEndingInsideASegmentGivesWhatCameBefore)
{
    std::vector<uint8_t> bytes = Concat({{0xFF, 0xD8}, App(0xE2, "FPXR", 20), SmallExif()});
    bytes.resize(bytes.size() - 10);
    ReaderFile file(bytes);
    ASSERT_NE(nullptr, file.get());
    EXPECT_EQ(1, file.get()->m_fpxrCount);
    EXPECT_EQ(1, zRExifIsExifExist(file.get()));
    ExifTagValue value;
    EXPECT_EQ(-1, zRExifGetTag(file.get(), 271, &value));
}

TEST(ReaderOpen, AnExifSegmentCountsEvenWithAnUnreadableBlock)
{
    ReaderFile file(JpegFile({ExifApp1({'X', 'X', 0, 0, 0, 0, 0, 0})}));
    EXPECT_EQ(1, zRExifIsExifExist(file.get()));
    ExifTagValue value;
    EXPECT_EQ(-1, zRExifGetTag(file.get(), 271, &value));
}

// The table holds 3,000 entries; the segments behind those are not recorded.
TEST(ReaderOpen, TheFpxrTableStopsAtItsSize)
{
    std::vector<uint8_t> bytes = {0xFF, 0xD8};
    std::vector<uint8_t> head = JpegSegment(0xE2, FpxrHead(4, RiffWave(100)));
    bytes.insert(bytes.end(), head.begin(), head.end());
    for (int i = 1; i < 3001; i++) {
        std::vector<uint8_t> segment = JpegSegment(0xE2, FpxrContinuation(5, {uint8_t(i), uint8_t(i >> 8)}));
        bytes.insert(bytes.end(), segment.begin(), segment.end());
    }
    bytes.insert(bytes.end(), {0xFF, 0xD9});
    ReaderFile file(bytes);
    ASSERT_NE(nullptr, file.get());
    EXPECT_EQ(READER_MAX_FPXR_SEGMENTS, file.get()->m_fpxrCount);
    int32_t lastOffset = int32_t(2 + head.size() + 2998 * 19 + 4);
    EXPECT_EQ(lastOffset, file.get()->m_fpxrSegments[2999].offset);
    EXPECT_EQ(1, zRExifIsAudioExist(file.get()));
}

TEST(ReaderOpen, ASixteenBitPathOpens)
{
    TempDir dir;
    dir.Write("w.jpg", JpegFile({SmallExif()}));
    std::u16string wide;
    for (char c : dir.Path("w.jpg")) wide += char16_t(static_cast<unsigned char>(c));
    CExifReader *reader = zRExifBeginRead(wide.c_str());
    ASSERT_NE(nullptr, reader);
    EXPECT_EQ(1, zRExifIsExifExist(reader));
    zRExifEndRead(reader);
}

}  // namespace
