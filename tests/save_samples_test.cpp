#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "support/jpeg_files.h"
#include "support/load_bytes.h"
#include "support/raw_ifd_walk.h"
#include "support/samples.h"
#include "support/tag_records.h"
#include "support/tag_steps.h"
#include "support/temp_dir.h"
#include "support/thumb_jpeg.h"
#include "support/tree_check.h"
#include "tree/walk.h"

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

// The entry counts of the chain's IFDs and of the Exif and GPS IFDs (-1
// where there is none), as the tree holds them.
RawIfdCounts CountsOf(CExifDoc &doc)
{
    RawIfdCounts counts;
    counts.found = true;
    for (int i = 0; i < doc.CountIfds(); i++) counts.chain.push_back(int(TagsOf(doc.FindIfd(uint32_t(i))).size()));
    CNode *exif = FindNode(doc.FindIfd(0), 34665);
    CNode *gps = FindNode(doc.FindIfd(0), 34853);
    if (exif != nullptr && exif->m_child != nullptr) counts.exif = int(TagsOf(exif).size());
    if (gps != nullptr && gps->m_child != nullptr) counts.gps = int(TagsOf(gps).size());
    return counts;
}

struct SavedSample : ::testing::TestWithParam<std::string> {
    TempDir dir;
    TempDir scratch;
    std::string ext = IsTiff(GetParam()) ? ".tif" : ".jpg";
    std::string source = dir.Copy(GetParam(), "source" + ext);
    std::string saved = dir.Path("saved" + ext);
    std::vector<uint8_t> sourceBytes = ReadFileBytes(source);
};

// The load holds the IFDs and tags that a plain reading of the bytes finds,
// and the thumbnail that the reader finds; so does the load of the saved
// file. Saved elsewhere and loaded again, the file has the same tags with the
// same values IFD by IFD, the same segments in the same order, the same image
// data and thumbnail, and the source stays as it was; the saved document
// still serves its thumbnail. The entropy-coded data is copied byte for byte;
// only bytes behind the last EOI, which the load keeps no node for, may go.
TEST_P(SavedSample, ReloadsWithTheSameTagsSegmentsImageAndThumbnail)
{
    DocPtr before(zExifLoadFile(source.c_str()));
    ASSERT_TRUE(before);
    EXPECT_EQ(IsTiff(GetParam()) ? FORMAT_TIFF : FORMAT_JPEG, zExifGetFileFormat(before.get()));
    EXPECT_EQ("", TreeFaults(*before, false));
    RawIfdCounts raw = WalkRawIfds(sourceBytes);
    RawIfdCounts loaded = CountsOf(*before);
    EXPECT_EQ(raw.chain, loaded.chain);
    EXPECT_EQ(raw.exif, loaded.exif);
    EXPECT_EQ(raw.gps, loaded.gps);
    EXPECT_EQ(raw.exif >= 0 || (!IsTiff(GetParam()) && raw.found), zExifIsExifExist(before.get()) == 1);
    // The save reads a thumbnail that no one asked for yet from the source.
    std::vector<uint8_t> thumb = ReaderThumbnail(source);
    if (!thumb.empty() && HasProgram("djpeg")) {
        EXPECT_TRUE(DecodesAsJpeg(thumb, scratch.m_path));
    }
    std::vector<TagRecord> tags = TagRecords(*before);
    std::vector<int32_t> ids = TopLevelIds(*before);
    std::vector<std::vector<uint8_t>> images = ImageData(*before, sourceBytes);
    ASSERT_EQ(0, zExifSaveFile(before.get(), saved.c_str()));
    EXPECT_EQ(sourceBytes, ReadFileBytes(source));
    EXPECT_EQ(thumb, GetThumbnail(before.get()));

    std::vector<uint8_t> savedBytes = ReadFileBytes(saved);
    DocPtr after(zExifLoadFile(saved.c_str()));
    ASSERT_TRUE(after);
    EXPECT_EQ(tags, TagRecords(*after));
    RawIfdCounts written = WalkRawIfds(savedBytes);
    RawIfdCounts reloaded = CountsOf(*after);
    EXPECT_EQ(written.chain, reloaded.chain);
    EXPECT_EQ(written.exif, reloaded.exif);
    EXPECT_EQ(written.gps, reloaded.gps);
    EXPECT_EQ(images, ImageData(*after, savedBytes));
    EXPECT_EQ(thumb, GetThumbnail(after.get()));
    EXPECT_EQ((std::vector<std::string>{"saved" + ext, "source" + ext}), SortedFiles(dir.m_path));
    if (IsTiff(GetParam())) {
        EXPECT_EQ('I', savedBytes[0]);
        if (HasProgram("tiffcmp")) {
            EXPECT_TRUE(RunsClean("tiffinfo -D '" + saved + "'", scratch.m_path));
            EXPECT_TRUE(RunsClean("tiffcmp '" + source + "' '" + saved + "'", scratch.m_path));
        }
        return;
    }
    // Everything the first save read stays in memory: a second save needs no
    // source and writes the same file, little-endian as the first.
    std::string again = scratch.Path("again.jpg");
    ASSERT_EQ(0, zExifSaveFile(before.get(), again.c_str()));
    EXPECT_EQ(savedBytes, ReadFileBytes(again));
    std::vector<uint8_t> block = TiffBlockOf(savedBytes);
    EXPECT_TRUE(block.empty() || block[0] == 'I');
    if (!HoldsASecondImage(GetParam())) {
        EXPECT_EQ(ids, TopLevelIds(*after));
        std::vector<uint8_t> scan = ScanDataOf(sourceBytes);
        std::vector<uint8_t> savedScan = ScanDataOf(savedBytes);
        ASSERT_LE(savedScan.size(), scan.size());
        EXPECT_TRUE(std::equal(savedScan.begin(), savedScan.end(), scan.begin()));
    }
    std::vector<uint8_t> pixels = HasProgram("djpeg") ? DecodedPixels(source, scratch.m_path) : std::vector<uint8_t>{};
    if (!pixels.empty()) {
        EXPECT_EQ(pixels, DecodedPixels(saved, scratch.m_path));
    }
}

