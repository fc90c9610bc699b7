#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "edit/tag_lookup.h"
#include "support/samples.h"
#include "support/temp_dir.h"
#include "support/tree_builder.h"
#include "support/tree_check.h"
#include "tree/walk.h"

namespace {

struct Got {
    int result = -1;
    uint32_t type = 0;
    uint32_t count = 0;
    std::vector<uint8_t> bytes;
};

Got Get(CExifDoc *doc, uint32_t tag, int ifd)
{
    Got got;
    ExifTagValue value{0, 0, nullptr};
    got.result = zExifGetTag(doc, tag, &value, ifd);
    if (got.result != 0) return got;
    got.type = value.type;
    got.count = value.count;
    if (value.data != nullptr) {
        const uint8_t *data = static_cast<const uint8_t *>(value.data);
        got.bytes.assign(data, data + ValueDataSize(value));
        std::free(value.data);
    }
    return got;
}

std::vector<uint8_t> Text(const std::string &text)
{
    std::vector<uint8_t> bytes(text.begin(), text.end());
    bytes.push_back(0);
    return bytes;
}

std::vector<uint8_t> Numbers(const std::vector<uint32_t> &numbers)
{
    std::vector<uint8_t> bytes(numbers.size() * 4);
    std::memcpy(bytes.data(), numbers.data(), bytes.size());
    return bytes;
}

// A sample copied into a fresh directory and loaded from there.
struct LoadedSample {
    explicit LoadedSample(const std::string &relative)
        : path(dir.Copy(Sample(relative), "sample" + relative.substr(relative.rfind('.')))),
          doc(zExifLoadFile(path.c_str()))
    {
    }
    ~LoadedSample()
    {
        if (doc != nullptr) zExifDestroy(doc);
    }

