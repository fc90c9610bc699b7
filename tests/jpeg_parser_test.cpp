#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "support/byte_builder.h"
#include "support/load_bytes.h"
#include "tree/walk.h"

namespace {

const std::vector<uint8_t> SOI = {0xFF, 0xD8};
const std::vector<uint8_t> EOI = {0xFF, 0xD9};

// The markers of the top-level chain as "id" or "id:offset:size".
std::vector<std::string> Chain(CExifDoc *doc, bool withPlaces = false)
{
    std::vector<std::string> ids;
    for (CNode *node = doc->m_root; node != nullptr; node = node->m_next) {
        std::string text = std::to_string(node->m_id);
        if (withPlaces) {
            CMarker *marker = static_cast<CMarker *>(node);
            text += ":" + std::to_string(marker->m_offset) + ":" + std::to_string(marker->m_size);
        }
        ids.push_back(text);
    }
    return ids;
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

TEST(JpegLoad, SegmentOffsetsAndSizesFollowTheFile)
{
    std::vector<uint8_t> app0 = JpegSegment(0xE0, std::vector<uint8_t>(14, 'J'));
    std::vector<uint8_t> tiff = MinimalTiff();
    tiff.resize(998 - 6);
    std::vector<uint8_t> file = Concat({SOI, app0, ExifApp1(tiff), EOI});
    DocPtr doc = LoadBytes(file);
    ASSERT_TRUE(doc);
    EXPECT_EQ(FORMAT_JPEG, zExifGetFileFormat(doc.get()));
    EXPECT_EQ((std::vector<std::string>{"216:0:0", "224:6:14", "225:24:998", "217:0:0"}), Chain(doc.get(), true));
    EXPECT_EQ(doc->m_root->m_next->m_next, doc->m_exifMarker);
    EXPECT_STREQ("Exif", doc->m_exifMarker->m_sig);
    EXPECT_EQ(1, zExifIsExifExist(doc.get()));
    EXPECT_EQ(NODE_TIFF_HEADER, doc->m_exifMarker->m_child->m_id);
    EXPECT_EQ(doc->m_exifMarker, doc->FindIfd(0)->m_parent);
}

TEST(JpegLoad, SmallestFiles)
{
    DocPtr soi = LoadBytes(SOI);
    ASSERT_TRUE(soi);
    EXPECT_EQ((std::vector<std::string>{"216"}), Chain(soi.get()));
    EXPECT_EQ(0, soi->CountIfds());
    DocPtr pair = LoadBytes(Concat({SOI, EOI}));
    ASSERT_TRUE(pair);
    EXPECT_EQ((std::vector<std::string>{"216", "217"}), Chain(pair.get()));
    EXPECT_FALSE(LoadBytes({0xFF}));
    EXPECT_FALSE(LoadBytes({0xFF, 0xD9}));
}

TEST(JpegLoad, ScanDataIsOneRunUpToEoi)
{
    std::vector<uint8_t> file = Concat({SOI, Scan({0xFF, 0x00, 1, 2, 0xFF, 0xD0, 3, 0xFF, 0xC4, 0, 5}), EOI});
    DocPtr doc = LoadBytes(file);
    ASSERT_TRUE(doc);
    EXPECT_EQ((std::vector<std::string>{"216:0:0", "218:6:6", "161:12:11", "217:0:0"}), Chain(doc.get(), true));
}

TEST(JpegLoad, BytesBehindEoiGetANodeOnlyInFrontOfAnotherEoi)
{
    std::vector<uint8_t> file = Concat({SOI, Scan({1}), EOI, std::vector<uint8_t>{9, 9}, EOI, std::vector<uint8_t>{7}});
    DocPtr doc = LoadBytes(file);
    ASSERT_TRUE(doc);
    EXPECT_EQ((std::vector<std::string>{"216:0:0", "218:6:6", "161:12:1", "217:0:0", "161:15:2", "217:0:0"}),
              Chain(doc.get(), true));
}

// Before the scan a second FF is taken as the code, not as a fill byte.
TEST(JpegLoad, AnFfInFrontOfACodeIsACode)
{
    DocPtr doc = LoadBytes({0xFF, 0xD8, 0xFF, 0xFF, 0x00, 0x04, 'a', 'b', 0xFF, 0xD9});
    ASSERT_TRUE(doc);
    EXPECT_EQ((std::vector<std::string>{"216:0:0", "255:6:2", "217:0:0"}), Chain(doc.get(), true));
}

TEST(JpegLoad, SegmentsAfterTheScanAreDataButApplicationSegmentsStay)
{
    std::vector<uint8_t> file = Concat({SOI, Scan({7, 7}), JpegSegment(0xDB, {1, 2}), ExifApp1(MinimalTiff(true)),
                                        std::vector<uint8_t>{8}, EOI, std::vector<uint8_t>{9, 9, 9}});
    DocPtr doc = LoadBytes(file);
    ASSERT_TRUE(doc);
    EXPECT_EQ((std::vector<std::string>{"216", "218", "225", "161", "217"}), Chain(doc.get()));
    CMarker *run = static_cast<CMarker *>(FindInChain(doc->m_root, MARKER_SCAN_DATA));
    EXPECT_EQ(2 + 6 + 1, run->m_size);
    EXPECT_EQ(1, doc->m_bigEndian);
    EXPECT_EQ(1, doc->CountIfds());
}

TEST(JpegLoad, ExifSignaturesAreExact)
{
    std::vector<uint8_t> lower = Concat({std::vector<uint8_t>{'e', 'x', 'i', 'f', 0, 0}, MinimalTiff()});
    DocPtr doc = LoadBytes(Concat({SOI, JpegSegment(0xE1, lower), EOI}));
    ASSERT_TRUE(doc);
    EXPECT_EQ(0, zExifIsExifExist(doc.get()));
    EXPECT_EQ(nullptr, doc->m_exifMarker);

    std::vector<uint8_t> badOrder = MinimalTiff();
    badOrder[0] = 'X';
    EXPECT_FALSE(LoadBytes(Concat({SOI, ExifApp1(badOrder), EOI})));
}

TEST(JpegLoad, EveryExifSegmentIsParsedAndTheLastIsRemembered)
{
    DocPtr doc = LoadBytes(Concat({SOI, ExifApp1(MinimalTiff()), ExifApp1(MinimalTiff(true)), EOI}));
    ASSERT_TRUE(doc);
    CNode *first = doc->m_root->m_next;
    EXPECT_NE(nullptr, first->m_child);
    EXPECT_EQ(first->m_next, doc->m_exifMarker);
    EXPECT_NE(nullptr, doc->m_exifMarker->m_child);
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
    EXPECT_EQ((std::vector<std::string>{"216", "225", "217"}), Chain(doc.get()));
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

INSTANTIATE_TEST_SUITE_P(Places, ExifOffsets,
                         ::testing::Values(OutsideOffset{FIRST_IFD, 0xFFFFFFF0, false},
                                           OutsideOffset{FIRST_IFD, 0x7FFFFFF0, true},
                                           OutsideOffset{VALUE, 0xFFFFFFF0, true},
                                           OutsideOffset{VALUE, 0x7FFFFFF0, true},
                                           OutsideOffset{EXIF_POINTER, 0xFFFFFFF0, false},
                                           OutsideOffset{EXIF_POINTER, 0x7FFFFFF0, false},
                                           OutsideOffset{NEXT_LINK, 0xFFFFFFF0, false},
                                           OutsideOffset{NEXT_LINK, 0x7FFFFFF0, true}));

TEST(JpegLoad, ExifBlocksTooShortForAHeaderAreNotParsed)
{
    for (size_t tiffBytes : {0u, 1u, 7u}) {
        std::vector<uint8_t> tiff(tiffBytes, 'I');
        DocPtr doc = LoadBytes(Concat({SOI, ExifApp1(tiff), EOI}));
        ASSERT_TRUE(doc) << tiffBytes;
        EXPECT_EQ(nullptr, doc->m_exifMarker->m_child);
        EXPECT_EQ(nullptr, doc->FindExifTag(36867));
    }
    DocPtr zero = LoadBytes({0xFF, 0xD8, 0xFF, 0xE1, 0, 0, 'E', 'x', 'i', 'f', 0, 0, 0xFF, 0xD9});
    ASSERT_TRUE(zero);
    EXPECT_EQ(0, zExifIsExifExist(zero.get()));
}

// A segment whose length field or signature the file cuts gets no node: its
// values would be guessed. One whose payload is cut keeps its node, which
// says what the file promised. A final lone FF ends the run in front of it.
TEST(JpegLoad, TruncatedFilesEndTheWalkWithoutGuessing)
{
    struct Cut {
        std::vector<uint8_t> file;
        std::vector<std::string> chain;
    };
    for (const Cut &cut : std::vector<Cut>{
             {{0xFF, 0xD8, 0xFF}, {"216:0:0"}},
             {{0xFF, 0xD8, 0xFF, 0xDB, 0x00}, {"216:0:0"}},
             {{0xFF, 0xD8, 0xFF, 0xE0, 0x00, 0x10, 'J', 'F'}, {"216:0:0"}},
             {{0xFF, 0xD8, 0xFF, 0xDB, 0x00, 0x10, 1, 2}, {"216:0:0", "219:6:14"}},
             {{0xFF, 0xD8, 0xFF, 0xDA, 0x00, 0x08, 1, 2, 3, 4, 5, 6, 0x11, 0xFF}, {"216:0:0", "218:6:6", "161:12:1"}},
         }) {
        DocPtr doc = LoadBytes(cut.file);
        ASSERT_TRUE(doc) << cut.file.size();
        EXPECT_EQ(cut.chain, Chain(doc.get(), true)) << cut.file.size();
    }
}

TEST(JpegLoad, LengthsBelowTwoAreReadAgainAsData)
{
    DocPtr doc = LoadBytes({0xFF, 0xD8, 0xFF, 0xDB, 0x00, 0x00, 0xFF, 0xE0, 0x00, 0x01, 0xFF, 0xD9, 0, 0});
    ASSERT_TRUE(doc);
    // The DQT's length field is read again as data; the APP0's length of 1
    // sends the walk back onto its own second length byte.
    EXPECT_EQ((std::vector<std::string>{"216:0:0", "219:6:-2", "224:10:-1", "161:4:3", "217:0:0"}),
              Chain(doc.get(), true));
}

// So many markers would exhaust the stack of a recursive walk or destructor.
TEST(JpegLoad, AHundredThousandMarkers)
{
    std::vector<uint8_t> file = SOI;
    for (int i = 0; i < 100000; i++) {
        file.insert(file.end(), {0xFF, 0xFE, 0x00, 0x03, uint8_t(i)});
    }
    file.insert(file.end(), EOI.begin(), EOI.end());
    DocPtr doc = LoadBytes(file);
    ASSERT_TRUE(doc);
    EXPECT_EQ(nullptr, FindNode(doc->m_root, 12345));
    EXPECT_EQ(217, FindNode(doc->m_root, 217)->m_id);
}

}  // namespace
