#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "edit/exif_ifd_tags.h"
#include "load/tiff_types.h"
#include "support/samples.h"
#include "support/temp_dir.h"
#include "zexif.h"

namespace {

std::vector<uint8_t> Bytes(const void *data, int64_t size)
{
    const uint8_t *bytes = static_cast<const uint8_t *>(data);
    return size > 0 && bytes != nullptr ? std::vector<uint8_t>(bytes, bytes + size) : std::vector<uint8_t>();
}

// The payload of the last Exif APP1 before the first SOS, as far as the file
// holds it; a reader fills what a cut file lacks with zeros.
std::vector<uint8_t> ExifPayloadOf(const std::vector<uint8_t> &file)
{
    std::vector<uint8_t> payload;
    size_t i = 2;
    while (i + 4 <= file.size()) {
        if (file[i] != 0xFF) {
            i++;
            continue;
        }
        uint8_t code = file[i + 1];
        if (code == 0x00 || code == 0xD8 || code == 0xD9) {
            i += 2;
            continue;
        }
        size_t length = size_t(file[i + 2]) << 8 | file[i + 3];
        auto start = file.begin() + long(i) + 4;
        if (code == 0xE1 && i + 8 <= file.size() && std::string(start, start + 4) == "Exif") {
            payload.assign(start, file.begin() + long(std::min(file.size(), i + 2 + length)));
        }
        if (code == 0xDA) break;
        i += 2 + length;
    }
    return payload;
}

class CrossFamily : public ::testing::TestWithParam<std::string> {
protected:
    void SetUp() override
    {
        copy = dir.Copy(GetParam(), "sample" + GetParam().substr(GetParam().rfind('.')));
        reader = zRExifBeginRead(copy.c_str());
        doc = zExifLoadFile(copy.c_str());
    }
    void TearDown() override
    {
        if (reader != nullptr) zRExifEndRead(reader);
        if (doc != nullptr) zExifDestroy(doc);
    }

    TempDir dir;
    std::string copy;
    CExifReader *reader = nullptr;
    CExifDoc *doc = nullptr;
};

// Whatever both families deliver is the same value: type, count and bytes.
// Where they look differs: the tree finds a table tag that a camera put into
// IFD 0 behind the Exif pointer, and orientation only below that pointer.
TEST_P(CrossFamily, TagsBothFamiliesDeliverAreEqual)
{
    if (reader == nullptr || doc == nullptr) GTEST_SKIP() << "not opened by both families";
    std::vector<uint32_t> tags = {306, 271, 272, 270, 274};
    tags.insert(tags.end(), std::begin(ExifIfdTagTable), std::end(ExifIfdTagTable));
    for (uint32_t tag : tags) {
        ExifTagValue fromReader = {};
        ExifTagValue fromDoc = {};
        int readerResult = zRExifGetTag(reader, tag, &fromReader);
        int docResult = zExifGetTag(doc, tag, &fromDoc, 0);
        if (readerResult == 0 && docResult == 0) {
            EXPECT_EQ(fromDoc.type, fromReader.type) << tag;
            EXPECT_EQ(fromDoc.count, fromReader.count) << tag;
            int64_t size = EntryDataSize(fromReader.type, fromReader.count);
            if (TiffTypeSize(fromReader.type) != 0) {
                EXPECT_EQ(Bytes(fromDoc.data, size), Bytes(fromReader.data, size)) << tag;
            }
        }
        if (docResult == 0) std::free(fromDoc.data);
    }
}

TEST_P(CrossFamily, TheExifMarkerIsTheSegmentPayload)
{
    if (reader == nullptr || zRExifGetFileFormat(reader) != FORMAT_JPEG) GTEST_SKIP() << "not a JPEG reader";
    std::vector<uint8_t> expected = ExifPayloadOf(ReadFileBytes(copy));
    ExifBuffer marker = {};
    if (expected.empty()) {
        EXPECT_EQ(-1, zRExifGetExifMarker(reader, &marker));
        return;
    }
    ASSERT_EQ(0, zRExifGetExifMarker(reader, &marker));
    ASSERT_GE(marker.size, expected.size());
    std::vector<uint8_t> got = Bytes(marker.data, marker.size);
    delete[] marker.data;
    EXPECT_EQ(expected, std::vector<uint8_t>(got.begin(), got.begin() + long(expected.size())));
    EXPECT_EQ(std::vector<uint8_t>(got.size() - expected.size(), 0),
              std::vector<uint8_t>(got.begin() + long(expected.size()), got.end()));
}

INSTANTIATE_TEST_SUITE_P(Samples, CrossFamily, ::testing::ValuesIn(AllSamples()),
                         [](const auto &param) { return SampleTestName(param.param); });

}  // namespace
