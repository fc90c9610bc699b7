#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "edit/tag_lookup.h"
#include "support/tree_builder.h"
#include "support/tree_check.h"
#include "tree/walk.h"

namespace {

const char *const kJfif = "216 224'JFIF' ";
const char *const kTail = " 219 218 161 217";

int Set(CExifDoc *doc, const EntryDef &entry, int ifd)
{
    ExifTagValue value = ValueOf(entry);
    return zExifSetTag(doc, uint32_t(entry.tag), &value, ifd);
}

// The value's bytes as zExifGetTag gives them, or nothing when it fails.
std::vector<uint8_t> ValueBytes(CExifDoc *doc, uint32_t tag, int ifd)
{
    ExifTagValue value{0, 0, nullptr};
    if (zExifGetTag(doc, tag, &value, ifd) != 0) return {};
    const uint8_t *data = static_cast<const uint8_t *>(value.data);
    std::vector<uint8_t> bytes(data, data + (data != nullptr ? ValueDataSize(value) : 0));
    std::free(value.data);
    return bytes;
}

void ExpectSound(const CExifDoc &doc, bool sorted = true)
{
    EXPECT_EQ("", TreeFaults(doc, sorted));
}

const EntryDef kDate = Ascii(36867, "2020:01:02 03:04:05");
const EntryDef kDescription = Ascii(270, "A view");

// A JPEG without APP1 gets one behind APP0, else behind SOI, that opens with
// IFD 0 whatever index was named.
TEST(NewApp1, HoldsAnExifTagInANewExifIfd)
{
    auto doc = JpegDoc({});
    doc->m_bigEndian = 1;
    ASSERT_EQ(0, Set(doc.get(), kDate, 3));
    EXPECT_EQ(std::string(kJfif) + "225'Exif'[1 2:0[3:1 34665[3:1 36867 60] 60]]" + kTail, Outline(*doc));
    EXPECT_EQ(1, zExifIsExifExist(doc.get()));
    EXPECT_EQ(0, doc->m_bigEndian);
    EXPECT_EQ(doc->m_root->m_next->m_next, doc->m_exifMarker);
    EXPECT_EQ(kDate.bytes, ValueBytes(doc.get(), 36867, 0));
    ExpectSound(*doc);
}

TEST(NewApp1, HoldsOtherTagsInIfd0)
{
    for (int ifd : {0, 1, -1}) {
        auto doc = JpegDoc({});
        ASSERT_EQ(0, Set(doc.get(), kDescription, ifd));
        EXPECT_EQ(std::string(kJfif) + "225'Exif'[1 2:0[3:1 270 60]]" + kTail, Outline(*doc));
        EXPECT_EQ(0, zExifIsExifExist(doc.get()));
        EXPECT_EQ(kDescription.bytes, ValueBytes(doc.get(), 270, 0));
        EXPECT_EQ(ifd == 0, !ValueBytes(doc.get(), 270, ifd).empty());
        ExpectSound(*doc);
    }
}

TEST(NewApp1, GoesBehindSoiWithoutApp0AndNowhereWithoutEither)
{
    auto doc = TreeBuilder(FORMAT_JPEG).Marker(0xD8).Marker(0xDB).Marker(0xD9).Take();
    ASSERT_EQ(0, Set(doc.get(), kDescription, 0));
    EXPECT_EQ("216 225'Exif'[1 2:0[3:1 270 60]] 219 217", Outline(*doc));

    auto headless = TreeBuilder(FORMAT_JPEG).Marker(0xDB).Marker(0xD9).Take();
    std::string before = TreeDump(*headless);
    EXPECT_EQ(-1, Set(headless.get(), kDescription, 0));
    EXPECT_EQ(-1, Set(headless.get(), kDate, 0));
    EXPECT_EQ(before, TreeDump(*headless));
    EXPECT_EQ(0, headless->m_hasExif);
}

// An APP1 that holds no TIFF block (XMP here) is left alone: the Exif APP1
// is made in front of it, where the save looks first.
TEST(NewApp1, StandsInFrontOfAnXmpApp1)
{
    for (const EntryDef &entry : {kDate, kDescription}) {
        auto doc = TreeBuilder(FORMAT_JPEG).Marker(0xD8).Marker(0xE0, "JFIF").Marker(0xE1, "http").Marker(0xD9).Take();
        ASSERT_EQ(0, Set(doc.get(), entry, 0));
        std::string shape = Outline(*doc);
        EXPECT_EQ(0u, shape.find("216 224'JFIF' 225'Exif'[1 2:0[")) << shape;
        EXPECT_NE(std::string::npos, shape.find("] 225'http' 217")) << shape;
        EXPECT_EQ(entry.bytes, ValueBytes(doc.get(), uint32_t(entry.tag), 0));
        ExpectSound(*doc);
    }
}

// Behind an XMP APP1 the Exif APP1 with its block is the one that grows.
TEST(BlockPlace, TheExifApp1BehindAnXmpApp1)
{
    auto doc = TreeBuilder(FORMAT_JPEG)
                   .Marker(0xD8)
                   .Marker(0xE1, "http")
                   .ExifApp1({{Ascii(271, "Cam")}})
                   .Marker(0xD9)
                   .Take();
    ASSERT_EQ(0, Set(doc.get(), Long(305, 1), 1));
    ASSERT_EQ(0, Set(doc.get(), kDate, 0));
    EXPECT_EQ("216 225'http' 225'Exif'[1 2:0[3:2 271 34665[3:1 36867 60] 60] 2:1[3:1 305 60]] 217",
              Outline(*doc));
    ExpectSound(*doc);
}

// An Exif APP1 whose block never made a tree receives the new block.
TEST(BlockPlace, AnExifApp1WithoutATree)
{
    for (const EntryDef &entry : {kDate, kDescription}) {
        auto doc = TreeBuilder(FORMAT_JPEG).Marker(0xD8).Marker(0xE1, "Exif").Marker(0xD9).Take();
        doc->m_exifMarker = static_cast<CMarker *>(doc->m_root->m_next);
        ASSERT_EQ(0, Set(doc.get(), entry, 0));
        std::string app1 = entry.tag == 270 ? "225'Exif'[1 2:0[3:1 270 60]]" : "225'Exif'[1 2:0[3:1 34665[3:1 36867 60] 60]]";
        EXPECT_EQ("216 " + app1 + " 217", Outline(*doc));
        EXPECT_EQ(entry.bytes, ValueBytes(doc.get(), uint32_t(entry.tag), 0));
        ExpectSound(*doc);
    }
}

TEST(NewIfd, Ifd1BehindIfd0)
{
    auto doc = JpegDoc({{Ascii(271, "Cam")}});
    ASSERT_EQ(0, Set(doc.get(), Long(305, 9), 1));
    EXPECT_EQ(std::string(kJfif) + "225'Exif'[1 2:0[3:1 271 60] 2:1[3:1 305 60]]" + kTail, Outline(*doc));
    EXPECT_EQ(Long(0, 9).bytes, ValueBytes(doc.get(), 305, 1));
    EXPECT_EQ(0, doc->m_hasExif);
    ExpectSound(*doc);
}

// The save visits IFD indices up to the number of IFDs, so a new IFD may
// extend the chain by one and no further.
TEST(NewIfd, NoIndexBeyondTheNextOne)
{
    auto doc = JpegDoc({{Ascii(271, "Cam")}});
    std::string before = TreeDump(*doc);
    EXPECT_EQ(-1, Set(doc.get(), Long(305, 9), 2));
    EXPECT_EQ(-1, Set(doc.get(), Long(305, 9), -1));
    EXPECT_EQ(before, TreeDump(*doc));
}

// IFD 0 emptied by other tags leaves IFD 1 alone, or only the header.
TEST(NewIfd, Ifd0ComesBackInFrontOfIfd1)
{
    auto doc = JpegDoc({{Ascii(271, "Cam")}, {Short(259, 6)}});
    ASSERT_EQ(0, zExifDelTag(doc.get(), 271, 0));
    ASSERT_EQ(0, Set(doc.get(), kDescription, 0));
    EXPECT_EQ(std::string(kJfif) + "225'Exif'[1 2:0[3:1 270 60] 2:1[3:1 259 60]]" + kTail, Outline(*doc));

    auto bare = JpegDoc({{Ascii(271, "Cam")}});
    ASSERT_EQ(0, zExifDelTag(bare.get(), 271, 0));
    EXPECT_EQ(-1, Set(bare.get(), kDescription, 1));
    ASSERT_EQ(0, Set(bare.get(), kDate, 0));
    EXPECT_EQ(std::string(kJfif) + "225'Exif'[1 2:0[3:1 34665[3:1 36867 60] 60]]" + kTail, Outline(*bare));
    ExpectSound(*bare);
}

TEST(NewExifIfd, Ifd0WithoutExifIfdInEitherFormat)
{
    for (int format : {FORMAT_JPEG, FORMAT_TIFF}) {
        std::vector<IfdDef> ifds = {{Ascii(271, "Cam"), Pointer(34853, {Ascii(1, "N")})}};
        auto doc = format == FORMAT_JPEG ? JpegDoc(ifds) : TiffDoc(ifds);
        ASSERT_EQ(0, Set(doc.get(), Short(41728, 3), 0));
        std::string ifd0 = "2:0[3:3 271 34665[3:1 41728 60] 34853[3:1 1 60] 60]";
        std::string expected = format == FORMAT_JPEG ? kJfif + ("225'Exif'[1 " + ifd0 + "]") + kTail : "1 " + ifd0;
        EXPECT_EQ(expected, Outline(*doc));
        EXPECT_EQ(1, zExifIsExifExist(doc.get()));
        ExpectSound(*doc);
    }
}

TEST(NewExifIfd, InFrontOfIfd1WithoutIfd0)
{
    auto doc = JpegDoc({{Ascii(271, "Cam")}, {Short(259, 6)}});
    ASSERT_EQ(0, zExifDelTag(doc.get(), 271, 0));
    ASSERT_EQ(0, Set(doc.get(), kDate, 0));
    EXPECT_EQ(std::string(kJfif) + "225'Exif'[1 2:0[3:1 34665[3:1 36867 60] 60] 2:1[3:1 259 60]]" + kTail,
              Outline(*doc));
    ExpectSound(*doc);
}

// An IFD 0 that holds the thumbnail's offset becomes IFD 1, and every IFD
// behind it moves up one; the thumbnail stays where it was.
TEST(NewExifIfd, Ifd0WithTheThumbnailMovesUp)
{
    auto doc = JpegDoc({{Short(259, 6), Long(513, 100), Long(514, 20)}, {Long(305, 1)}});
    CTag *thumb = doc->m_thumbTag;
    ASSERT_EQ(0, Set(doc.get(), kDate, 0));
    EXPECT_EQ(std::string(kJfif) +
                  "225'Exif'[1 2:0[3:1 34665[3:1 36867 60] 60] 2:1[3:3 259 513 514 60] 2:2[3:1 305 60]]" + kTail,
              Outline(*doc));
    EXPECT_EQ(thumb, doc->m_thumbTag);
    EXPECT_EQ(Long(0, 100).bytes, ValueBytes(doc.get(), 513, 1));
    EXPECT_EQ(1, zExifIsThumbnailExist(doc.get()));
    ExpectSound(*doc);
}

// A pointer tag without an Exif IFD below it gets one.
TEST(NewExifIfd, BelowAChildlessPointerInEitherFormat)
{
    for (int format : {FORMAT_JPEG, FORMAT_TIFF}) {
        std::vector<IfdDef> ifds = {{Ascii(271, "Cam"), Pointer(34665, {})}};
        auto doc = format == FORMAT_JPEG ? JpegDoc(ifds) : TiffDoc(ifds);
        ASSERT_EQ(0, Set(doc.get(), kDate, 0));
        EXPECT_NE(std::string::npos, Outline(*doc).find("2:0[3:2 271 34665[3:1 36867 60] 60]"));
        EXPECT_EQ(kDate.bytes, ValueBytes(doc.get(), 36867, 0));
        ExpectSound(*doc);
    }
}

TEST(NewExifIfd, TiffWithoutIfd0IsRefused)
{
    auto doc = TiffDoc({});
    EXPECT_EQ(-1, Set(doc.get(), kDate, 0));
    EXPECT_EQ("1", Outline(*doc));
    EXPECT_EQ(0, doc->m_hasExif);
}

// A TIFF file makes no IFD and replaces the tag wherever it stands; a JPEG
// looks from the IFD named on and adds the tag there.
TEST(ReplaceSearch, WholeTreeForTiffNamedIfdOnwardForJpeg)
{
    auto tiff = TiffDoc({{Short(256, 8)}, {Short(257, 4)}});
    std::string before = TreeDump(*tiff);
    EXPECT_EQ(-1, Set(tiff.get(), Short(258, 8), 5));
    EXPECT_EQ(before, TreeDump(*tiff));
    ASSERT_EQ(0, Set(tiff.get(), Short(256, 16), 1));
    EXPECT_EQ("1 2:0[3:1 256 60] 2:1[3:1 257 60]", Outline(*tiff));
    EXPECT_EQ(Short(0, 16).bytes, ValueBytes(tiff.get(), 256, 0));

    auto jpeg = JpegDoc({{Short(256, 8)}, {Short(257, 4)}});
    ASSERT_EQ(0, Set(jpeg.get(), Short(256, 16), 1));
    EXPECT_EQ(std::string(kJfif) + "225'Exif'[1 2:0[3:1 256 60] 2:1[3:2 256 257 60]]" + kTail, Outline(*jpeg));
    EXPECT_EQ(Short(0, 8).bytes, ValueBytes(jpeg.get(), 256, 0));
    EXPECT_EQ(Short(0, 16).bytes, ValueBytes(jpeg.get(), 256, 1));
}

TEST(Replace, MovesAValueBetweenBlockAndEntry)
{
    auto doc = JpegDoc({{Ascii(270, "nineteen characters"), Short(296, 2)}});
    CTag *text = AsTag(FindNode(doc->m_root, 270));
    ASSERT_EQ(0, Set(doc.get(), Ascii(270, "ab"), 0));
    EXPECT_EQ(3, text->m_count);
    EXPECT_EQ(Ascii(0, "ab").bytes, ValueBytes(doc.get(), 270, 0));

    CTag *shortTag = AsTag(FindNode(doc->m_root, 296));
    ASSERT_EQ(0, Set(doc.get(), Rational(296, 5, 7), 0));
    EXPECT_EQ(uint32_t(TIFF_RATIONAL), shortTag->m_type);
    EXPECT_EQ(1, shortTag->m_count);
    EXPECT_EQ(8, shortTag->m_size);
    EXPECT_EQ(Rational(0, 5, 7).bytes, ValueBytes(doc.get(), 296, 0));
    EXPECT_EQ(std::string(kJfif) + "225'Exif'[1 2:0[3:2 270 296 60]]" + kTail, Outline(*doc));
}

// The thumbnail's bytes live in tag 513's block while its offset stands in
// the entry: a new offset leaves them.
TEST(Replace, ThumbnailOffsetKeepsTheThumbnailBytes)
{
    auto doc = JpegDoc({{Ascii(271, "Cam")}, {Long(513, 0), Long(514, 4)}});
    uint8_t thumb[4] = {0xFF, 0xD8, 0xFF, 0xD9};
    doc->m_thumbTag->SetData(thumb, 4);
    ASSERT_EQ(0, Set(doc.get(), Long(513, 1234), 1));
    EXPECT_EQ(1234u, doc->m_thumbTag->m_value);
    ASSERT_EQ(4, doc->m_thumbTag->m_size);
    EXPECT_EQ(0, std::memcmp(thumb, doc->m_thumbTag->m_data, 4));
}

struct SortCase {
    const char *name;
    IfdDef ifd;
    int32_t tag;
    const char *shape;
};

void PrintTo(const SortCase &c, std::ostream *os)
{
    *os << c.name;
}

class SortedPlace : public ::testing::TestWithParam<SortCase> {};

// Only real tags are compared: numbers 1 to 3 go behind a tag 0, a real tag
// 60 or 70 sorts like any other, and a chain that lost its link ends the walk
// at its last node.
TEST_P(SortedPlace, InFrontOfTheFirstEqualOrHigherNumber)
{
    auto doc = TiffDoc({GetParam().ifd});
    CNode *ifd0 = doc->FindIfd(0);
    if (std::string(GetParam().name) == "ChainWithoutLink") {
        CNode *node = ifd0->m_child;
        while (node->m_next->m_id != NODE_NEXT_IFD) node = node->m_next;
        delete node->m_next;
        node->m_next = nullptr;
    }
    ASSERT_EQ(0, Set(doc.get(), Short(GetParam().tag, 5), 0));
    EXPECT_EQ(GetParam().shape, ChainOutline(ifd0));
    EXPECT_EQ(Short(0, 5).bytes, ValueBytes(doc.get(), uint32_t(GetParam().tag), 0));
    ExpectSound(*doc, std::string(GetParam().name) != "Unsorted");
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, SortedPlace,
    ::testing::Values(SortCase{"Between", {Short(270, 1), Short(272, 1)}, 271, "3:3 270 271 272 60"},
                      SortCase{"BelowAll", {Short(270, 1), Short(272, 1)}, 256, "3:3 256 270 272 60"},
                      SortCase{"Unsorted", {Short(272, 1), Short(270, 1)}, 271, "3:3 271 272 270 60"},
                      SortCase{"BehindTagZero", {Short(0, 1), Short(4, 1)}, 1, "3:3 0 1 4 60"},
                      SortCase{"StructuralNumbers", {Short(0, 1), Short(4, 1)}, 3, "3:3 0 3 4 60"},
                      SortCase{"BehindRealSixty", {Short(59, 1), Short(60, 1), Short(70, 1)}, 61, "3:4 59 60 61 70 60"},
                      SortCase{"BehindRealSeventy", {Short(60, 1), Short(70, 1), Short(80, 1)}, 75, "3:4 60 70 75 80 60"},
                      SortCase{"BehindRealEighty", {Short(80, 1), Short(90, 1)}, 85, "3:3 80 85 90 60"},
                      SortCase{"RealSixtyItself", {Short(59, 1), Short(61, 1)}, 60, "3:3 59 60 61 60"},
                      SortCase{"ChainWithoutLink", {Short(270, 1), Short(272, 1)}, 300, "3:3 270 272 300"}),
    [](const ::testing::TestParamInfo<SortCase> &p) { return p.param.name; });

// GPS tags 1, 2, 3 are replaced in the GPS IFD; the header, IFD and count
// nodes of those numbers keep their values.
TEST(StructuralNumbers, ReplaceTheGpsTags)
{
    auto doc = JpegDoc({{Short(256, 1), Pointer(34853, {Ascii(1, "N"), Rational(2, 4, 1), Ascii(3, "E")})}});
    std::string shape = Outline(*doc);
    ASSERT_EQ(0, Set(doc.get(), Ascii(1, "S"), 0));
    ASSERT_EQ(0, Set(doc.get(), Rational(2, 9, 2), 0));
    ASSERT_EQ(0, Set(doc.get(), Ascii(3, "W"), 0));
    EXPECT_EQ(shape, Outline(*doc));
    EXPECT_EQ(Ascii(0, "S").bytes, ValueBytes(doc.get(), 1, 0));
    EXPECT_EQ(Rational(0, 9, 2).bytes, ValueBytes(doc.get(), 2, 0));
    EXPECT_EQ(Ascii(0, "W").bytes, ValueBytes(doc.get(), 3, 0));
    EXPECT_EQ(0u, FindNode(doc->m_root, NODE_TIFF_HEADER)->m_value);
}

TEST(StructuralNumbers, GoIntoTheIfdAsNewTags)
{
    auto doc = TiffDoc({{Short(256, 1)}});
    for (int32_t number : {3, 1, 2, 60}) ASSERT_EQ(0, Set(doc.get(), Short(number, uint16_t(number)), 0));
    ASSERT_EQ(0, Set(doc.get(), Short(60, 61), 0));
    EXPECT_EQ("1 2:0[3:5 1 2 3 60 256 60]", Outline(*doc));
    EXPECT_EQ(Short(0, 61).bytes, ValueBytes(doc.get(), 60, 0));
    ExpectSound(*doc);
}

// A second orientation goes into the Exif IFD, where lookups find it first.
TEST(ExifTable, OrientationInFrontOfThePointerStays)
{
    auto doc = JpegDoc({{Short(274, 1), Pointer(34665, {kDate})}});
    ASSERT_EQ(0, Set(doc.get(), Short(274, 6), 0));
    EXPECT_EQ(std::string(kJfif) + "225'Exif'[1 2:0[3:2 274 34665[3:2 274 36867 60] 60]]" + kTail, Outline(*doc));
    EXPECT_EQ(Short(0, 6).bytes, ValueBytes(doc.get(), 274, 0));
}

TEST(SetTag, UnknownTypeGoesInWithoutValue)
{
    auto doc = JpegDoc({{Short(256, 1)}});
    ASSERT_EQ(0, Set(doc.get(), EntryDef{700, 99, 2, {1, 2, 3, 4}, {}}, 0));
    CTag *tag = AsTag(FindNode(doc->m_root, 700));
    EXPECT_EQ(99u, tag->m_type);
    EXPECT_EQ(2, tag->m_count);
    EXPECT_EQ(0u, tag->m_value);
    EXPECT_EQ(nullptr, tag->m_data);
    int sentinel = 0;
    ExifTagValue value{0, 0, &sentinel};
    ASSERT_EQ(0, zExifGetTag(doc.get(), 700, &value, 0));
    EXPECT_EQ(99u, value.type);
    EXPECT_EQ(2u, value.count);
    EXPECT_EQ(&sentinel, value.data);
    ExpectSound(*doc);
}

TEST(SetTag, RefusalsChangeNothing)
{
    auto doc = JpegDoc({{Short(256, 1)}});
    std::string before = TreeDump(*doc);
    ExifTagValue value = ValueOf(kDescription);
    EXPECT_EQ(-1, zExifSetTag(nullptr, 270, &value, 0));
    EXPECT_EQ(-1, zExifSetTag(doc.get(), 270, nullptr, 0));
    EXPECT_EQ(-1, zExifSetTag(doc.get(), 270 + 65536, &value, 0));
    ExifTagValue missing{TIFF_ASCII, 7, nullptr};
    EXPECT_EQ(-1, zExifSetTag(doc.get(), 270, &missing, 0));
    EXPECT_EQ(-1, zExifSetTag(doc.get(), 256, &missing, 0));
    EXPECT_EQ(-1, zExifSetTag(doc.get(), 36867, &missing, 0));
    ExifTagValue huge{TIFF_DOUBLE, 0x10000000, value.data};
    EXPECT_EQ(-1, zExifSetTag(doc.get(), 270, &huge, 0));
    ExifTagValue noType{0, 0, nullptr};
    EXPECT_EQ(-1, zExifSetTag(doc.get(), 270, &noType, 0));
    doc->m_format = 3;
    EXPECT_EQ(-1, zExifSetTag(doc.get(), 270, &value, 0));
    EXPECT_EQ(before, TreeDump(*doc));
    EXPECT_EQ(0, doc->m_hasExif);

    doc->m_format = FORMAT_JPEG;
    ExifTagValue empty{TIFF_ASCII, 0, nullptr};
    ASSERT_EQ(0, zExifSetTag(doc.get(), 270, &empty, 0));
    EXPECT_TRUE(ValueBytes(doc.get(), 270, 0).empty());
}

}  // namespace
