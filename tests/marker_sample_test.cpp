#include <gtest/gtest.h>

#include "reader/tif_tag_list.h"
#include "support/jpeg_files.h"
#include "support/load_bytes.h"
#include "support/samples.h"
#include "support/tag_steps.h"
#include "support/temp_dir.h"
#include "support/thumb_jpeg.h"
#include "tree/walk.h"

namespace {

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

// Saves the document to out and gives the saved file loaded again.
DocPtr SaveAndReload(DocPtr doc, const std::string &out)
{
    return DocPtr(zExifSaveFile(doc.get(), out.c_str()) == 0 ? zExifLoadFile(out.c_str()) : nullptr);
}

// Its value is a position in the old block, whose sub-IFD the tree never
// holds: the save leaves it out rather than point into nothing.
constexpr uint32_t kInteropPointer = 40965;

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

// The Exif IFD's list from the reader goes into another TIFF file: after a
// save every tag of the table reads back the same.
TEST(CopyTiffExif, CarriesTheTableTagsIntoAnotherTiff)
{
    TempDir dir;
    std::string source = dir.Copy(Sample("tiff/Arbitro.tiff"), "source.tiff");
    const std::vector<EntryDef> table = {Ascii(36867, "2022:01:02 03:04:05"), Ascii(36868, "2022:01:02 03:04:05"),
                                         Rational(33434, 1, 250), Short(274, 6)};
    std::vector<TagStep> sets, gets;
    for (const EntryDef &entry : table) {
        sets.push_back(Set(entry, 0));
        gets.push_back(Get(entry, 0));
    }
    DocPtr doc(zExifLoadFile(source.c_str()));
    ASSERT_TRUE(doc);
    ASSERT_EQ("", RunSteps(*doc, sets));
    ASSERT_EQ(0, zExifSaveFile(doc.get(), source.c_str()));

    CExifReader *reader = zRExifBeginRead(source.c_str());
    ASSERT_NE(nullptr, reader);
    TifTagList *list = nullptr;
    ASSERT_EQ(0, zRExifGetTIFExifData(reader, &list));
    zRExifEndRead(reader);
    ASSERT_NE(nullptr, list);

    DocPtr target(zExifLoadFile(dir.Copy(Sample("tiff/Jobagent.tiff"), "target.tiff").c_str()));
    ASSERT_TRUE(target);
    ASSERT_EQ(0, zExifSetTIFExifData(target.get(), list));
    DocPtr copy = SaveAndReload(std::move(target), dir.Path("out.tiff"));
    ASSERT_TRUE(copy);
    EXPECT_EQ("", RunSteps(*copy, gets));
}

class SampleExif : public ::testing::TestWithParam<std::string> {};

// The raw segment of the source goes into a plain JPEG through the two
// families; after a save every tag of the source's Exif IFD reads back the
// same, with the thumbnail, and the target's image data is untouched.
TEST_P(SampleExif, CopiedIntoAPlainJpeg)
{
    TempDir dir;
    std::vector<uint8_t> plain = PlainJpeg(dir.m_path, 64, 48);
    if (plain.empty()) GTEST_SKIP() << "cjpeg missing";
    std::string source = dir.Copy(GetParam(), "source.jpg");
    CExifReader *reader = zRExifBeginRead(source.c_str());
    ASSERT_NE(nullptr, reader);
    ExifBuffer raw{nullptr, 0};
    int got = zRExifGetExifMarker(reader, &raw);
    zRExifEndRead(reader);
    if (got != 0) GTEST_SKIP() << "no Exif segment";

    DocPtr doc(zExifLoadFile(dir.Write("target.jpg", plain).c_str()));
    ASSERT_TRUE(doc);
    ASSERT_EQ(0, zExifInsertExifMarker(doc.get(), &raw));
    DocPtr copy = SaveAndReload(std::move(doc), dir.Path("out.jpg"));
    ASSERT_TRUE(copy);
    EXPECT_EQ(ScanDataOf(plain), ScanDataOf(ReadFileBytes(dir.Path("out.jpg"))));
    DocPtr original(zExifLoadFile(source.c_str()));
    ASSERT_TRUE(original);
    std::vector<uint32_t> tags = ExifIfdTags(original.get());
    for (uint32_t tag : tags) {
        if (tag == kInteropPointer) continue;
        GotTag want = GetTag(original.get(), tag, 0);
        GotTag have = GetTag(copy.get(), tag, 0);
        EXPECT_TRUE(want.type == have.type && want.count == have.count && want.bytes == have.bytes) << tag;
    }
    EXPECT_EQ(tags.size(), ExifIfdTags(copy.get()).size() + (GetTag(original.get(), kInteropPointer, 0).result == 0));
    EXPECT_EQ(GetThumbnail(original.get()), GetThumbnail(copy.get()));
}

// No Exif and no GPS data reach the saved file; the image data stays.
TEST_P(SampleExif, RemovedWithItsApp1)
{
    TempDir dir;
    std::string path = dir.Copy(GetParam(), "in.jpg");
    DocPtr doc(zExifLoadFile(path.c_str()));
    ASSERT_TRUE(doc);
    ASSERT_EQ(0, zExifRemoveMarker(doc.get(), 0xE1, 0));
    std::string out = dir.Path("out.jpg");
    ASSERT_EQ(0, zExifSaveFile(doc.get(), out.c_str()));

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

INSTANTIATE_TEST_SUITE_P(Samples, SampleExif, ::testing::ValuesIn(SamplesWithExif()),
                         [](const ::testing::TestParamInfo<std::string> &param) {
                             return SampleTestName(param.param);
                         });

}  // namespace
