#include <gtest/gtest.h>

#include <cstdlib>

#include "support/tree_builder.h"
#include "support/tree_check.h"
#include "tree/walk.h"

namespace {

const char *const kAroundApp1 = "216 224'JFIF' ";
const char *const kBehindApp1 = " 219 218 161 217";

std::string JpegShape(const std::string &app1)
{
    return kAroundApp1 + app1 + (app1.empty() ? "219 218 161 217" : kBehindApp1);
}

int Has(CExifDoc *doc, uint32_t tag, int ifd)
{
    ExifTagValue value{0, 0, nullptr};
    int result = zExifGetTag(doc, tag, &value, ifd);
    std::free(value.data);
    return result;
}

void ExpectSound(const CExifDoc &doc)
{
    EXPECT_EQ("", TreeFaults(doc, true));
}

// The last Exif tag takes the Exif IFD, then IFD 0 that held only the
// pointer, then the APP1 that held only IFD 0.
TEST(DeleteCascade, LastExifTagTakesTheWholeApp1)
{
    auto doc = JpegDoc({{Pointer(34665, {Ascii(36867, "2020:01:02 03:04:05")})}});
    ASSERT_EQ(0, zExifDelTag(doc.get(), 36867, 5));
    EXPECT_EQ(JpegShape(""), Outline(*doc));
    EXPECT_EQ(nullptr, doc->m_exifMarker);
    EXPECT_EQ(nullptr, doc->m_exifIfdTag);
    EXPECT_EQ(1, zExifIsExifExist(doc.get()));
    ExpectSound(*doc);
}

TEST(DeleteCascade, AnIfd1KeepsTheApp1)
{
    auto doc = JpegDoc({{Pointer(34665, {Ascii(36867, "x")})}, {Short(259, 6)}});
    ASSERT_EQ(0, zExifDelTag(doc.get(), 36867, 0));
    EXPECT_EQ(JpegShape("225'Exif'[1 2:1[3:1 259 60]]"), Outline(*doc));
    EXPECT_NE(nullptr, doc->m_exifMarker);
    EXPECT_EQ(nullptr, doc->m_exifIfdTag);
    EXPECT_EQ(0, Has(doc.get(), 259, 1));
    ExpectSound(*doc);
}

TEST(DeleteCascade, OtherIfd0EntriesKeepIfd0)
{
    auto doc = JpegDoc({{Ascii(271, "Cam"), Pointer(34665, {Ascii(36867, "x")})}});
    ASSERT_EQ(0, zExifDelTag(doc.get(), 36867, 0));
    EXPECT_EQ(JpegShape("225'Exif'[1 2:0[3:1 271 60]]"), Outline(*doc));
    EXPECT_EQ(1, zExifIsExifExist(doc.get()));
    ExpectSound(*doc);
}

// A parsed block is never parsed again: what was deleted stays deleted, and
// the next Exif tag builds a new Exif IFD.
TEST(DeleteCascade, DeletedExifTagsDontComeBack)
{
    auto doc = JpegDoc({{Ascii(271, "Cam"), Pointer(34665, {Ascii(36867, "x")})}});
    ASSERT_EQ(0, zExifDelTag(doc.get(), 36867, 0));
    EXPECT_EQ(-1, Has(doc.get(), 36867, 0));
    EXPECT_EQ(-1, zExifDelTag(doc.get(), 36867, 0));
    EntryDef date = Ascii(36868, "2021:01:01 00:00:00");
    ExifTagValue value = ValueOf(date);
    ASSERT_EQ(0, zExifSetTag(doc.get(), 36868, &value, 0));
    EXPECT_EQ(JpegShape("225'Exif'[1 2:0[3:2 271 34665[3:1 36868 60] 60]]"), Outline(*doc));
    EXPECT_EQ(0, Has(doc.get(), 36868, 0));
    EXPECT_EQ(-1, Has(doc.get(), 36867, 0));
    ExpectSound(*doc);
}

// Tags outside the table take only their IFD with them.
TEST(DeleteCascade, EmptiedIfdGoesButNotTheApp1)
{
    auto doc = JpegDoc({{Ascii(271, "Cam")}});
    ASSERT_EQ(0, zExifDelTag(doc.get(), 271, 0));
    EXPECT_EQ(JpegShape("225'Exif'[1]"), Outline(*doc));
    EntryDef model = Ascii(272, "M");
    ExifTagValue value = ValueOf(model);
    ASSERT_EQ(0, zExifSetTag(doc.get(), 272, &value, 0));
    EXPECT_EQ(JpegShape("225'Exif'[1 2:0[3:1 272 60]]"), Outline(*doc));
    ExpectSound(*doc);
}

TEST(DeleteCascade, TiffKeepsItsOnlyIfdForTheExifCascade)
{
    auto doc = TiffDoc({{Pointer(34665, {Rational(33434, 1, 60)})}});
    ASSERT_EQ(0, zExifDelTag(doc.get(), 33434, 0));
    EXPECT_EQ("1 2:0[3:0 60]", Outline(*doc));
    EXPECT_EQ(nullptr, doc->m_exifIfdTag);
    ExpectSound(*doc);
}

TEST(DeleteCascade, TiffLosesAnIfdEmptiedByOtherTags)
{
    auto doc = TiffDoc({{Short(256, 8)}, {Short(256, 4)}});
    ASSERT_EQ(0, zExifDelTag(doc.get(), 256, 1));
    EXPECT_EQ("1 2:0[3:1 256 60]", Outline(*doc));
    ASSERT_EQ(0, zExifDelTag(doc.get(), 256, 0));
    EXPECT_EQ("1", Outline(*doc));
    EXPECT_EQ(-1, zExifDelTag(doc.get(), 256, 0));
}

// An IFD with no entries can't be read back, so a GPS IFD that loses its
// last tag takes its pointer with it.
TEST(DeleteCascade, EmptiedGpsIfdTakesItsPointer)
{
    auto doc = JpegDoc({{Ascii(271, "Cam"), Pointer(34853, {Ascii(1, "N")})}});
    ASSERT_EQ(0, zExifDelTag(doc.get(), 1, 0));
    EXPECT_EQ(JpegShape("225'Exif'[1 2:0[3:1 271 60]]"), Outline(*doc));
    ExpectSound(*doc);
}

// The count that falls is the one of the chain that held the tag.
TEST(DeleteCounts, FallInTheChainThatHeldTheTag)
{
    auto doc = JpegDoc({{Ascii(271, "Cam"), Pointer(34665, {Ascii(36867, "x"), Short(37383, 2)}), Short(41728, 3)},
                        {Short(259, 6), Long(305, 1)}});
    ASSERT_EQ(0, zExifDelTag(doc.get(), 41728, 1));
    ASSERT_EQ(0, zExifDelTag(doc.get(), 305, 0));
    ASSERT_EQ(0, zExifDelTag(doc.get(), 37383, 0));
    EXPECT_EQ(JpegShape("225'Exif'[1 2:0[3:2 271 34665[3:1 36867 60] 60] 2:1[3:1 259 60]]"), Outline(*doc));
    ExpectSound(*doc);
}

// Numbers 1, 2, 3 and 60 remove real tags only, never a header, IFD, count
// or link node.
TEST(DeleteStructural, RemovesRealTagsOnly)
{
    auto doc = JpegDoc({{Short(256, 1), Pointer(34853, {Ascii(1, "N"), Rational(2, 4, 1), Ascii(3, "E")})}});
    std::string before = Outline(*doc);
    EXPECT_EQ(-1, zExifDelTag(doc.get(), 60, 0));
    EXPECT_EQ(-1, zExifDelTag(doc.get(), 1, 1));
    EXPECT_EQ(before, Outline(*doc));
    ASSERT_EQ(0, zExifDelTag(doc.get(), 3, 0));
    ASSERT_EQ(0, zExifDelTag(doc.get(), 2, 0));
    EXPECT_EQ(JpegShape("225'Exif'[1 2:0[3:2 256 34853[3:1 1 60] 60]]"), Outline(*doc));
    ASSERT_EQ(0, zExifDelTag(doc.get(), 1, 0));
    EXPECT_EQ(-1, zExifDelTag(doc.get(), 3, 0));
    EXPECT_EQ(-1, zExifDelTag(doc.get(), 2, 0));
    EXPECT_EQ(JpegShape("225'Exif'[1 2:0[3:1 256 60]]"), Outline(*doc));
    ExpectSound(*doc);
}

TEST(DeleteStructural, RealTagsSixtyAndSeventy)
{
    auto doc = TiffDoc({{Short(59, 1), Short(60, 2), Short(70, 3), Short(80, 4)}});
    for (uint32_t number : {60u, 70u, 80u}) {
        ASSERT_EQ(0, zExifDelTag(doc.get(), number, 0)) << number;
        EXPECT_EQ(-1, Has(doc.get(), number, 0)) << number;
    }
    EXPECT_EQ("1 2:0[3:1 59 60]", Outline(*doc));
}

TEST(DeleteShortcuts, ThumbnailTagTakesTheThumbnailFlags)
{
    auto doc = JpegDoc({{Ascii(271, "Cam")}, {Short(259, 6), Long(513, 0), Long(514, 0)}});
    doc->m_thumbLoaded = 1;
    ASSERT_EQ(1, zExifIsThumbnailExist(doc.get()));
    ASSERT_EQ(0, zExifDelTag(doc.get(), 513, 1));
    EXPECT_EQ(nullptr, doc->m_thumbTag);
    EXPECT_EQ(0, doc->m_hasThumb);
    EXPECT_EQ(0, doc->m_thumbLoaded);
    EXPECT_EQ(0u, zExifGetThumbType(doc.get()) & THUMB_TYPE_JPEG);
    EXPECT_EQ(0, zExifIsThumbnailExist(doc.get()));
    ExpectSound(*doc);
}

// A tag 513 that stood in the Exif IFD goes with the whole APP1 when the
// cascade takes it, and the shortcuts go with their nodes.
TEST(DeleteShortcuts, ClearedWhenAnAncestorGoes)
{
    auto doc = JpegDoc({{Pointer(34665, {Long(513, 0)})}});
    doc->m_cur = doc->m_thumbTag;
    ASSERT_EQ(0, zExifDelTag(doc.get(), 513, 0));
    EXPECT_EQ(JpegShape(""), Outline(*doc));
    EXPECT_EQ(nullptr, doc->m_thumbTag);
    EXPECT_EQ(nullptr, doc->m_exifIfdTag);
    EXPECT_EQ(nullptr, doc->m_exifMarker);
    EXPECT_EQ(0, doc->m_hasThumb);
    ExpectSound(*doc);
}

TEST(DeleteShortcuts, ExifPointerByNumberTakesItsIfd)
{
    auto doc = JpegDoc({{Ascii(271, "Cam"), Pointer(34665, {Ascii(36867, "x")})}});
    ASSERT_EQ(0, zExifDelTag(doc.get(), 34665, 0));
    EXPECT_EQ(nullptr, doc->m_exifIfdTag);
    EXPECT_EQ(-1, Has(doc.get(), 36867, 0));
    EXPECT_EQ(JpegShape("225'Exif'[1 2:0[3:1 271 60]]"), Outline(*doc));
    ExpectSound(*doc);
}

TEST(DeleteTag, FailuresChangeNothing)
{
    auto doc = JpegDoc({{Ascii(271, "Cam"), Pointer(34665, {Ascii(36867, "x")})}});
    std::string before = TreeDump(*doc);
    EXPECT_EQ(-1, zExifDelTag(nullptr, 271, 0));
    EXPECT_EQ(-1, zExifDelTag(doc.get(), 272, 0));
    EXPECT_EQ(-1, zExifDelTag(doc.get(), 271, 1));
    EXPECT_EQ(-1, zExifDelTag(doc.get(), 271, -1));
    EXPECT_EQ(-1, zExifDelTag(doc.get(), 33434, 0));
    EXPECT_EQ(-1, zExifDelTag(doc.get(), 271 + 65536, 0));
    EXPECT_EQ(before, TreeDump(*doc));

    auto plain = JpegDoc({});
    EXPECT_EQ(-1, zExifDelTag(plain.get(), 36867, 0));
    EXPECT_EQ(-1, zExifDelTag(plain.get(), 271, 0));
}

}  // namespace
