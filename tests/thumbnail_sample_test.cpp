#include <gtest/gtest.h>

#include "support/jpeg_files.h"
#include "support/samples.h"
#include "support/temp_dir.h"
#include "support/thumb_jpeg.h"
#include "zexif.h"

namespace {

// Sets the thumbnail, saves the document to out and gives the thumbnail of
// the saved file loaded again.
std::vector<uint8_t> SetAndSave(const std::string &in, std::vector<uint8_t> thumb, const std::string &out)
{
    CExifDoc *doc = zExifLoadFile(in.c_str());
    if (doc == nullptr) return {};
    ExifBuffer buffer = BufferOf(thumb);
    int result = zExifSetThumbnailData(doc, &buffer) == 0 ? zExifSaveFile(doc, out.c_str()) : -1;
    zExifDestroy(doc);
    CExifDoc *saved = result == 0 ? zExifLoadFile(out.c_str()) : nullptr;
    if (saved == nullptr) return {};
    std::vector<uint8_t> bytes = GetThumbnail(saved);
    zExifDestroy(saved);
    return bytes;
}

class ReplacedThumbnail : public ::testing::TestWithParam<const char *> {};

// A new thumbnail comes back identical from the saved file, to both families,
// whether the source had a thumbnail, one stored as strips, an Exif block
// without one, an XMP APP1 in front, or no APP1 at all (""). The image data
// stays as it was and the file decodes.
TEST_P(ReplacedThumbnail, ComesBackAfterSaveAndReload)
{
    TempDir dir;
    std::vector<uint8_t> thumb = PlainJpeg(dir.m_path, 40, 30, 50);
    if (thumb.empty()) GTEST_SKIP() << "cjpeg missing";
    std::string sample = GetParam();
    std::string in =
        sample.empty() ? dir.Write("in.jpg", PlainJpeg(dir.m_path, 64, 48)) : dir.Copy(Sample(sample), "in.jpg");
    std::string out = dir.Path("out.jpg");
    EXPECT_EQ(thumb, SetAndSave(in, thumb, out));
    EXPECT_EQ(thumb, ReaderThumbnail(out));
    EXPECT_EQ(ScanDataOf(ReadFileBytes(in)), ScanDataOf(ReadFileBytes(out)));
    if (HasProgram("djpeg")) {
        EXPECT_TRUE(DecodesAsJpeg(ReadFileBytes(out), dir.m_path));
    }
}

INSTANTIATE_TEST_SUITE_P(Sources, ReplacedThumbnail,
                         ::testing::Values("jpg/Canon_40D.jpg", "jpg/exif-org/kodak-dc210.jpg",
                                           "jpg/Fujifilm_FinePix_E500.jpg", "jpg/xmp/no_exif.jpg", ""));

class TiffThumbnail : public ::testing::TestWithParam<std::string> {};

// A TIFF file gets an IFD for the thumbnail; the saved file gives it back.
TEST_P(TiffThumbnail, ComesBackAfterSaveAndReload)
{
    TempDir dir;
    std::vector<uint8_t> thumb = FakeThumbnail(900, 4);
    EXPECT_EQ(thumb, SetAndSave(dir.Copy(GetParam(), "in.tiff"), thumb, dir.Path("out.tiff")));
}

INSTANTIATE_TEST_SUITE_P(Samples, TiffThumbnail, ::testing::ValuesIn(TiffSamples()),
                         [](const ::testing::TestParamInfo<std::string> &param) {
                             return SampleTestName(param.param);
                         });

}  // namespace
