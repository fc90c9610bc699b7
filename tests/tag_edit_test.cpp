#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <functional>

#include "edit/tag_lookup.h"
#include "support/case_name.h"
#include "support/tag_steps.h"
#include "support/tree_check.h"
#include "tree/walk.h"

namespace {

// A JPEG document's outline around its APP1 (none for "").
std::string InJpeg(const std::string &app1)
{
    return "216 224'JFIF' " + app1 + (app1.empty() ? "" : " ") + "219 218 161 217";
}

// What the flags say: "exif thumb" as 0 or 1, then the byte order.
std::string Flags(CExifDoc &doc)
{
    return std::to_string(zExifIsExifExist(&doc)) + std::to_string(zExifIsThumbnailExist(&doc)) +
           (doc.m_bigEndian ? " MM" : " II");
}

using Make = std::function<std::unique_ptr<CExifDoc>()>;

Make Jpeg(const std::vector<IfdDef> &ifds)
{
    return [ifds] { return JpegDoc(ifds); };
}

Make Tiff(const std::vector<IfdDef> &ifds)
{
    return [ifds] { return TiffDoc(ifds); };
}

// A JPEG of these markers, an APP0 of JFIF, an APP1 of XMP, and an Exif APP1
// with these IFDs for the code 0x1E1.
Make Markers(const std::vector<int> &codes, const std::vector<IfdDef> &ifds = {})
{
    return [codes, ifds] {
        TreeBuilder builder(FORMAT_JPEG);
        for (int code : codes) {
            if (code == 0x1E1) builder.ExifApp1(ifds);
            if (code != 0x1E1) builder.Marker(code, code == 0xE0 ? "JFIF" : "http");
        }
        return builder.Take();
    };
}

// A document, the calls made on it, and the outline and flags it must end
// with ("" where they don't matter).
struct EditCase {
    const char *name;
    Make make;
    std::vector<TagStep> steps;
    std::string outline;
    std::string flags = "";
    bool sorted = true;
};

class TagEdits : public ::testing::TestWithParam<EditCase> {};

// After the calls the tree is whole: counts equal the tags of their chain,
// parents and shortcuts point where they should.
TEST_P(TagEdits, ShapeTheTreeAsTheFormatWants)
{
    auto doc = GetParam().make();
    EXPECT_EQ("", RunSteps(*doc, GetParam().steps));
    if (!GetParam().outline.empty()) {
        EXPECT_EQ(GetParam().outline, Outline(*doc));
    }
    if (!GetParam().flags.empty()) {
        EXPECT_EQ(GetParam().flags, Flags(*doc));
    }
    EXPECT_EQ("", TreeFaults(*doc, GetParam().sorted));
    EXPECT_EQ("", ShortcutFaults(*doc));
}

const EntryDef kDate = Ascii(36867, "2020:01:02 03:04:05");
const EntryDef kDescription = Ascii(270, "A view");
const EntryDef kMake = Ascii(271, "Cam");
const EntryDef kOther = Ascii(36868, "2021:01:01 00:00:00");
const std::vector<uint8_t> kGpsVersion = {2, 2, 0, 0};

std::unique_ptr<CExifDoc> BigEndianJpeg()
{
    auto doc = JpegDoc({});
    doc->m_bigEndian = 1;
    return doc;
}

std::unique_ptr<CExifDoc> ThumbnailLoaded()
{
    auto doc = JpegDoc({{kMake}, {Short(259, 6), Long(513, 0), Long(514, 0)}});
    doc->m_thumbLoaded = 1;
    return doc;
}

// The cursor stands on a tag 513 in the Exif IFD.
std::unique_ptr<CExifDoc> CursorInExifIfd()
{
    auto doc = JpegDoc({{Pointer(34665, {Long(513, 0)})}});
    doc->m_cur = doc->m_thumbTag;
    return doc;
}

std::unique_ptr<CExifDoc> ChildlessExifApp1()
{
    auto doc = TreeBuilder(FORMAT_JPEG).Marker(0xD8).Marker(0xE1, "Exif").Marker(0xD9).Take();
    doc->m_exifMarker = static_cast<CMarker *>(doc->m_root->m_next);
    return doc;
}

// IFD 0: Make, Orientation, the Exif IFD, the GPS IFD with tags 0 to 3; IFD 1:
// the thumbnail's tags and a tag that IFD 0 lacks.
std::unique_ptr<CExifDoc> CameraJpeg()
{
    return JpegDoc(
        {{kMake, Short(274, 6), Pointer(34665, {Rational(33434, 1, 250), kDate}),
          Pointer(34853, {Bytes(0, TIFF_BYTE, kGpsVersion), Ascii(1, "N"), Rational(2, 48, 1), Ascii(3, "E")})},
         {Short(259, 6), Long(305, 77), Long(513, 0), Long(514, 0)}});
}

std::unique_ptr<CExifDoc> ChainWithoutLink()
{
    auto doc = TiffDoc({{Short(270, 1), Short(272, 1)}});
    CNode *node = doc->FindIfd(0)->m_child;
    while (node->m_next->m_id != NODE_NEXT_IFD) node = node->m_next;
    delete node->m_next;
    node->m_next = nullptr;
    return doc;
}

EditCase Edit(const char *name, const Make &make, const std::vector<TagStep> &steps, const std::string &outline,
              const std::string &flags = "")
{
    return {name, make, steps, outline, flags};
}

// A short tag set into a TIFF file of one IFD goes in front of the first tag
// of an equal or higher number; only real tags are compared.
EditCase Sorted(const char *name, const IfdDef &ifd, int32_t tag, const std::string &chain, bool sorted = true)
{
    return {name, Tiff({ifd}), {Set(Short(tag, 5), 0), Get(Short(tag, 5), 0)}, "1 2:0[" + chain + "]", "", sorted};
}

const IfdDef kGps = {Short(256, 1), Pointer(34853, {Ascii(1, "N"), Rational(2, 4, 1), Ascii(3, "E")})};
const IfdDef kWithExif = {kMake, Pointer(34665, {kDate})};
const IfdDef kWithGps = {kMake, Pointer(34853, {Ascii(1, "N")})};
const std::string kNewExifIfd = "225'Exif'[1 2:0[3:1 34665[3:1 36867 60] 60]]";

// A JPEG without an Exif APP1 gets one behind APP0, else behind SOI, and in
// front of an APP1 of XMP; it opens with IFD 0 whatever index was named.
INSTANTIATE_TEST_SUITE_P(
    NewApp1, TagEdits,
    ::testing::Values(Edit("ExifTag", BigEndianJpeg, {Set(kDate, 3), Get(kDate, 0)}, InJpeg(kNewExifIfd), "10 II"),
                      Edit("TagForIfd1", Jpeg({}), {Set(kDescription, 1), Get(kDescription, 0), Missing(270, 1)},
                           InJpeg("225'Exif'[1 2:0[3:1 270 60]]"), "00 II"),
                      Edit("BehindSoi", Markers({0xD8, 0xDB, 0xD9}), {Set(kDescription, 0)},
                           "216 225'Exif'[1 2:0[3:1 270 60]] 219 217"),
                      Edit("NoneWithoutSoi", Markers({0xDB, 0xD9}), {Set(kDescription, 0, -1), Set(kDate, 0, -1)},
                           "219 217", "00 II"),
                      Edit("InFrontOfXmp", Markers({0xD8, 0xE0, 0xE1, 0xD9}), {Set(kDate, 0), Get(kDate, 0)},
                           "216 224'JFIF' " + kNewExifIfd + " 225'http' 217"),
                      Edit("ExifBlockForAChildlessApp1", ChildlessExifApp1, {Set(kDate, 0)},
                           "216 " + kNewExifIfd + " 217"),
                      Edit("ExifApp1BehindXmpGrows", Markers({0xD8, 0xE1, 0x1E1, 0xD9}, {{kMake}}),
                           {Set(Long(305, 1), 1), Set(kDate, 0)},
                           "216 225'http' 225'Exif'[1 2:0[3:2 271 34665[3:1 36867 60] 60] 2:1[3:1 305 60]] 217")),
    CaseName());

// A new IFD extends the chain by one, since the save visits IFD indices up to
// their number; an IFD 0 that holds the thumbnail becomes IFD 1 when a new
// IFD 0 must hold the Exif pointer.
INSTANTIATE_TEST_SUITE_P(
    NewIfd, TagEdits,
    ::testing::Values(
        Edit("Ifd1BehindIfd0", Jpeg({{kMake}}), {Set(Long(305, 9), 1), Get(Long(305, 9), 1)},
             InJpeg("225'Exif'[1 2:0[3:1 271 60] 2:1[3:1 305 60]]")),
        Edit("NoIndexBeyondTheNext", Jpeg({{kMake}}), {Set(Long(305, 9), 2, -1), Set(Long(305, 9), -1, -1)},
             InJpeg("225'Exif'[1 2:0[3:1 271 60]]")),
        Edit("Ifd0InFrontOfIfd1", Jpeg({{kMake}, {Short(259, 6)}}), {Del(271, 0), Set(kDescription, 0)},
             InJpeg("225'Exif'[1 2:0[3:1 270 60] 2:1[3:1 259 60]]")),
        Edit("ExifIfdInFrontOfIfd1", Jpeg({{kMake}, {Short(259, 6)}}), {Del(271, 0), Set(kDate, 0)},
             InJpeg("225'Exif'[1 2:0[3:1 34665[3:1 36867 60] 60] 2:1[3:1 259 60]]")),
        Edit("EmptiedApp1OpensWithIfd0", Jpeg({{kMake}}), {Del(271, 0), Set(kDescription, 1, -1), Set(kDate, 0)},
             InJpeg(kNewExifIfd)),
        Edit("ExifIfdInJpegIfd0", Jpeg({kWithGps}), {Set(Short(41728, 3), 0)},
             InJpeg("225'Exif'[1 2:0[3:3 271 34665[3:1 41728 60] 34853[3:1 1 60] 60]]"), "10 II"),
        Edit("ExifIfdInTiffIfd0", Tiff({kWithGps}), {Set(Short(41728, 3), 0)},
             "1 2:0[3:3 271 34665[3:1 41728 60] 34853[3:1 1 60] 60]", "10 II"),
        Edit("ThumbnailIfdMovesUp", Jpeg({{Short(259, 6), Long(513, 100), Long(514, 20)}, {Long(305, 1)}}),
             {Set(kDate, 0), Get(Long(513, 100), 1)},
             InJpeg("225'Exif'[1 2:0[3:1 34665[3:1 36867 60] 60] 2:1[3:3 259 513 514 60] 2:2[3:1 305 60]]"), "11 II"),
        Edit("ExifIfdBelowAChildlessJpegPointer", Jpeg({{kMake, Pointer(34665, {})}}), {Set(kDate, 0), Get(kDate, 0)},
             InJpeg("225'Exif'[1 2:0[3:2 271 34665[3:1 36867 60] 60]]")),
        Edit("ExifIfdBelowAChildlessTiffPointer", Tiff({{kMake, Pointer(34665, {})}}), {Set(kDate, 0)},
             "1 2:0[3:2 271 34665[3:1 36867 60] 60]"),
        Edit("NoneInATiffWithoutIfd0", Tiff({}), {Set(kDate, 0, -1)}, "1", "00 II")),
    CaseName());

// A TIFF file replaces a tag wherever it stands and makes no IFD; a JPEG
// looks from the IFD named on. Numbers that structural nodes share are tags
// like any other.
INSTANTIATE_TEST_SUITE_P(
    Replace, TagEdits,
    ::testing::Values(Edit("TiffWherever", Tiff({{Short(256, 8)}, {Short(257, 4)}}),
                           {Set(Short(258, 8), 5, -1), Set(Short(256, 16), 1), Get(Short(256, 16), 0)},
                           "1 2:0[3:1 256 60] 2:1[3:1 257 60]"),
                      Edit("JpegFromTheNamedIfdOn", Jpeg({{Short(256, 8)}, {Short(257, 4)}}),
                           {Set(Short(256, 16), 1), Get(Short(256, 8), 0), Get(Short(256, 16), 1)},
                           InJpeg("225'Exif'[1 2:0[3:1 256 60] 2:1[3:2 256 257 60]]")),
                      Edit("GpsTagsOfStructuralNumbers", Jpeg({kGps}),
                           {Set(Ascii(1, "S"), 0), Set(Rational(2, 9, 2), 0), Set(Ascii(3, "W"), 0),
                            Get(Ascii(1, "S"), 0), Get(Rational(2, 9, 2), 0), Get(Ascii(3, "W"), 0)},
                           InJpeg("225'Exif'[1 2:0[3:2 256 34853[3:3 1 2 3 60] 60]]")),
                      Edit("StructuralNumbersAsNewTags", Tiff({{Short(256, 1)}}),
                           {Set(Short(3, 3), 0), Set(Short(1, 1), 0), Set(Short(2, 2), 0), Set(Short(60, 60), 0),
                            Set(Short(60, 61), 0), Get(Short(60, 61), 0)},
                           "1 2:0[3:5 1 2 3 60 256 60]"),
                      Edit("SecondOrientationInTheExifIfd", Jpeg({{Short(274, 1), Pointer(34665, {kDate})}}),
                           {Set(Short(274, 6), 0), Get(Short(274, 6), 0)},
                           InJpeg("225'Exif'[1 2:0[3:2 274 34665[3:2 274 36867 60] 60]]")),
                      Sorted("Between", {Short(270, 1), Short(272, 1)}, 271, "3:3 270 271 272 60"),
                      Sorted("BelowAll", {Short(270, 1), Short(272, 1)}, 256, "3:3 256 270 272 60"),
                      Sorted("Unsorted", {Short(272, 1), Short(270, 1)}, 271, "3:3 271 272 270 60", false),
                      Sorted("BehindTagZero", {Short(0, 1), Short(4, 1)}, 1, "3:3 0 1 4 60"),
                      Sorted("StructuralNumber", {Short(0, 1), Short(4, 1)}, 3, "3:3 0 3 4 60"),
                      Sorted("BehindRealSixty", {Short(59, 1), Short(60, 1), Short(70, 1)}, 61, "3:4 59 60 61 70 60"),
                      Sorted("BehindRealSeventy", {Short(60, 1), Short(70, 1), Short(80, 1)}, 75, "3:4 60 70 75 80 60"),
                      Sorted("BehindRealEighty", {Short(80, 1), Short(90, 1)}, 85, "3:3 80 85 90 60"),
                      Sorted("RealSixtyItself", {Short(59, 1), Short(61, 1)}, 60, "3:3 59 60 61 60"),
                      Edit("ChainWithoutLink", ChainWithoutLink, {Set(Short(300, 5), 0)}, "1 2:0[3:3 270 272 300]")),
    CaseName());

// A delete takes what it empties along: the Exif IFD, an IFD 0 that held only
// the pointer, an APP1 that held only IFD 0. What was deleted stays deleted;
// a parsed block is never parsed again.
INSTANTIATE_TEST_SUITE_P(
    Delete, TagEdits,
    ::testing::Values(
        Edit("LastExifTagTakesTheApp1", Jpeg({{Pointer(34665, {kDate})}}), {Del(36867, 5)}, InJpeg(""), "10 II"),
        Edit("Ifd1KeepsTheApp1", Jpeg({{Pointer(34665, {kDate})}, {Short(259, 6)}}),
             {Del(36867, 0), Get(Short(259, 6), 1)}, InJpeg("225'Exif'[1 2:1[3:1 259 60]]")),
        Edit("DeletedExifTagsStayDeleted", Jpeg({kWithExif}),
             {Del(36867, 0), Missing(36867, 0), Del(36867, 0, -1), Set(kOther, 0), Get(kOther, 0), Missing(36867, 0)},
             InJpeg("225'Exif'[1 2:0[3:2 271 34665[3:1 36868 60] 60]]"), "10 II"),
        Edit("EmptiedIfdLeavesTheApp1", Jpeg({{kMake}}), {Del(271, 0)}, InJpeg("225'Exif'[1]")),
        Edit("TiffKeepsItsOnlyIfd", Tiff({{Pointer(34665, {Rational(33434, 1, 60)})}}), {Del(33434, 0)},
             "1 2:0[3:0 60]"),
        Edit("TiffLosesEmptiedIfds", Tiff({{Short(256, 8)}, {Short(256, 4)}}),
             {Del(256, 1), Del(256, 0), Del(256, 0, -1)}, "1"),
        Edit("EmptiedGpsIfdTakesItsPointer", Jpeg({kWithGps}), {Del(1, 0)}, InJpeg("225'Exif'[1 2:0[3:1 271 60]]")),
        Edit("CountsFallWhereTheTagWas",
             Jpeg({{kMake, Pointer(34665, {kDate, Short(37383, 2)}), Short(41728, 3)}, {Short(259, 6), Long(305, 1)}}),
             {Del(41728, 1), Del(305, 0), Del(37383, 0)},
             InJpeg("225'Exif'[1 2:0[3:2 271 34665[3:1 36867 60] 60] 2:1[3:1 259 60]]")),
        Edit("StructuralNumbersTakeRealTagsOnly", Jpeg({kGps}),
             {Del(60, 0, -1), Del(1, 1, -1), Del(3, 0), Del(2, 0), Del(1, 0), Del(3, 0, -1), Del(2, 0, -1)},
             InJpeg("225'Exif'[1 2:0[3:1 256 60]]")),
        Edit("RealTagsSixtyToEighty", Tiff({{Short(59, 1), Short(60, 2), Short(70, 3), Short(80, 4)}}),
             {Del(60, 0), Missing(60, 0), Del(70, 0), Missing(70, 0), Del(80, 0), Missing(80, 0)}, "1 2:0[3:1 59 60]"),
        Edit("ThumbnailTagTakesItsFlags", ThumbnailLoaded, {Del(513, 1)},
             InJpeg("225'Exif'[1 2:0[3:1 271 60] 2:1[3:2 259 514 60]]"), "00 II"),
        Edit("ShortcutsGoWithTheirAncestors", CursorInExifIfd, {Del(513, 0)}, InJpeg(""), "10 II"),
        Edit("ExifPointerTakesItsIfd", Jpeg({kWithExif}), {Del(34665, 0), Missing(36867, 0)},
             InJpeg("225'Exif'[1 2:0[3:1 271 60]]")),
        Edit("NothingWhereTheTagIsNot", Jpeg({kWithExif}),
             {Del(272, 0, -1), Del(271, 1, -1), Del(271, -1, -1), Del(33434, 0, -1), Del(271 + 65536, 0, -1)},
             InJpeg("225'Exif'[1 2:0[3:2 271 34665[3:1 36867 60] 60]]")),
        Edit("NothingWithoutAnApp1", Jpeg({}), {Del(36867, 0, -1), Del(271, 0, -1), Missing(36867, 0), Missing(271, 0)},
             InJpeg(""))),
    CaseName());

// Tags of the Exif IFD's table come from there whatever the index, looked for
// from its pointer on; other tags from the IFD named on. Tag numbers that
// structural nodes share find real tags only.
INSTANTIATE_TEST_SUITE_P(
    Lookup, TagEdits,
    ::testing::Values(
        Edit("TableSearchFromThePointerOn", Jpeg({{Short(274, 6), Pointer(34665, {kDate}), Short(41728, 3)}}),
             {Missing(274, 0), Get(Short(41728, 3), 0)}, ""),
        Edit("OtherTagsFromTheNamedIfdOn", CameraJpeg,
             {Get(Long(305, 77), 0), Get(Long(305, 77), 1), Get(kMake, 0), Missing(271, 1), Missing(271, 2),
              Missing(271, -1), Missing(271 + 65536, 0)},
             ""),
        Edit("GpsTagsOfStructuralNumbers", CameraJpeg,
             {Get(Bytes(0, TIFF_BYTE, kGpsVersion), 0), Get(Ascii(1, "N"), 0), Get(Rational(2, 48, 1), 0),
              Get(Ascii(3, "E"), 0), Missing(3, 1), Missing(60, 0), Missing(60, 1)},
             ""),
        Edit("NoStructuralNodeAsATag", Tiff({{Short(256, 8)}}),
             {Missing(1, 0), Missing(2, 0), Missing(3, 0), Missing(60, 0)}, ""),
        Edit("NothingInAChildlessApp1", ChildlessExifApp1, {Missing(36867, 0), Missing(271, 0)}, "216 225'Exif' 217")),
    CaseName());

// The thumbnail's bytes live in tag 513's block while its offset stands in
// the entry: a new offset leaves them.
TEST(SetTag, ThumbnailOffsetKeepsTheThumbnailBytes)
{
    auto doc = JpegDoc({{kMake}, {Long(513, 0), Long(514, 4)}});
    uint8_t thumb[4] = {0xFF, 0xD8, 0xFF, 0xD9};
    doc->m_thumbTag->SetData(thumb, 4);
    ASSERT_EQ("", RunSteps(*doc, {Set(Long(513, 1234), 1), Get(Long(513, 1234), 1)}));
    ASSERT_EQ(4, doc->m_thumbTag->m_size);
    EXPECT_EQ(0, std::memcmp(thumb, doc->m_thumbTag->m_data, 4));
}

TEST(SetTag, RefusalsChangeNothing)
{
    auto doc = JpegDoc({{Short(256, 1)}});
    std::string before = TreeDump(*doc);
    ExifTagValue value = ValueOf(kDescription);
    ExifTagValue refused[] = {{TIFF_ASCII, 7, nullptr}, {TIFF_DOUBLE, 0x10000000, value.data}, {0, 0, nullptr}};
    EXPECT_EQ(-1, zExifSetTag(nullptr, 270, &value, 0));
    EXPECT_EQ(-1, zExifSetTag(doc.get(), 270, nullptr, 0));
    EXPECT_EQ(-1, zExifSetTag(doc.get(), 270 + 65536, &value, 0));
    for (const ExifTagValue &bad : refused) {
        for (uint32_t tag : {270u, 256u, 36867u}) EXPECT_EQ(-1, zExifSetTag(doc.get(), tag, &bad, 0)) << tag;
    }
    doc->m_format = 3;
    EXPECT_EQ(-1, zExifSetTag(doc.get(), 270, &value, 0));
    EXPECT_EQ(before, TreeDump(*doc));
    EXPECT_EQ(0, doc->m_hasExif);
    EXPECT_EQ(-1, zExifDelTag(nullptr, 271, 0));
    EXPECT_EQ(-1, zExifGetTag(nullptr, 271, &value, 0));
    EXPECT_EQ(-1, zExifGetTag(doc.get(), 256, nullptr, 0));
}

// A type outside 1 to 12 has no value to copy: the caller's pointer stays.
// The size of a value counts in 64 bits.
TEST(GetTag, UnknownTypeLeavesTheCallersData)
{
    auto doc = TiffDoc({{EntryDef{700, 99, 2, {1, 2, 3, 4}, {}}}});
    int sentinel = 0;
    ExifTagValue value{0, 0, &sentinel};
    ASSERT_EQ(0, zExifGetTag(doc.get(), 700, &value, 0));
    EXPECT_EQ(99u, value.type);
    EXPECT_EQ(2u, value.count);
    EXPECT_EQ(&sentinel, value.data);
    EXPECT_EQ(0x7FFFFFFF8LL, ValueDataSize(ExifTagValue{TIFF_DOUBLE, 0xFFFFFFFFu, nullptr}));
}

// The copy needs more memory than the process may have: the lookup fails and
// the caller's record keeps what it held. Run in a child process, whose
// address space is capped.
TEST(GetTag, FailedCopyLeavesTheRecord)
{
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the sanitizer's allocator doesn't return null";
#else
    constexpr int32_t kSize = 256 << 20;
    auto doc = TiffDoc({{Short(256, 1)}});
    CTag *big = AsTag(FindNode(doc->m_root, 256));
    big->m_type = TIFF_BYTE;
    big->m_count = kSize;
    big->m_data = new unsigned char[kSize];
    big->m_size = kSize;
    pid_t child = fork();
    ASSERT_NE(-1, child);
    if (child == 0) {
        rlimit limit{64u << 20, 64u << 20};
        setrlimit(RLIMIT_AS, &limit);
        int sentinel = 0;
        ExifTagValue value{7, 8, &sentinel};
        int result = zExifGetTag(doc.get(), 256, &value, 0);
        bool untouched = value.type == 7 && value.count == 8 && value.data == &sentinel;
        _exit(result == -1 && untouched ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(0, WEXITSTATUS(status));
#endif
}

}  // namespace
