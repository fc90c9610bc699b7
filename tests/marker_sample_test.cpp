#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "load/tiff_types.h"
#include "reader/tif_tag_list.h"
#include "support/jpeg_files.h"
#include "support/samples.h"
#include "support/thumb_jpeg.h"
#include "support/temp_dir.h"
#include "tree/document.h"
#include "tree/walk.h"
#include "zexif.h"

namespace {

// A tag's value as zExifGetTag hands it out: type, count and bytes.
struct TagValue {
    uint32_t type = 0;
    uint32_t count = 0;
    std::vector<uint8_t> bytes;
    bool found = false;
    bool operator==(const TagValue &o) const
    {
        return type == o.type && count == o.count && bytes == o.bytes && found == o.found;
    }
};

std::ostream &operator<<(std::ostream &out, const TagValue &v)
{
    return out << "type " << v.type << " count " << v.count << " bytes " << v.bytes.size();
}

TagValue GetTag(CExifDoc *doc, uint32_t tag)
{
    TagValue result;
    ExifTagValue value{0, 0, nullptr};
    if (zExifGetTag(doc, tag, &value, 0) != 0) return result;
    result.found = true;
    result.type = value.type;
    result.count = value.count;
    const uint8_t *data = static_cast<const uint8_t *>(value.data);
    if (data != nullptr) result.bytes.assign(data, data + EntryDataSize(value.type, value.count));
    std::free(value.data);
    return result;
}

// The numbers of the tags in the Exif IFD of a loaded document.
std::vector<uint32_t> ExifIfdTags(CExifDoc *doc)
{
    std::vector<uint32_t> tags;
    if (doc->m_exifIfdTag == nullptr) return tags;
    for (CNode *node = doc->m_exifIfdTag->m_child; node != nullptr; node = node->m_next) {
        if (AsTag(node) != nullptr) tags.push_back(uint32_t(node->m_id));
    }
    return tags;
}

CExifDoc *SaveAndReload(CExifDoc *doc, const std::string &out)
{
    int saved = zExifSaveFile(doc, out.c_str());
    zExifDestroy(doc);
    return saved == 0 ? zExifLoadFile(out.c_str()) : nullptr;
}

// Its value is a position in the old block, whose sub-IFD the tree never
// holds: the save leaves it out rather than point into nothing.
constexpr uint32_t kInteropPointer = 40965;

const char kDate[21] = "2022:01:02 03:04:05";

std::vector<std::string> SamplesWithExif()
{
    std::vector<std::string> paths;
    for (const std::string &path : JpegSamples()) {
        CExifReader *reader = zRExifBeginRead(path.c_str());
        if (reader == nullptr) continue;
        if (zRExifIsExifExist(reader) == 1) paths.push_back(path);
        zRExifEndRead(reader);
    }
    return paths;
}

// A TIFF sample given Exif tags by the library is the source.
std::string TiffWithExif(const TempDir &dir, const std::vector<std::pair<uint32_t, std::vector<uint8_t>>> &ascii)
{
    std::string path = dir.Copy(Sample("tiff/Arbitro.tiff"), "source.tiff");
    CExifDoc *doc = zExifLoadFile(path.c_str());
    if (doc == nullptr) return "";
    for (const auto &[tag, bytes] : ascii) {
        ExifTagValue value{2, uint32_t(bytes.size()), const_cast<uint8_t *>(bytes.data())};
        zExifSetTag(doc, tag, &value, 0);
    }
    uint32_t exposure[2] = {1, 250};
    ExifTagValue rational{5, 1, exposure};
    zExifSetTag(doc, 33434, &rational, 0);
    uint16_t orientation = 6;
    ExifTagValue shortValue{3, 1, &orientation};
    zExifSetTag(doc, 274, &shortValue, 0);
    int saved = zExifSaveFile(doc, path.c_str());
    zExifDestroy(doc);
    return saved == 0 ? path : "";
}

// The Exif IFD's list from the reader goes into another TIFF file: after a
// save every tag of the table reads back the same.
TEST(CopyTiffExif, CarriesTheTableTagsIntoAnotherTiff)
{
    TempDir dir;
    std::vector<uint8_t> date(kDate, kDate + 20);
    std::string source = TiffWithExif(dir, {{36867, date}, {36868, date}});
    ASSERT_FALSE(source.empty());
    CExifReader *reader = zRExifBeginRead(source.c_str());
    ASSERT_NE(nullptr, reader);
    TifTagList *list = nullptr;
    ASSERT_EQ(0, zRExifGetTIFExifData(reader, &list));
    zRExifEndRead(reader);
    ASSERT_NE(nullptr, list);

    std::string target = dir.Copy(Sample("tiff/Jobagent.tiff"), "target.tiff");
    CExifDoc *doc = zExifLoadFile(target.c_str());
    ASSERT_NE(nullptr, doc);
    ASSERT_EQ(0, zExifSetTIFExifData(doc, list));
    CExifDoc *copy = SaveAndReload(doc, dir.Path("out.tiff"));
    ASSERT_NE(nullptr, copy);
    CExifDoc *original = zExifLoadFile(source.c_str());
    for (uint32_t tag : {36867u, 36868u, 33434u, 274u}) EXPECT_EQ(GetTag(original, tag), GetTag(copy, tag)) << tag;
    EXPECT_TRUE(GetTag(copy, 36867).found);
    zExifDestroy(original);
    zExifDestroy(copy);
}

class CopyExif : public ::testing::TestWithParam<std::string> {};

// The raw segment of the source goes into a plain JPEG through the two
// families; after a save every tag of the source's Exif IFD reads back the
// same, and the target's image data is untouched.
TEST_P(CopyExif, CarriesTheExifIfdIntoAPlainJpeg)
{
    TempDir dir;
    std::vector<uint8_t> plain = PlainJpeg(dir.m_path, 64, 48);
    if (plain.empty()) GTEST_SKIP() << "cjpeg missing";
    std::string source = dir.Copy(GetParam(), "source.jpg");
    std::string target = dir.Write("target.jpg", plain);

    CExifReader *reader = zRExifBeginRead(source.c_str());
    ASSERT_NE(nullptr, reader);
    ExifBuffer raw{nullptr, 0};
    int got = zRExifGetExifMarker(reader, &raw);
    zRExifEndRead(reader);
    if (got != 0) GTEST_SKIP() << "no Exif segment";

    CExifDoc *doc = zExifLoadFile(target.c_str());
    ASSERT_NE(nullptr, doc);
    ASSERT_EQ(0, zExifInsertExifMarker(doc, &raw));
    CExifDoc *copy = SaveAndReload(doc, dir.Path("out.jpg"));
    ASSERT_NE(nullptr, copy);
    EXPECT_EQ(ScanDataOf(plain), ScanDataOf(ReadFileBytes(dir.Path("out.jpg"))));
    CExifDoc *original = zExifLoadFile(source.c_str());
    ASSERT_NE(nullptr, original);
    std::vector<uint32_t> tags = ExifIfdTags(original);
    for (uint32_t tag : tags) {
        if (tag == kInteropPointer) continue;
        EXPECT_EQ(GetTag(original, tag), GetTag(copy, tag)) << "tag " << tag;
    }
    EXPECT_EQ(tags.size(), ExifIfdTags(copy).size() + (GetTag(original, kInteropPointer).found ? 1 : 0));
    EXPECT_EQ(GetThumbnail(original), GetThumbnail(copy));
    zExifDestroy(original);
    zExifDestroy(copy);
}

INSTANTIATE_TEST_SUITE_P(Samples, CopyExif, ::testing::ValuesIn(SamplesWithExif()),
                         [](const ::testing::TestParamInfo<std::string> &param) { return SampleTestName(param.param); });

class RemoveApp1 : public ::testing::TestWithParam<std::string> {};

// No Exif and no GPS data reach the saved file; the image data stays.
TEST_P(RemoveApp1, LeavesNoExifInTheSavedFile)
{
    TempDir dir;
    std::string path = dir.Copy(GetParam(), "in.jpg");
    CExifDoc *doc = zExifLoadFile(path.c_str());
    if (doc == nullptr) GTEST_SKIP() << "not loadable";
    ASSERT_EQ(0, zExifRemoveMarker(doc, 0xE1, 0));
    std::string out = dir.Path("out.jpg");
    ASSERT_EQ(0, zExifSaveFile(doc, out.c_str()));
    zExifDestroy(doc);

    std::vector<uint8_t> saved = ReadFileBytes(out);
    for (const JpegSegmentView &segment : SegmentsOf(saved)) EXPECT_NE(0xE1, segment.code);
    CExifReader *reader = zRExifBeginRead(out.c_str());
    ASSERT_NE(nullptr, reader);
    ExifTagValue value{0, 0, nullptr};
    EXPECT_EQ(0, zRExifIsExifExist(reader));
    EXPECT_EQ(-1, zRExifGetTag(reader, 34853, &value));
    EXPECT_EQ(-1, zRExifGetTag(reader, 2, &value));
    zRExifEndRead(reader);
    EXPECT_EQ(ScanDataOf(ReadFileBytes(path)), ScanDataOf(saved));
}

INSTANTIATE_TEST_SUITE_P(Samples, RemoveApp1, ::testing::ValuesIn(SamplesWithExif()),
                         [](const ::testing::TestParamInfo<std::string> &param) { return SampleTestName(param.param); });

}  // namespace
