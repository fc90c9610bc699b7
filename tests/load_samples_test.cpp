#include <gtest/gtest.h>

#include <filesystem>

#include "support/load_bytes.h"
#include "support/raw_ifd_walk.h"
#include "support/samples.h"
#include "support/temp_dir.h"
#include "tree/walk.h"

namespace {

int CountNodeOf(CNode *parent)
{
    return parent->m_child != nullptr && parent->m_child->m_id == NODE_ENTRY_COUNT ? int(parent->m_child->m_value) : -1;
}

int SubIfdCount(CExifDoc *doc, int32_t pointer)
{
    CNode *tag = FindNode(doc->FindIfd(0), pointer);
    return tag != nullptr && tag->m_child != nullptr ? CountNodeOf(tag) : -1;
}

class EverySample : public ::testing::TestWithParam<std::string> {};

// Each real file loads into a tree that holds what a plain reading of its
// bytes finds: the same IFDs with the same number of tags.
TEST_P(EverySample, LoadsWithTheIfdsAndTagsTheFileHolds)
{
    TempDir dir;
    std::string path = dir.Copy(GetParam(), "sample" + std::filesystem::path(GetParam()).extension().string());
    std::vector<uint8_t> bytes = ReadFileBytes(path);
    DocPtr doc(zExifLoadFile(path.c_str()));
    ASSERT_TRUE(doc) << GetParam();
    EXPECT_EQ(bytes[0] == 0xFF ? FORMAT_JPEG : FORMAT_TIFF, zExifGetFileFormat(doc.get()));

    RawIfdCounts raw = WalkRawIfds(bytes);
    ASSERT_EQ(int(raw.chain.size()), doc->CountIfds());
    for (size_t i = 0; i < raw.chain.size(); i++) {
        CNode *ifd = doc->FindIfd(uint32_t(i));
        ASSERT_NE(nullptr, ifd);
        EXPECT_EQ(raw.chain[i], CountNodeOf(ifd)) << "IFD " << i;
        EXPECT_EQ(size_t(raw.chain[i]), TagsOf(ifd).size()) << "IFD " << i;
    }
    EXPECT_EQ(raw.exif, SubIfdCount(doc.get(), 34665));
    EXPECT_EQ(raw.gps, SubIfdCount(doc.get(), 34853));
    EXPECT_EQ(raw.exif >= 0 || (bytes[0] == 0xFF && raw.found), zExifIsExifExist(doc.get()) == 1);
}

INSTANTIATE_TEST_SUITE_P(Samples, EverySample, ::testing::ValuesIn(AllSamples()),
                         [](const ::testing::TestParamInfo<std::string> &param) {
                             return SampleTestName(param.param) + "_" + std::to_string(param.index);
                         });

// The damaged sample is a JPEG whose image data is cut; its metadata is whole
// and it loads like any other.
TEST(DamagedSample, LoadsWithItsExif)
{
    TempDir dir;
    DocPtr doc(zExifLoadFile(dir.Copy(Sample("jpg/corrupted.jpg"), "c.jpg").c_str()));
    ASSERT_TRUE(doc);
    EXPECT_EQ(1, zExifIsExifExist(doc.get()));
    EXPECT_EQ(2, doc->CountIfds());
}

TEST(MissingFiles, FailToLoad)
{
    EXPECT_EQ(nullptr, zExifLoadFile("/nonexistent/zexif/none.jpg"));
    TempDir dir;
    EXPECT_EQ(nullptr, zExifLoadFile(dir.m_path.c_str()));
}

}  // namespace
