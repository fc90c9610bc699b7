#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "support/jpeg_files.h"
#include "support/load_bytes.h"
#include "support/samples.h"
#include "support/tag_records.h"
#include "support/temp_dir.h"

namespace {

// Runs an outside program quietly; true when it exits 0 and says nothing on
// its error stream.
bool RunsClean(const std::string &command, const std::string &scratch)
{
    std::string errors = scratch + "/stderr.txt";
    if (std::system((command + " >/dev/null 2>'" + errors + "'").c_str()) != 0) return false;
    return ReadFileBytes(errors).empty();
}

std::vector<uint8_t> DecodedPixels(const std::string &jpeg, const std::string &scratch)
{
    std::string ppm = scratch + "/decoded.ppm";
    if (std::system(("djpeg -outfile '" + ppm + "' '" + jpeg + "' >/dev/null 2>&1").c_str()) != 0) return {};
    return ReadFileBytes(ppm);
}

std::vector<std::string> SortedFiles(const std::string &dir)
{
    std::vector<std::string> names = ListFiles(dir);
    std::sort(names.begin(), names.end());
    return names;
}

bool IsTiff(const std::string &path)
{
    std::string ext = std::filesystem::path(path).extension().string();
    return ext == ".tif" || ext == ".tiff";
}

// The damaged sample has a second image glued behind the first, whose bytes
// begin inside the first one's run of scan data. The load counts a run across
// the markers in it, so the tree can't place those bytes between the images.
bool HoldsASecondImage(const std::string &path)
{
    return std::filesystem::path(path).filename() == "corrupted.jpg";
}

struct SavedSample : ::testing::TestWithParam<std::string> {
    TempDir dir;
    std::string ext = IsTiff(GetParam()) ? ".tif" : ".jpg";
    std::string source = dir.Copy(GetParam(), "source" + ext);
    std::string saved = dir.Path("saved" + ext);
    std::vector<uint8_t> sourceBytes = ReadFileBytes(source);
};

// Load, save elsewhere, load again: the same tags with the same values IFD by
// IFD, the same segments in the same order, the same image data, and the
// source as it was. The entropy-coded data is copied byte for byte; only
// bytes behind the last EOI, which the load keeps no node for, may be
// missing.
TEST_P(SavedSample, ReloadsWithTheSameTagsSegmentsAndImageData)
{
    DocPtr before(zExifLoadFile(source.c_str()));
    ASSERT_TRUE(before);
    std::vector<TagRecord> tags = TagRecords(*before);
    std::vector<int32_t> ids = TopLevelIds(*before);
    std::vector<std::vector<uint8_t>> images = ImageData(*before, sourceBytes);
    ASSERT_EQ(0, zExifSaveFile(before.get(), saved.c_str()));
    EXPECT_EQ(sourceBytes, ReadFileBytes(source));

    std::vector<uint8_t> savedBytes = ReadFileBytes(saved);
    DocPtr after(zExifLoadFile(saved.c_str()));
    ASSERT_TRUE(after);
    EXPECT_EQ(tags, TagRecords(*after));
    if (!IsTiff(GetParam()) && !HoldsASecondImage(GetParam())) {
        EXPECT_EQ(ids, TopLevelIds(*after));
        std::vector<uint8_t> scan = ScanDataOf(sourceBytes);
        std::vector<uint8_t> savedScan = ScanDataOf(savedBytes);
        ASSERT_LE(savedScan.size(), scan.size());
        EXPECT_TRUE(std::equal(savedScan.begin(), savedScan.end(), scan.begin()));
    }
    EXPECT_EQ(images, ImageData(*after, savedBytes));
    EXPECT_EQ((std::vector<std::string>{"saved" + ext, "source" + ext}), SortedFiles(dir.m_path));
}

TEST_P(SavedSample, DecodesToTheSamePixels)
{
    if (!HasProgram("djpeg") || !HasProgram("tiffcmp")) GTEST_SKIP() << "djpeg or tiffcmp missing";
    DocPtr doc(zExifLoadFile(source.c_str()));
    ASSERT_TRUE(doc);
    ASSERT_EQ(0, zExifSaveFile(doc.get(), saved.c_str()));
    if (IsTiff(GetParam())) {
        EXPECT_EQ('I', ReadFileBytes(saved)[0]);
        EXPECT_TRUE(RunsClean("tiffinfo -D '" + saved + "'", dir.m_path));
        EXPECT_TRUE(RunsClean("tiffcmp '" + source + "' '" + saved + "'", dir.m_path));
        return;
    }
    std::vector<uint8_t> pixels = DecodedPixels(source, dir.m_path);
    if (pixels.empty()) GTEST_SKIP() << "the source itself doesn't decode";
    EXPECT_EQ(pixels, DecodedPixels(saved, dir.m_path));
}

// A tag set before the save is there after it, and nothing else changed.
TEST_P(SavedSample, ASetTagIsSavedAndNothingElseChanges)
{
    DocPtr doc(zExifLoadFile(source.c_str()));
    ASSERT_TRUE(doc);
    std::vector<TagRecord> others = TagRecords(*doc, {305});
    char software[] = "zexif save test";
    ExifTagValue value = {2, sizeof software, software};
    ASSERT_EQ(0, zExifSetTag(doc.get(), 305, &value, 0));
    ASSERT_EQ(0, zExifSaveFile(doc.get(), source.c_str()));

    DocPtr after(zExifLoadFile(source.c_str()));
    ASSERT_TRUE(after);
    ExifTagValue read = {};
    ASSERT_EQ(0, zExifGetTag(after.get(), 305, &read, 0));
    EXPECT_EQ(std::string(software), std::string(static_cast<char *>(read.data), read.count - 1));
    std::free(read.data);
    EXPECT_EQ(others, TagRecords(*after, {305}));
    EXPECT_EQ((std::vector<std::string>{"source" + ext}), SortedFiles(dir.m_path));
}

INSTANTIATE_TEST_SUITE_P(Samples, SavedSample, ::testing::ValuesIn(AllSamples()),
                         [](const ::testing::TestParamInfo<std::string> &param) {
                             return SampleTestName(param.param) + "_" + std::to_string(param.index);
                         });

}  // namespace