    TempDir dir;
    std::string path;
    CExifDoc *doc;
};

// Values read off the files' bytes by hand; the byte order is the one of the
// file's TIFF block.
struct CameraCase {
    const char *file;
    bool bigEndian;
    const char *make;
    const char *model;
    const char *dateTimeOriginal;
    uint32_t exposure[2];
};

void PrintTo(const CameraCase &c, std::ostream *os)
{
    *os << c.file;
}

class CameraTags : public ::testing::TestWithParam<CameraCase> {};

TEST_P(CameraTags, ReadAsTheFileHoldsThem)
{
    LoadedSample sample(GetParam().file);
    ASSERT_NE(nullptr, sample.doc);
    EXPECT_EQ(GetParam().bigEndian, sample.doc->m_bigEndian != 0);
    Got make = Get(sample.doc, 271, 0);
    ASSERT_EQ(0, make.result);
    EXPECT_EQ(uint32_t(TIFF_ASCII), make.type);
    EXPECT_EQ(Text(GetParam().make), make.bytes);
    EXPECT_EQ(Text(GetParam().model), Get(sample.doc, 272, 0).bytes);
    Got date = Get(sample.doc, 36867, 1);
    ASSERT_EQ(0, date.result);
    EXPECT_EQ(20u, date.count);
    EXPECT_EQ(Text(GetParam().dateTimeOriginal), date.bytes);
    Got exposure = Get(sample.doc, 33434, 0);
    ASSERT_EQ(0, exposure.result);
    EXPECT_EQ(uint32_t(TIFF_RATIONAL), exposure.type);
    EXPECT_EQ(1u, exposure.count);
    EXPECT_EQ(Numbers({GetParam().exposure[0], GetParam().exposure[1]}), exposure.bytes);
    EXPECT_EQ(-1, Get(sample.doc, 271, 1).result);
}

INSTANTIATE_TEST_SUITE_P(
    Files, CameraTags,
    ::testing::Values(
        CameraCase{"jpg/Canon_40D.jpg", false, "Canon", "Canon EOS 40D", "2008:05:30 15:56:01", {1, 160}},
        CameraCase{"jpg/gps/DSCN0010.jpg", false, "NIKON", "COOLPIX P6000", "2008:10:22 16:28:39", {4, 300}},
        CameraCase{"jpg/Fujifilm_FinePix_E500.jpg", true, "FUJIFILM", "FinePix E500   ", "2006:08:17 09:24:48",
                   {10, 800}},
        CameraCase{"jpg/mobile/HMD_Nokia_8.3_5G.jpg", true, "HMD Global", "Nokia 8.3 5G", "2022:08:14 14:12:31",
                   {541, 1000000}}));

struct GpsCase {
    const char *file;
    uint32_t latitudeType;
    uint32_t latitude[6];
};

void PrintTo(const GpsCase &c, std::ostream *os)
{
    *os << c.file;
}

class GpsTags : public ::testing::TestWithParam<GpsCase> {};

// Tags 1, 2 and 3 of the GPS IFD share their numbers with the header, IFD
// and count nodes that a walk from IFD 0 meets first.
TEST_P(GpsTags, ReadFromTheSubIfd)
{
    LoadedSample sample(GetParam().file);
    ASSERT_NE(nullptr, sample.doc);
    EXPECT_EQ(Text("N"), Get(sample.doc, 1, 0).bytes);
    EXPECT_EQ(Text("E"), Get(sample.doc, 3, 0).bytes);
    Got latitude = Get(sample.doc, 2, 0);
    ASSERT_EQ(0, latitude.result);
    EXPECT_EQ(GetParam().latitudeType, latitude.type);
    EXPECT_EQ(3u, latitude.count);
    const uint32_t *l = GetParam().latitude;
    EXPECT_EQ(Numbers({l[0], l[1], l[2], l[3], l[4], l[5]}), latitude.bytes);
    EXPECT_EQ(-1, Get(sample.doc, 2, 1).result);
}

INSTANTIATE_TEST_SUITE_P(
    Files, GpsTags,
    ::testing::Values(GpsCase{"jpg/gps/DSCN0010.jpg", TIFF_RATIONAL, {43, 1, 28, 1, 281400000, 100000000}},
                      GpsCase{"jpg/mobile/HMD_Nokia_8.3_5G.jpg", TIFF_SRATIONAL, {60, 1, 8, 1, 4814, 100}}));

TEST(TiffSample, BigEndianIfd0)
{
    LoadedSample sample("tiff/Crémieux11.tiff");
    ASSERT_NE(nullptr, sample.doc);
    EXPECT_EQ(1, sample.doc->m_bigEndian);
    EXPECT_EQ(Text("Mac OS X 10.5.8 (9L31a)"), Get(sample.doc, 305, 0).bytes);
    Got width = Get(sample.doc, 256, 0);
    EXPECT_EQ(uint32_t(TIFF_SHORT), width.type);
    EXPECT_EQ((std::vector<uint8_t>{199, 0}), width.bytes);
    Got bits = Get(sample.doc, 258, 0);
    EXPECT_EQ((std::vector<uint8_t>{8, 0, 8, 0, 8, 0, 8, 0}), bits.bytes);
    // The file has no Exif IFD, and orientation is an Exif IFD tag here.
    EXPECT_EQ(-1, Get(sample.doc, 274, 0).result);
}

class SampleEdits : public ::testing::TestWithParam<const char *> {};

// Edits on a loaded file: a new tag, a replaced one, a removed one. A
// camera's IFD 0 need not be sorted, so only the rest is checked.
TEST_P(SampleEdits, KeepTheTreeWhole)
{
    LoadedSample sample(GetParam());
    ASSERT_NE(nullptr, sample.doc);
    EntryDef description = Ascii(270, "edited");
    EntryDef exposure = Rational(33434, 1, 2);
    ExifTagValue value = ValueOf(description);
    ASSERT_EQ(0, zExifSetTag(sample.doc, 270, &value, 0));
    value = ValueOf(exposure);
    ASSERT_EQ(0, zExifSetTag(sample.doc, 33434, &value, 0));
    ASSERT_EQ(0, zExifDelTag(sample.doc, 272, 0));
    EXPECT_EQ(description.bytes, Get(sample.doc, 270, 0).bytes);
    EXPECT_EQ(exposure.bytes, Get(sample.doc, 33434, 0).bytes);
    EXPECT_EQ(-1, Get(sample.doc, 272, 0).result);
    EXPECT_EQ("", TreeFaults(*sample.doc, false));
}

// The Exif payload still lies on file, yet once the last Exif tag is gone a
// lookup doesn't bring any of them back, and a set builds a new Exif IFD.
TEST_P(SampleEdits, DeletedExifIfdStaysDeleted)
{
    LoadedSample sample(GetParam());
    ASSERT_NE(nullptr, sample.doc);
    int guard = 0;
    while (sample.doc->m_exifIfdTag != nullptr && guard++ < 200) {
        CTag *first = AsTag(sample.doc->m_exifIfdTag->m_child->m_next);
        ASSERT_NE(nullptr, first);
        ASSERT_EQ(0, zExifDelTag(sample.doc, uint32_t(first->m_id), 0));
        ASSERT_EQ("", TreeFaults(*sample.doc, false));
    }
    ASSERT_EQ(nullptr, sample.doc->m_exifIfdTag);
    EXPECT_NE(nullptr, sample.doc->m_exifMarker);
    EXPECT_EQ(-1, Get(sample.doc, 36867, 0).result);
    EXPECT_EQ(-1, Get(sample.doc, 33434, 0).result);
    EXPECT_EQ(0, Get(sample.doc, 271, 0).result);

    EntryDef date = Ascii(36867, "2030:01:01 00:00:00");
    ExifTagValue value = ValueOf(date);
    ASSERT_EQ(0, zExifSetTag(sample.doc, 36867, &value, 0));
    EXPECT_EQ(date.bytes, Get(sample.doc, 36867, 0).bytes);
    EXPECT_EQ(-1, Get(sample.doc, 33434, 0).result);
    ASSERT_NE(nullptr, sample.doc->m_exifIfdTag);
    EXPECT_EQ(1u, sample.doc->m_exifIfdTag->m_child->m_value);
    EXPECT_EQ("", TreeFaults(*sample.doc, false));
}

INSTANTIATE_TEST_SUITE_P(Files, SampleEdits,
                         ::testing::Values("jpg/Canon_40D.jpg", "jpg/gps/DSCN0010.jpg",
                                           "jpg/mobile/HMD_Nokia_8.3_5G.jpg", "jpg/exif-org/kodak-dc240.jpg"));

}  // namespace
