#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/load_bytes.h"
#include "support/samples.h"
#include "support/tag_steps.h"
#include "support/temp_dir.h"
#include "support/tree_check.h"
#include "tree/walk.h"

namespace {

// A sample copied into a fresh directory and loaded from there.
struct LoadedSample {
    explicit LoadedSample(const std::string &relative)
        : path(dir.Copy(Sample(relative), "sample" + relative.substr(relative.rfind('.')))),
          doc(zExifLoadFile(path.c_str()))
    {
    }

    TempDir dir;
    std::string path;
    DocPtr doc;
};

// Values read off the files' bytes by hand; the byte order is the one of the
// file's TIFF block. GPS tags 1, 2 and 3 share their numbers with the header,
// IFD and count nodes that a walk from IFD 0 meets first.
struct SampleCase {
    const char *file;
    bool bigEndian;
    std::vector<TagStep> steps;
};

void PrintTo(const SampleCase &c, std::ostream *os)
{
    *os << c.file;
}

class SampleTags : public ::testing::TestWithParam<SampleCase> {};

TEST_P(SampleTags, ReadAsTheFileHoldsThem)
{
    LoadedSample sample(GetParam().file);
    ASSERT_TRUE(sample.doc);
    EXPECT_EQ(GetParam().bigEndian, sample.doc->m_bigEndian != 0);
    EXPECT_EQ("", RunSteps(*sample.doc, GetParam().steps));
}

std::vector<TagStep> Camera(const char *make, const char *model, const char *date, uint32_t numerator,
                            uint32_t denominator)
{
    return {Get(Ascii(271, make), 0), Get(Ascii(272, model), 0), Get(Ascii(36867, date), 1),
            Get(Rational(33434, numerator, denominator), 0), Missing(271, 1)};
}

std::vector<TagStep> Latitude(uint32_t type, const std::vector<uint32_t> &numbers)
{
    return {Get(Ascii(1, "N"), 0), Get(Ascii(3, "E"), 0), Get(Numbers(2, type, numbers), 0), Missing(2, 1)};
}

std::vector<TagStep> Join(std::vector<TagStep> first, const std::vector<TagStep> &second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

INSTANTIATE_TEST_SUITE_P(
    Files, SampleTags,
    ::testing::Values(SampleCase{"jpg/Canon_40D.jpg", false,
                                 Camera("Canon", "Canon EOS 40D", "2008:05:30 15:56:01", 1, 160)},
                      SampleCase{"jpg/gps/DSCN0010.jpg", false,
                                 Join(Camera("NIKON", "COOLPIX P6000", "2008:10:22 16:28:39", 4, 300),
                                      Latitude(TIFF_RATIONAL, {43, 1, 28, 1, 281400000, 100000000}))},
                      SampleCase{"jpg/Fujifilm_FinePix_E500.jpg", true,
                                 Camera("FUJIFILM", "FinePix E500   ", "2006:08:17 09:24:48", 10, 800)},
                      SampleCase{"jpg/mobile/HMD_Nokia_8.3_5G.jpg", true,
                                 Join(Camera("HMD Global", "Nokia 8.3 5G", "2022:08:14 14:12:31", 541, 1000000),
                                      Latitude(TIFF_SRATIONAL, {60, 1, 8, 1, 4814, 100}))},
                      // Without an Exif IFD, a tag of its table such as orientation is not found.
                      SampleCase{"tiff/Crémieux11.tiff",
                                 true,
                                 {Get(Ascii(305, "Mac OS X 10.5.8 (9L31a)"), 0), Get(Short(256, 199), 0),
                                  Get(Numbers(258, TIFF_SHORT, {8, 8, 8, 8}), 0), Missing(274, 0)}}));

class SampleEdits : public ::testing::TestWithParam<const char *> {};

// A new tag, a replaced one, a removed one; then every Exif tag goes, and
// with them the Exif IFD. The payload still lies on file, yet a lookup brings
// none of them back, and a set builds a new Exif IFD. A camera's IFD 0 need
// not be sorted, so only the rest is checked.
TEST_P(SampleEdits, KeepTheTreeWholeAndDeletedTagsDeleted)
{
    LoadedSample sample(GetParam());
    ASSERT_TRUE(sample.doc);
    CExifDoc &doc = *sample.doc;
    EXPECT_EQ("", RunSteps(doc, {Set(Ascii(270, "edited"), 0), Set(Rational(33434, 1, 2), 0), Del(272, 0),
                                 Get(Ascii(270, "edited"), 0), Get(Rational(33434, 1, 2), 0), Missing(272, 0)}));
    EXPECT_EQ("", TreeFaults(doc, false));

    for (int guard = 0; doc.m_exifIfdTag != nullptr && guard < 200; guard++) {
        CTag *first = AsTag(doc.m_exifIfdTag->m_child->m_next);
        ASSERT_NE(nullptr, first);
        ASSERT_EQ(0, zExifDelTag(&doc, uint32_t(first->m_id), 0));
        ASSERT_EQ("", TreeFaults(doc, false));
    }
    ASSERT_EQ(nullptr, doc.m_exifIfdTag);
    EXPECT_NE(nullptr, doc.m_exifMarker);
    EntryDef date = Ascii(36867, "2030:01:01 00:00:00");
    EXPECT_EQ("", RunSteps(doc, {Missing(36867, 0), Missing(33434, 0), Get(Ascii(270, "edited"), 0), Set(date, 0),
                                 Get(date, 0), Missing(33434, 0)}));
    ASSERT_NE(nullptr, doc.m_exifIfdTag);
    EXPECT_EQ(1u, doc.m_exifIfdTag->m_child->m_value);
    EXPECT_EQ("", TreeFaults(doc, false));
}

INSTANTIATE_TEST_SUITE_P(Files, SampleEdits,
                         ::testing::Values("jpg/Canon_40D.jpg", "jpg/gps/DSCN0010.jpg",
                                           "jpg/mobile/HMD_Nokia_8.3_5G.jpg", "jpg/exif-org/kodak-dc240.jpg"));

}  // namespace
