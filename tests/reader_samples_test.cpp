#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "edit/exif_ifd_tags.h"
#include "reader/tif_tag_list.h"
#include "support/reader_file.h"
#include "support/samples.h"
#include "support/temp_dir.h"

namespace {

class ReaderSample : public ::testing::TestWithParam<std::string> {
protected:
    void SetUp() override
    {
        copy = dir.Copy(GetParam(), "sample" + GetParam().substr(GetParam().rfind('.')));
        reader = zRExifBeginRead(copy.c_str());
    }
    void TearDown() override
    {
        if (reader != nullptr) zRExifEndRead(reader);
    }

    TempDir dir;
    std::string copy;
    CExifReader *reader = nullptr;
};

// Every call on every sample, in an order that exercises the cache both ways.
TEST_P(ReaderSample, AnswersEveryCallWithoutFault)
{
    if (reader == nullptr) GTEST_SKIP() << "not opened";
    int format = zRExifGetFileFormat(reader);
    EXPECT_TRUE(format == FORMAT_JPEG || format == FORMAT_TIFF);
    int exists = zRExifIsThumbnailExist(reader);
    ExifTagValue value;
    for (uint32_t tag : {271u, 272u, 306u, 270u, 274u}) zRExifGetTag(reader, tag, &value);
    for (uint32_t tag : ExifIfdTagTable) {
        if (zRExifGetTag(reader, tag, &value) == 0 && value.count > 0 && value.type >= 1 && value.type <= 12) {
            EXPECT_NE(nullptr, value.data) << tag;
        }
    }
    ExifBuffer thumb = {};
    if (zRExifGetThumbnailData(reader, &thumb) == 0 && thumb.size > 0) {
        ASSERT_GE(thumb.size, 2u);
        EXPECT_EQ(0xFF, thumb.data[0]);
        EXPECT_EQ(0xD8, thumb.data[1]);
        EXPECT_EQ(1, zRExifIsThumbnailExist(reader));
    }
    EXPECT_LE(exists, zRExifIsThumbnailExist(reader));
    ExifBuffer marker = {};
    if (zRExifGetExifMarker(reader, &marker) == 0) {
        EXPECT_EQ(0, std::string(reinterpret_cast<char *>(marker.data), 4).compare("Exif"));
        delete[] marker.data;
    }
    TifTagList *list = nullptr;
    if (zRExifGetTIFExifData(reader, &list) == 0) FreeTifTagList(list);
    if (zRExifIsAudioExist(reader)) {
        EXPECT_EQ(0, zRExifGetAudioFile(reader, dir.Path("voice.wav").c_str()));
    }
}

TEST_P(ReaderSample, JpegsOpenAsJpegs)
{
    bool jpeg = GetParam().find("/jpg/") != std::string::npos;
    if (jpeg && GetParam().find("corrupted") == std::string::npos) {
        ASSERT_NE(nullptr, reader);
        EXPECT_EQ(FORMAT_JPEG, zRExifGetFileFormat(reader));
    } else if (!jpeg && reader != nullptr) {
        EXPECT_EQ(FORMAT_TIFF, zRExifGetFileFormat(reader));
    }
}

INSTANTIATE_TEST_SUITE_P(Samples, ReaderSample, ::testing::ValuesIn(AllSamples()),
                         [](const auto &param) { return SampleTestName(param.param); });

}  // namespace
