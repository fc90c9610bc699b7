#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "support/case_name.h"
#include "support/byte_builder.h"
#include "support/load_bytes.h"
#include "tree/walk.h"

namespace {

const std::vector<uint8_t> SOI = {0xFF, 0xD8};
const std::vector<uint8_t> EOI = {0xFF, 0xD9};

// The markers of the top-level chain as "id:offset:size", one after another.
std::string Chain(const CExifDoc &doc)
{
    std::string chain;
    for (CNode *node = doc.m_root; node != nullptr; node = node->m_next) {
        CMarker *marker = static_cast<CMarker *>(node);
        chain += (chain.empty() ? "" : " ") + std::to_string(node->m_id) + ":" + std::to_string(marker->m_offset) +
                 ":" + std::to_string(marker->m_size);
    }
    return chain;
}

std::vector<uint8_t> MinimalTiff(bool bigEndian = false)
{
    ByteBuilder b(bigEndian);
    b.TiffHeader(8).U16(1).Entry(271, 2, 4, 0).U32(0);
    return b.m_bytes;
}

std::vector<uint8_t> Scan(const std::vector<uint8_t> &data)
{
    return Concat({JpegSegment(0xDA, {1, 1, 0, 0, 63, 0}), data});
}

// A file and the chain its load makes; no chain: the load fails.
struct ChainCase {
    const char *name;
    std::vector<uint8_t> file;
    std::string chain;
};

class JpegChain : public ::testing::TestWithParam<ChainCase> {};

TEST_P(JpegChain, FollowsTheFile)
{
    EXPECT_EQ(GetParam().chain, DescribeLoad(GetParam().file, Chain));
}

// The scan data is one run up to EOI, whatever markers stand in it; bytes
// behind EOI get a node only in front of another EOI. An application segment
// behind the scan ends the run and stays a segment. A segment whose length
// field or signature the file cuts gets no node: its values would be guessed;
// one whose payload is cut keeps its node, which says what the file promised.
// A length below 2 is read again as data.
INSTANTIATE_TEST_SUITE_P(
    Files, JpegChain,
    ::testing::Values(
        ChainCase{"SoiAlone", SOI, "216:0:0"}, ChainCase{"SoiAndEoi", Concat({SOI, EOI}), "216:0:0 217:0:0"},
        ChainCase{"LoneFf", {0xFF}, ""}, ChainCase{"EoiFirst", EOI, ""},
        ChainCase{"ScanUpToEoi", Concat({SOI, Scan({0xFF, 0x00, 1, 2, 0xFF, 0xD0, 3, 0xFF, 0xC4, 0, 5}), EOI}),
                  "216:0:0 218:6:6 161:12:11 217:0:0"},
        ChainCase{"BehindEoi", Concat({SOI, Scan({1}), EOI, {9, 9}, EOI, {7}}),
                  "216:0:0 218:6:6 161:12:1 217:0:0 161:15:2 217:0:0"},
        ChainCase{"SegmentsBehindTheScan",
                  Concat({SOI, Scan({7, 7}), JpegSegment(0xDB, {1, 2}), ExifApp1(MinimalTiff(true)), {8}, EOI, {9}}),
                  "216:0:0 218:6:6 161:12:8 225:24:32 161:56:1 217:0:0"},
        ChainCase{
            "FfInFrontOfACode", {0xFF, 0xD8, 0xFF, 0xFF, 0x00, 0x04, 'a', 'b', 0xFF, 0xD9}, "216:0:0 255:6:2 217:0:0"},
        ChainCase{"CutFf", {0xFF, 0xD8, 0xFF}, "216:0:0"},
        ChainCase{"CutLength", {0xFF, 0xD8, 0xFF, 0xDB, 0x00}, "216:0:0"},
        ChainCase{"CutSignature", {0xFF, 0xD8, 0xFF, 0xE0, 0x00, 0x10, 'J', 'F'}, "216:0:0"},
        ChainCase{"CutPayload", {0xFF, 0xD8, 0xFF, 0xDB, 0x00, 0x10, 1, 2}, "216:0:0 219:6:14"},
        ChainCase{"CutScanBeforeAnFf",
                  {0xFF, 0xD8, 0xFF, 0xDA, 0x00, 0x08, 1, 2, 3, 4, 5, 6, 0x11, 0xFF},
                  "216:0:0 218:6:6 161:12:1"},
        ChainCase{"LengthsBelowTwo",
                  {0xFF, 0xD8, 0xFF, 0xDB, 0x00, 0x00, 0xFF, 0xE0, 0x00, 0x01, 0xFF, 0xD9, 0, 0},
                  "216:0:0 219:6:-2 161:4:2 224:10:-1 161:9:1 217:0:0"}),
    CaseName());

TEST(JpegLoad, EveryExifSegmentIsParsedAndTheLastIsRemembered)
{
    std::vector<uint8_t> app0 = JpegSegment(0xE0, std::vector<uint8_t>(14, 'J'));
    DocPtr doc = LoadBytes(Concat({SOI, app0, ExifApp1(MinimalTiff()), ExifApp1(MinimalTiff(true)), EOI}));
    ASSERT_TRUE(doc);
    EXPECT_EQ(FORMAT_JPEG, zExifGetFileFormat(doc.get()));
    EXPECT_EQ(1, zExifIsExifExist(doc.get()));
    CNode *first = doc->m_root->m_next->m_next;
    EXPECT_STREQ("Exif", first->m_sig);
    EXPECT_EQ(NODE_TIFF_HEADER, first->m_child->m_id);
    EXPECT_EQ(first->m_next, doc->m_exifMarker);
    EXPECT_NE(nullptr, doc->m_exifMarker->m_child);
    EXPECT_EQ(1, doc->m_bigEndian);
}

TEST(JpegLoad, ExifSignaturesAreExact)
{
    std::vector<uint8_t> lower = Concat({{'e', 'x', 'i', 'f', 0, 0}, MinimalTiff()});
    DocPtr doc = LoadBytes(Concat({SOI, JpegSegment(0xE1, lower), EOI}));
    ASSERT_TRUE(doc);
    EXPECT_EQ(0, zExifIsExifExist(doc.get()));
    EXPECT_EQ(nullptr, doc->m_exifMarker);

    std::vector<uint8_t> badOrder = MinimalTiff();
    badOrder[0] = 'X';
    EXPECT_FALSE(LoadBytes(Concat({SOI, ExifApp1(badOrder), EOI})));
}

TEST(JpegLoad, ExifBlocksTooShortForAHeaderAreNotParsed)
{
    for (size_t tiffBytes : {0u, 1u, 7u}) {
        DocPtr doc = LoadBytes(Concat({SOI, ExifApp1(std::vector<uint8_t>(tiffBytes, 'I')), EOI}));
        ASSERT_TRUE(doc) << tiffBytes;
        EXPECT_EQ(nullptr, doc->m_exifMarker->m_child);
        EXPECT_EQ(nullptr, doc->FindExifTag(36867));
    }
    DocPtr zero = LoadBytes({0xFF, 0xD8, 0xFF, 0xE1, 0, 0, 'E', 'x', 'i', 'f', 0, 0, 0xFF, 0xD9});
    ASSERT_TRUE(zero);
    EXPECT_EQ(0, zExifIsExifExist(zero.get()));
}

// The places of an Exif block that hold offsets: the first IFD, an
// out-of-line value, the Exif IFD pointer and IFD 0's next link.
enum OffsetField { FIRST_IFD, VALUE, EXIF_POINTER, NEXT_LINK };

struct OutsideOffset {
    OffsetField field;
    uint32_t offset;
    bool loads;
};

std::vector<uint8_t> BlockWithOffset(OffsetField field, uint32_t offset)
{
    auto pick = [&](OffsetField f, uint32_t usual) { return f == field ? offset : usual; };
    ByteBuilder b(false);
    b.TiffHeader(pick(FIRST_IFD, 8)).U16(2);
    b.Entry(270, 2, 8, pick(VALUE, 56)).Entry(34665, 4, 1, pick(EXIF_POINTER, 38)).U32(pick(NEXT_LINK, 0));
    b.U16(1).EntryRaw(36867, 2, 4, {'2', '0', '0', 0}).U32(0);
    b.Text("abcdefgh");
    return b.m_bytes;
}

class ExifOffsets : public ::testing::TestWithParam<OutsideOffset> {};

// An offset with its top bit set where an IFD is expected fails the load; a
// chain link past the file ends the chain, and a value past the file reads
// as zeros. None of them moves the stream in front of the block.
TEST_P(ExifOffsets, OutsideTheFileAreRefusedOrReadAsNothing)
{
    OutsideOffset param = GetParam();
    DocPtr doc = LoadBytes(Concat({SOI, ExifApp1(BlockWithOffset(param.field, param.offset)), EOI}));
    ASSERT_EQ(param.loads, doc != nullptr);
    if (!doc) return;
    EXPECT_EQ("216:0:0 225:6:70 217:0:0", Chain(*doc));
    if (param.field == FIRST_IFD) {
        EXPECT_EQ(0, doc->CountIfds());
        return;
    }
    EXPECT_EQ(1, doc->CountIfds());
    CTag *description = TagsOf(doc->FindIfd(0))[0];
    ASSERT_EQ(8, description->m_size);
    const char *expected = param.field == VALUE ? "\0\0\0\0\0\0\0\0" : "abcdefgh";
    EXPECT_EQ(0, std::memcmp(description->m_data, expected, 8));
}

INSTANTIATE_TEST_SUITE_P(
    Places, ExifOffsets,
    ::testing::Values(OutsideOffset{FIRST_IFD, 0xFFFFFFF0, false}, OutsideOffset{FIRST_IFD, 0x7FFFFFF0, true},
                      OutsideOffset{VALUE, 0xFFFFFFF0, true}, OutsideOffset{VALUE, 0x7FFFFFF0, true},
                      OutsideOffset{EXIF_POINTER, 0xFFFFFFF0, false}, OutsideOffset{EXIF_POINTER, 0x7FFFFFF0, false},
                      OutsideOffset{NEXT_LINK, 0xFFFFFFF0, false}, OutsideOffset{NEXT_LINK, 0x7FFFFFF0, true}));

// So many markers would exhaust the stack of a recursive walk or destructor.
TEST(JpegLoad, AHundredThousandMarkers)
{
    std::vector<uint8_t> file = SOI;
    for (int i = 0; i < 100000; i++) file.insert(file.end(), {0xFF, 0xFE, 0x00, 0x03, uint8_t(i)});
    DocPtr doc = LoadBytes(Concat({file, EOI}));
    ASSERT_TRUE(doc);
    EXPECT_EQ(nullptr, FindNode(doc->m_root, 12345));
    EXPECT_EQ(217, FindNode(doc->m_root, 217)->m_id);
}

}  // namespace
