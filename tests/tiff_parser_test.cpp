#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>

#include "load/doc_builder.h"
#include "load/tiff_parser.h"
#include "streams/stream.h"
#include "support/case_name.h"
#include "support/byte_builder.h"
#include "support/load_bytes.h"
#include "support/temp_dir.h"
#include "support/tree_check.h"
#include "tree/walk.h"

namespace {

// A TIFF file of one IFD at offset 8 with the given entries, followed by the
// next-IFD link and any value bytes.
ByteBuilder OneIfd(const std::vector<std::vector<uint32_t>> &entries, uint32_t link = 0, bool bigEndian = false)
{
    ByteBuilder b(bigEndian);
    b.TiffHeader(8).U16(uint16_t(entries.size()));
    for (const auto &e : entries) b.Entry(uint16_t(e[0]), uint16_t(e[1]), e[2], e[3]);
    return b.U32(link);
}

std::vector<uint8_t> Counted(uint16_t count)
{
    ByteBuilder b;
    b.TiffHeader(8).U16(count);
    for (uint16_t i = 0; i < count; i++) b.Entry(uint16_t(1000 + i), 3, 1, 0);
    return b.U32(0).m_bytes;
}

std::string CountedOutline(uint16_t count)
{
    std::string outline = "1 2:0[3:" + std::to_string(count);
    for (uint16_t i = 0; i < count; i++) outline += " " + std::to_string(1000 + i);
    return outline + " 60]";
}

// IFD 0 holds the thumbnail's offset and the Exif pointer twice; the Exif IFD
// points at itself.
std::vector<uint8_t> ExifPointerTwice()
{
    ByteBuilder b = OneIfd({{513, 4, 1, 0}, {34665, 4, 1, 50}, {34665, 4, 1, 50}});
    return b.U16(2).Entry(36867, 2, 4, 0x31323334).Entry(34665, 4, 1, 50).U32(0).m_bytes;
}

// Each of the 100 entries of 100 IFDs asks for nearly the whole file again:
// far more memory than the file justifies.
std::vector<uint8_t> GreedyValues()
{
    const uint32_t fileSize = 200000;
    const uint32_t ifdSize = 2 + 100 * 12 + 4;
    ByteBuilder b;
    b.TiffHeader(8);
    for (uint32_t ifd = 0; ifd < 100; ifd++) {
        b.U16(100);
        for (uint16_t i = 0; i < 100; i++) b.Entry(uint16_t(300 + i), 7, fileSize - 100, 0);
        b.U32(ifd + 1 < 100 ? 8 + (ifd + 1) * ifdSize : 0);
    }
    return b.Fill(fileSize - b.Size(), 0).m_bytes;
}

// A file and the outline of the tree its load makes; "": the load fails.
struct TiffCase {
    const char *name;
    std::vector<uint8_t> file;
    std::string outline;
};

class TiffTree : public ::testing::TestWithParam<TiffCase> {};

// The outline, followed by whatever is wrong with the tree.
std::string OutlineAndFaults(const CExifDoc &doc)
{
    return Outline(doc) + TreeFaults(doc, false);
}

TEST_P(TiffTree, HoldsWhatTheFileHolds)
{
    EXPECT_EQ(GetParam().outline, DescribeLoad(GetParam().file, OutlineAndFaults));
}

INSTANTIATE_TEST_SUITE_P(Headers, TiffTree,
                         ::testing::Values(TiffCase{"LittleEndian", {'I', 'I', 42, 0, 0, 0, 0, 0}, "1"},
                                           TiffCase{"BigEndian", {'M', 'M', 0, 42, 0, 0, 0, 0}, "1"},
                                           TiffCase{"MixedOrder", {'I', 'M', 42, 0, 8, 0, 0, 0}, ""},
                                           TiffCase{"Bitmap", {'B', 'M', 0, 0}, ""}, TiffCase{"Empty", {}, ""},
                                           TiffCase{"OneByte", {'I'}, ""}, TiffCase{"CutMagic", {'I', 'I', 42}, ""},
                                           TiffCase{"CutOffset", {'I', 'I', 42, 0, 8, 0}, ""}),
                         CaseName());

// An IFD holds 1 to 100 entries; one that fails anywhere fails the load. A
// table cut by the file keeps its whole entries.
INSTANTIATE_TEST_SUITE_P(
    Ifds, TiffTree,
    ::testing::Values(
        TiffCase{"NoEntries", Counted(0), ""}, TiffCase{"OneEntry", Counted(1), CountedOutline(1)},
        TiffCase{"AHundredEntries", Counted(100), CountedOutline(100)}, TiffCase{"AHundredAndOne", Counted(101), ""},
        TiffCase{"TypeZero", OneIfd({{256, 3, 1, 1}, {257, 0, 1, 1}}).m_bytes, ""},
        TiffCase{"BadGpsIfd", OneIfd({{34853, 4, 1, 26}}).U16(101).m_bytes, ""},
        TiffCase{"BadSecondIfd", OneIfd({{256, 3, 1, 1}}, 26).U16(1).Entry(256, 3, 1, 1).U32(44).U16(0).m_bytes, ""},
        TiffCase{"ExifIfdPastTheEnd", OneIfd({{34665, 4, 1, 5000}}).m_bytes, ""},
        TiffCase{"CutTable",
                 ByteBuilder().TiffHeader(8).U16(3).Entry(256, 3, 1, 1).Entry(257, 3, 1, 2).U16(258).m_bytes,
                 "1 2:0[3:2 256 257 60]"},
        TiffCase{"CutBeforeAnyEntry", ByteBuilder().TiffHeader(8).U16(3).U16(256).m_bytes, ""},
        TiffCase{"GreedyValues", GreedyValues(), ""}),
    CaseName());

// Pointers are followed once and never back into an IFD on the way there;
// a chain that loops ends where it would repeat, one past the file where it
// leaves it, and one whose link has its top bit set fails.
INSTANTIATE_TEST_SUITE_P(
    Links, TiffTree,
    ::testing::Values(
        TiffCase{"ExifPointerTwiceAndToItself", ExifPointerTwice(),
                 "1 2:0[3:3 513 34665[3:2 36867 34665 60] 34665 60]"},
        TiffCase{"BackToTheParent",
                 OneIfd({{34665, 4, 1, 26}}, 0, true).U16(2).Entry(34665, 4, 1, 8).Entry(34853, 4, 1, 8).U32(0).m_bytes,
                 "1 2:0[3:1 34665[3:2 34665 34853[3:1 34665 60] 60] 60]"},
        TiffCase{"GpsTagsOfStructuralNumbers",
                 OneIfd({{34853, 4, 1, 26}}, 0, true)
                     .U16(3)
                     .EntryRaw(1, 2, 2, {'N', 0})
                     .Entry(2, 5, 3, 0)
                     .EntryRaw(3, 2, 2, {'E', 0})
                     .U32(0)
                     .Fill(24, 0)
                     .m_bytes,
                 "1 2:0[3:1 34853[3:3 1 2 3 60] 60]"},
        TiffCase{"Loop", OneIfd({{256, 3, 1, 1}}, 26).U16(1).Entry(256, 3, 1, 2).U32(8).m_bytes,
                 "1 2:0[3:1 256 60] 2:1[3:1 256 60]"},
        TiffCase{"LinkPastTheEnd", OneIfd({{256, 3, 1, 1}}, 0x00FFFFF0).m_bytes, "1 2:0[3:1 256 60]"},
        TiffCase{"LinkWithTopBit", OneIfd({{256, 3, 1, 1}}, 0x80000010).m_bytes, ""}),
    CaseName());

class ByteOrder : public ::testing::TestWithParam<bool> {};

// Values in the entry and behind it arrive in host order; a text keeps its
// count without a NUL added; an unknown type keeps its entry without value;
// a value partly behind the end reads as zeros there, and one larger than
// the file goes with its entry.
TEST_P(ByteOrder, ValuesArriveInHostOrderAndWithinTheFile)
{
    bool be = GetParam();
    const uint32_t data = 8 + 2 + 11 * 12 + 4;
    ByteBuilder b(be);
    b.TiffHeader(8).U16(11);
    b.Entry(256, 3, 1, be ? 0x00010000u : 1u);
    b.U16(257).U16(3).U32(2).U16(1).U16(2);
    b.EntryRaw(258, 1, 2, {1, 2});
    b.Entry(259, 4, 1, 70000);
    b.Entry(270, 2, 8, data + 19);
    b.Entry(271, 2, 5, data + 14);
    b.Entry(272, 2, 0x7FFFFFF0, 8);
    b.Entry(282, 5, 1, data);
    b.Entry(283, 3, 3, data + 8);
    b.Entry(284, 13, 9, 0x12345678);
    b.Entry(285, 2, 6, 0xFFFFFFF0);
    b.U32(0).U32(1).U32(2).U16(10).U16(20).U16(30).Text("Canon").Text("abcd");

    DocPtr doc = LoadBytes(b.Data());
    ASSERT_TRUE(doc);
    EXPECT_EQ(FORMAT_TIFF, zExifGetFileFormat(doc.get()));
    EXPECT_EQ(be ? 1 : 0, doc->m_bigEndian);
    std::vector<CTag *> tags = TagsOf(doc->FindIfd(0));
    ASSERT_EQ(10u, tags.size());
    EXPECT_EQ(10u, doc->FindIfd(0)->m_child->m_value);
    EXPECT_EQ(1u, tags[0]->m_value);
    EXPECT_EQ(0x00020001u, tags[1]->m_value);
    EXPECT_EQ(0, std::memcmp(&tags[2]->m_value, "\x01\x02\x00\x00", 4));
    EXPECT_EQ(70000u, tags[3]->m_value);
    EXPECT_EQ(0, std::memcmp(tags[4]->m_data, "abcd\0\0\0\0", 8));
    ASSERT_EQ(5, tags[5]->m_size);
    EXPECT_EQ(0, std::memcmp(tags[5]->m_data, "Canon", 5));
    const uint32_t rational[2] = {1, 2};
    EXPECT_EQ(0, std::memcmp(tags[6]->m_data, rational, 8));
    const uint16_t shorts[3] = {10, 20, 30};
    EXPECT_EQ(0, std::memcmp(tags[7]->m_data, shorts, 6));
    EXPECT_EQ(13u, tags[8]->m_type);
    EXPECT_EQ(nullptr, tags[8]->m_data);
    EXPECT_EQ(0, std::memcmp(tags[9]->m_data, "\0\0\0\0\0\0", 6));
}

INSTANTIATE_TEST_SUITE_P(LittleAndBig, ByteOrder, ::testing::Bool());

TEST(TiffLoad, PointersAndThumbnailAreRegistered)
{
    DocPtr doc = LoadBytes(ExifPointerTwice());
    ASSERT_TRUE(doc);
    std::vector<CTag *> ifd0 = TagsOf(doc->FindIfd(0));
    EXPECT_EQ(ifd0[2], doc->m_exifIfdTag);
    EXPECT_EQ(1, zExifIsExifExist(doc.get()));
    EXPECT_EQ(ifd0[0], doc->m_thumbTag);
    EXPECT_EQ(uint32_t(THUMB_TYPE_JPEG), doc->m_thumbType & THUMB_TYPE_JPEG);
    EXPECT_EQ(0, zExifIsExifExist(nullptr));
}

// A chain without a loop that goes on and on stops at a bound.
TEST(TiffLoad, LongChainsStopAtABound)
{
    ByteBuilder chain;
    chain.TiffHeader(8);
    for (uint32_t i = 0; i < MAX_CHAINED_IFDS + 10; i++) chain.U16(1).Entry(256, 3, 1, i).U32(8 + (i + 1) * 18);
    DocPtr doc = LoadBytes(chain.U32(0).m_bytes);
    ASSERT_TRUE(doc);
    EXPECT_EQ(MAX_CHAINED_IFDS, doc->CountIfds());
}

// A parse run over a block in memory may fail after some tags went into the
// tree; the count of that IFD then still matches the tags it holds.
TEST(TiffLoad, AnIfdCutShortByAFailureCountsTheTagsItKept)
{
    ByteBuilder b = OneIfd({{256, 3, 1, 1}, {34665, 4, 1, 50}, {258, 3, 1, 8}}).U16(101);
    CExifDoc doc;
    CStreamIO *block = nullptr;
    ASSERT_TRUE(CreateMemoryStream(&block, b.m_bytes.data(), int32_t(b.Size())));
    CDocBuilder builder(&doc);
    EXPECT_EQ(0, ParseTiff(block, &builder));
    DeleteStream(block);
    EXPECT_EQ("1 2:0[3:2 256 34665]", Outline(doc));
}

// Offsets in the tree are 32-bit, and so is a stream's Tell: a file of 2 GiB
// or more would wrap them. Such a file is refused before its parse starts,
// like a file that isn't there.
TEST(TiffLoad, FilesOfTwoGigabytesAndMoreAreRefused)
{
    TempDir dir;
    EXPECT_EQ(nullptr, zExifLoadFile(dir.Path("none.tif").c_str()));
    for (auto head : std::vector<std::vector<uint8_t>>{{0xFF, 0xD8, 0xFF, 0xDA, 0, 2}, {'I', 'I', 42, 0, 8, 0, 0, 0}}) {
        std::string path = dir.Write("big.bin", head);
        std::filesystem::resize_file(path, (uint64_t(1) << 32) + 64);
        EXPECT_EQ(nullptr, zExifLoadFile(path.c_str())) << int(head[0]);
        std::filesystem::resize_file(path, uint64_t(1) << 31);
        EXPECT_EQ(nullptr, zExifLoadFile(path.c_str())) << int(head[0]);
    }
}

}  // namespace
