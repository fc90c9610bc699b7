#include <gtest/gtest.h>

#include <cstdlib>

#include "support/jpeg_files.h"
#include "support/samples.h"
#include "support/thumb_jpeg.h"
#include "support/temp_dir.h"
#include "zexif.h"

namespace {

std::vector<uint8_t> ReaderThumbnailOf(const std::string &path)
{
    CExifReader *reader = zRExifBeginRead(path.c_str());
    if (reader == nullptr) return {};
    ExifBuffer out{nullptr, 0};
    std::vector<uint8_t> bytes;
    if (zRExifGetThumbnailData(reader, &out) == 0) bytes.assign(out.data, out.data + out.size);
    zRExifEndRead(reader);
    return bytes;
}

// The thumbnail of the document saved to a new file and loaded again.
std::vector<uint8_t> ThumbnailAfterSave(CExifDoc *doc, const std::string &out)
{
    if (zExifSaveFile(doc, out.c_str()) != 0) return {};
    CExifDoc *saved = zExifLoadFile(out.c_str());
    if (saved == nullptr) return {};
    std::vector<uint8_t> bytes = GetThumbnail(saved);
    zExifDestroy(saved);
    return bytes;
}

class SampleThumbnail : public ::testing::TestWithParam<std::string> {};

// Every thumbnail is a JPEG that decodes, the reader sees the same bytes, and
// a save carries it byte for byte while the image data stays as it was.
TEST_P(SampleThumbnail, IsExtractedAndSurvivesASave)
{
    TempDir dir;
    std::string path = dir.Copy(GetParam(), "in.jpg");
    CExifDoc *doc = zExifLoadFile(path.c_str());
    if (doc == nullptr) GTEST_SKIP() << "not loadable";
    if (zExifIsThumbnailExist(doc) == 0) {
        zExifDestroy(doc);
        GTEST_SKIP() << "no thumbnail";
    }
    std::vector<uint8_t> thumb = GetThumbnail(doc);
    ASSERT_GE(thumb.size(), 4u);
    EXPECT_EQ(0xFF, thumb[0]);
    EXPECT_EQ(0xD8, thumb[1]);
    EXPECT_EQ(ReaderThumbnailOf(path), thumb);
    if (HasProgram("djpeg")) {
        EXPECT_TRUE(DecodesAsJpeg(thumb, dir.m_path));
    }

    std::string out = dir.Path("out.jpg");
    EXPECT_EQ(thumb, ThumbnailAfterSave(doc, out));
    zExifDestroy(doc);
    EXPECT_EQ(ScanDataOf(ReadFileBytes(path)), ScanDataOf(ReadFileBytes(out)));
}

INSTANTIATE_TEST_SUITE_P(Samples, SampleThumbnail, ::testing::ValuesIn(JpegSamples()),
                         [](const ::testing::TestParamInfo<std::string> &param) { return SampleTestName(param.param); });

struct Target {
    const char *name;
    const char *sample;  // null: a plain JPEG without APP1
};

class ReplacedThumbnail : public ::testing::TestWithParam<Target> {};

// A new thumbnail comes back identical from the saved file, whether the
// source had a thumbnail, an Exif block without one (behind an XMP APP1, say),
// or no APP1 at all.
TEST_P(ReplacedThumbnail, ComesBackAfterSaveAndReload)
{
    TempDir dir;
    std::vector<uint8_t> thumb = PlainJpeg(dir.m_path, 40, 30, 50);
    if (thumb.empty()) GTEST_SKIP() << "cjpeg missing";
    std::string path = GetParam().sample != nullptr ? dir.Copy(Sample(GetParam().sample), "in.jpg")
                                                    : dir.Write("in.jpg", PlainJpeg(dir.m_path, 64, 48));
    CExifDoc *doc = zExifLoadFile(path.c_str());
    ASSERT_NE(nullptr, doc);
    ExifBuffer buffer{thumb.data(), uint32_t(thumb.size())};
    ASSERT_EQ(0, zExifSetThumbnailData(doc, &buffer));

    std::string out = dir.Path("out.jpg");
    EXPECT_EQ(thumb, ThumbnailAfterSave(doc, out));
    zExifDestroy(doc);
    EXPECT_EQ(thumb, ReaderThumbnailOf(out));
    EXPECT_EQ(ScanDataOf(ReadFileBytes(path)), ScanDataOf(ReadFileBytes(out)));
    if (HasProgram("djpeg")) {
        EXPECT_TRUE(DecodesAsJpeg(ReadFileBytes(out), dir.m_path));
    }
}

INSTANTIATE_TEST_SUITE_P(Sources, ReplacedThumbnail,
                         ::testing::Values(Target{"HadOne", "jpg/Canon_40D.jpg"},
                                           Target{"App1WithoutThumbnail", "jpg/Fujifilm_FinePix_E500.jpg"},
                                           Target{"StripThumbnail", "jpg/exif-org/kodak-dc210.jpg"},
                                           Target{"XmpApp1InFront", "jpg/xmp/no_exif.jpg"},
                                           Target{"NoApp1", nullptr}),
                         [](const ::testing::TestParamInfo<Target> &param) { return std::string(param.param.name); });

class TiffThumbnail : public ::testing::TestWithParam<std::string> {};

// A TIFF file gets an IFD for the thumbnail; the saved file gives it back.
TEST_P(TiffThumbnail, ComesBackAfterSaveAndReload)
{
    TempDir dir;
    std::string path = dir.Copy(GetParam(), "in.tiff");
    CExifDoc *doc = zExifLoadFile(path.c_str());
    ASSERT_NE(nullptr, doc);
    std::vector<uint8_t> thumb = FakeThumbnail(900, 4);
    ExifBuffer buffer = BufferOf(thumb);
    ASSERT_EQ(0, zExifSetThumbnailData(doc, &buffer));
    EXPECT_EQ(thumb, ThumbnailAfterSave(doc, dir.Path("out.tiff")));
    zExifDestroy(doc);
}

INSTANTIATE_TEST_SUITE_P(Samples, TiffThumbnail, ::testing::ValuesIn(TiffSamples()),
                         [](const ::testing::TestParamInfo<std::string> &param) { return SampleTestName(param.param); });

}  // namespace