// IFD 0 and what hangs below it, where a new thumbnail changes nothing.
std::vector<TagRecord> Ifd0Records(CExifDoc &doc)
{
    std::vector<TagRecord> records = TagRecords(doc, {305});
    records.erase(std::remove_if(records.begin(), records.end(),
                                 [](const TagRecord &record) { return record.place.rfind("IFD0", 0) != 0; }),
                  records.end());
    return records;
}

// A tag and a thumbnail set before a save over the source are there after it,
// for both families, and nothing else of IFD 0 changed. A thumbnail that
// would not fit an APP1 is refused; a TIFF file has room for any.
TEST_P(SavedSample, ASetTagAndThumbnailAreSavedAndNothingElseChanges)
{
    DocPtr doc(zExifLoadFile(source.c_str()));
    ASSERT_TRUE(doc);
    std::vector<TagRecord> others = Ifd0Records(*doc);
    EntryDef software = Ascii(305, "zexif save test");
    ASSERT_EQ("", RunSteps(*doc, {Set(software, 0)}));
    std::vector<uint8_t> thumb = FakeThumbnail(900, 4);
    ExifBuffer buffer = BufferOf(thumb);
    bool withThumb = zExifSetThumbnailData(doc.get(), &buffer) == 0;
    EXPECT_TRUE(withThumb || !IsTiff(GetParam()));
    ASSERT_EQ(0, zExifSaveFile(doc.get(), source.c_str()));

    DocPtr after(zExifLoadFile(source.c_str()));
    ASSERT_TRUE(after);
    EXPECT_EQ("", RunSteps(*after, {Get(software, 0)}));
    EXPECT_EQ(others, Ifd0Records(*after));
    if (withThumb) {
        EXPECT_EQ(thumb, GetThumbnail(after.get()));
        EXPECT_EQ(thumb, ReaderThumbnail(source));
    }
    EXPECT_EQ((std::vector<std::string>{"source" + ext}), SortedFiles(dir.m_path));
}

INSTANTIATE_TEST_SUITE_P(Samples, SavedSample, ::testing::ValuesIn(AllSamples()),
                         [](const ::testing::TestParamInfo<std::string> &param) {
                             return SampleTestName(param.param) + "_" + std::to_string(param.index);
                         });

}  // namespace
