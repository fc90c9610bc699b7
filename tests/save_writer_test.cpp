#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "load/tiff_types.h"
#include "save/block_size.h"
#include "save/exif_writer.h"
#include "streams/memory_stream.h"
#include "support/byte_builder.h"
#include "support/load_bytes.h"
#include "support/tag_records.h"
#include "support/tree_builder.h"
#include "tree/walk.h"

namespace {

struct Written {
    bool ok = false;
    int64_t computed = 0;
    std::vector<uint8_t> bytes;
};

CNode *HeaderOf(CExifDoc &doc)
{
    return FindInChain(doc.m_root, NODE_TIFF_HEADER);
}

// Sizes the block, writes it into a memory block of exactly that size, and
// checks that the writer filled it to the last byte.
Written WriteBlock(CExifDoc &doc, const BlockSource &source = {})
{
    Written written;
    written.computed = ComputeExifSize(source, HeaderOf(doc));
    if (written.computed < 1) return written;
    written.bytes.assign(size_t(written.computed), 0xEE);
    CStreamObj out(written.bytes.data(), int32_t(written.computed));
    CExifWriter writer(&out, source);
    written.ok = writer.WriteTiff(HeaderOf(doc)) && writer.m_end == written.computed;
    return written;
}

uint32_t U32At(const std::vector<uint8_t> &bytes, size_t pos)
{
    uint32_t v = 0;
    std::memcpy(&v, bytes.data() + pos, 4);
    return v;
}

uint16_t U16At(const std::vector<uint8_t> &bytes, size_t pos)
{
    return uint16_t(bytes[pos] | bytes[pos + 1] << 8);
}

std::unique_ptr<CExifDoc> Tiff(const std::vector<IfdDef> &ifds)
{
    return TreeBuilder(FORMAT_TIFF).TiffBlock(ifds).Take();
}

EntryDef Raw(int32_t tag, uint32_t type, uint32_t count, const std::vector<uint8_t> &bytes)
{
    return {tag, type, count, bytes, {}};
}

TEST(WriterLayout, ExifIfdBehindIfd0Values)
{
    auto doc = Tiff({{Ascii(271, "Canon"), Pointer(34665, {Ascii(36867, "2008:05:30 15:56:01")})}});
    Written w = WriteBlock(*doc);
    ASSERT_TRUE(w.ok);
    ByteBuilder expected;
    expected.TiffHeader(8).U16(2).Entry(271, 2, 6, 38).Entry(34665, 4, 1, 44).U32(0).Text("Canon").U8(0);
    expected.U16(1).Entry(36867, 2, 20, 62).U32(0).Text("2008:05:30 15:56:01").U8(0);
    EXPECT_EQ(82, w.computed);
    EXPECT_EQ(expected.m_bytes, w.bytes);
}

TEST(WriterLayout, SingleInlineShort)
{
    auto doc = Tiff({{Short(274, 6)}});
    Written w = WriteBlock(*doc);
    ASSERT_TRUE(w.ok);
    ByteBuilder expected;
    expected.TiffHeader(8).U16(1).Entry(274, 3, 1, 6).U32(0);
    EXPECT_EQ(expected.m_bytes, w.bytes);
}

struct SlotCase {
    uint32_t type;
    std::vector<uint8_t> bytes;
    bool inlineValue;
};

class WriterSlot : public ::testing::TestWithParam<SlotCase> {};

// A value that fits stands in the slot as the tree holds it; any other goes
// behind the link, at 26 in a block of one entry.
TEST_P(WriterSlot, InlineOrBehindTheLink)
{
    const SlotCase &c = GetParam();
    auto doc = Tiff({{Bytes(700, c.type, c.bytes)}});
    Written w = WriteBlock(*doc);
    ASSERT_TRUE(w.ok);
    if (c.inlineValue) {
        std::vector<uint8_t> slot(w.bytes.begin() + 18, w.bytes.begin() + 18 + long(c.bytes.size()));
        EXPECT_EQ(c.bytes, slot);
        EXPECT_EQ(26, w.computed);
    } else {
        EXPECT_EQ(26u, U32At(w.bytes, 18));
        EXPECT_EQ(c.bytes, std::vector<uint8_t>(w.bytes.begin() + 26, w.bytes.end()));
    }
}

INSTANTIATE_TEST_SUITE_P(Types, WriterSlot,
                         ::testing::Values(SlotCase{TIFF_RATIONAL, {1, 0, 0, 0, 2, 0, 0, 0}, false},
                                           SlotCase{TIFF_ASCII, {'a', 'b', 'c', 0}, true},
                                           SlotCase{TIFF_ASCII, {'a', 'b', 'c', 'd', 0}, false},
                                           SlotCase{TIFF_SHORT, {1, 0, 2, 0}, true},
                                           SlotCase{TIFF_SHORT, {1, 0, 2, 0, 3, 0}, false},
                                           SlotCase{TIFF_LONG, {7, 0, 0, 0}, true},
                                           SlotCase{TIFF_LONG, {7, 0, 0, 0, 8, 0, 0, 0}, false},
                                           SlotCase{TIFF_UNDEFINED, {9, 8, 7, 6}, true},
                                           SlotCase{TIFF_DOUBLE, {0, 0, 0, 0, 0, 0, 0xF0, 0x3F}, false}));

TEST(WriterLayout, OutOfLineValuesFollowEachOtherWithoutPadding)
{
    auto doc = Tiff({{Ascii(270, "abcd"), Ascii(271, "efghi")}});
    Written w = WriteBlock(*doc);
    ASSERT_TRUE(w.ok);
    EXPECT_EQ(38u, U32At(w.bytes, 18));
    EXPECT_EQ(43u, U32At(w.bytes, 30));
    EXPECT_EQ(49, w.computed);
}

TEST(WriterLayout, LongOfCountZeroPointsAtTheFreePlaceAndStoresNothing)
{
    auto doc = Tiff({{Raw(700, TIFF_LONG, 0, {})}});
    Written w = WriteBlock(*doc);
    ASSERT_TRUE(w.ok);
    EXPECT_EQ(26, w.computed);
    EXPECT_EQ(26u, U32At(w.bytes, 18));
}

TEST(WriterLayout, UnknownTypeKeepsItsSlotWhateverItsCount)
{
    auto doc = Tiff({{Raw(700, 13, 7, {1, 2, 3, 4})}});
    Written w = WriteBlock(*doc);
    ASSERT_TRUE(w.ok);
    ByteBuilder expected;
    expected.TiffHeader(8).U16(1).EntryRaw(700, 13, 7, {1, 2, 3, 4}).U32(0);
    EXPECT_EQ(expected.m_bytes, w.bytes);
}

// Tag numbers that are also structural ids are tags like any other: no
// entry goes missing and the table has no hole.
TEST(WriterLayout, TagsNumberedLikeStructuralNodesAreWritten)
{
    IfdDef gps = {Ascii(1, "N"), Short(2, 2), Ascii(3, "E"), Short(4, 4)};
    auto doc = Tiff({{Short(60, 5), Short(70, 7), Pointer(34853, gps)}});
    Written w = WriteBlock(*doc);
    ASSERT_TRUE(w.ok);
    EXPECT_EQ(3, U16At(w.bytes, 8));
    EXPECT_EQ(60, U16At(w.bytes, 10));
    EXPECT_EQ(70, U16At(w.bytes, 22));
    DocPtr back = LoadBytes(w.bytes);
    ASSERT_TRUE(back);
    EXPECT_EQ(TagRecords(*doc), TagRecords(*back));
}

TEST(WriterLayout, GpsIfdInsideTheExifIfdIsSizedAndWritten)
{
    auto doc = Tiff({{Short(274, 1), Pointer(34665, {Ascii(36867, "2008:05:30 15:56:01"),
                                                      Pointer(34853, {Ascii(1, "N"), Rational(2, 1, 2)})})}});
    Written w = WriteBlock(*doc);
    ASSERT_TRUE(w.ok);
    DocPtr back = LoadBytes(w.bytes);
    ASSERT_TRUE(back);
    EXPECT_EQ(TagRecords(*doc), TagRecords(*back));
}

TEST(WriterLayout, SecondIfdFollowsEverythingOfTheFirst)
{
    auto doc = Tiff({{Short(274, 1), Pointer(34665, {Ascii(36867, "2008:05:30 15:56:01")}),
                      Pointer(34853, {Ascii(1, "N")})},
                     {Short(259, 6)}});
    Written w = WriteBlock(*doc);
    ASSERT_TRUE(w.ok);
    int64_t ifd0 = ComputeIfdSize(BlockSource{}, doc->FindIfd(0), 0);
    uint32_t link0 = U32At(w.bytes, 8 + 2 + 3 * 12);
    EXPECT_EQ(uint32_t(8 + ifd0), link0);
    EXPECT_EQ(1, U16At(w.bytes, link0));
    EXPECT_EQ(0u, U32At(w.bytes, link0 + 2 + 12));
    EXPECT_EQ(size_t(link0 + 18), w.bytes.size());
}

TEST(WriterLayout, JpegThumbnailIsLastAndItsLengthTheBytesWritten)
{
    auto doc = Tiff({{Short(274, 1)}, {Short(259, 6), Long(513, 9999), Long(514, 3)}});
    std::vector<uint8_t> thumb = {0xFF, 0xD8, 1, 2, 3, 0xFF, 0xD9};
    doc->m_thumbTag->SetData(thumb.data(), int32_t(thumb.size()));
    Written w = WriteBlock(*doc);
    ASSERT_TRUE(w.ok);
    size_t ifd1 = 26;
    EXPECT_EQ(uint32_t(ifd1 + 2 + 36 + 4), U32At(w.bytes, ifd1 + 2 + 12 + 8));
    EXPECT_EQ(uint32_t(thumb.size()), U32At(w.bytes, ifd1 + 2 + 24 + 8));
    EXPECT_EQ(thumb, std::vector<uint8_t>(w.bytes.end() - long(thumb.size()), w.bytes.end()));
}

// 40965 as a load leaves it has no chain: the Interop IFD isn't in the tree,
// so its pointer is left out rather than pointing at whatever follows.
TEST(WriterPointers, ChildlessInteropPointerIsDropped)
{
    auto doc = Tiff({{Pointer(34665, {Short(40961, 1), Long(40965, 1234)})}});
    Written w = WriteBlock(*doc);
    ASSERT_TRUE(w.ok);
    uint32_t exif = U32At(w.bytes, 18);
    EXPECT_EQ(1, U16At(w.bytes, exif));
    EXPECT_EQ(40961, U16At(w.bytes, exif + 2));
    EXPECT_EQ(size_t(exif + 18), w.bytes.size());
}

TEST(WriterPointers, InteropIfdWithAChainIsWritten)
{
    auto doc = Tiff({{Pointer(34665, {Short(40961, 1), Pointer(40965, {Ascii(1, "R98")})})}});
    Written w = WriteBlock(*doc);
    ASSERT_TRUE(w.ok);
    uint32_t exif = U32At(w.bytes, 18);
    uint32_t interop = U32At(w.bytes, exif + 2 + 12 + 8);
    EXPECT_EQ(exif + 2 + 24 + 4, interop);
    EXPECT_EQ(1, U16At(w.bytes, interop));
    EXPECT_EQ(1, U16At(w.bytes, interop + 2));
}

TEST(WriterPointers, SubIfdWhoseEntriesAreAllDroppedTakesItsPointerAlong)
{
    auto doc = Tiff({{Short(274, 1), Pointer(34665, {Long(40965, 1234)})}});
    Written w = WriteBlock(*doc);
    ASSERT_TRUE(w.ok);
    ByteBuilder expected;
    expected.TiffHeader(8).U16(1).Entry(274, 3, 1, 1).U32(0);
    EXPECT_EQ(expected.m_bytes, w.bytes);
}

// A reader refuses an IFD of no entries, so an emptied IFD is left out of
// the chain, and a block without IFDs says so in its header.
TEST(WriterPointers, EmptyIfdsAreLeftOut)
{
    auto doc = Tiff({{Long(40965, 1)}, {Short(259, 6)}});
    Written w = WriteBlock(*doc);
    ASSERT_TRUE(w.ok);
    ByteBuilder expected;
    expected.TiffHeader(8).U16(1).Entry(259, 3, 1, 6).U32(0);
    EXPECT_EQ(expected.m_bytes, w.bytes);

    auto empty = Tiff({});
    Written header = WriteBlock(*empty);
    ASSERT_TRUE(header.ok);
    EXPECT_EQ((std::vector<uint8_t>{'I', 'I', 42, 0, 0, 0, 0, 0}), header.bytes);
}

// Offsets into the source that nothing in the tree describes would point at
// whatever the rewrite puts there.
TEST(WriterPointers, OffsetsThatCantBeMovedAreDropped)
{
    auto doc = Tiff({{Short(274, 1), Long(288, 100), Long(289, 10), Long(330, 500), Long(513, 77)}});
    Written w = WriteBlock(*doc);
    ASSERT_TRUE(w.ok);
    ByteBuilder expected;
    expected.TiffHeader(8).U16(1).Entry(274, 3, 1, 1).U32(0);
    EXPECT_EQ(expected.m_bytes, w.bytes);
}

// An entry of type 0 would make the whole file unreadable to a loader.
TEST(WriterPointers, EntriesOfTypeZeroAreDropped)
{
    auto doc = Tiff({{Short(274, 1), Short(275, 2)}});
    AsTag(FindNode(doc->m_root, 275))->m_type = 0;
    Written w = WriteBlock(*doc);
    ASSERT_TRUE(w.ok);
    ByteBuilder expected;
    expected.TiffHeader(8).U16(1).Entry(274, 3, 1, 1).U32(0);
    EXPECT_EQ(expected.m_bytes, w.bytes);
}

TEST(WriterLimits, IfdOf101TagsIsWritten)
{
    IfdDef many;
    for (int i = 0; i < 101; i++) many.push_back(Short(1000 + i, uint16_t(i)));
    auto doc = Tiff({many});
    Written w = WriteBlock(*doc);
    ASSERT_TRUE(w.ok);
    EXPECT_EQ(101, U16At(w.bytes, 8));
    EXPECT_EQ(8 + 2 + 101 * 12 + 4, w.computed);
}

TEST(WriterLimits, BlockThatDoesntFitItsStreamFails)
{
    auto doc = Tiff({{Ascii(271, "Canon"), Pointer(34665, {Ascii(36867, "2008:05:30 15:56:01")})}});
    std::vector<uint8_t> small(81, 0);
    CStreamObj out(small.data(), int32_t(small.size()));
    CExifWriter writer(&out, BlockSource{});
    EXPECT_EQ(0, writer.WriteTiff(HeaderOf(*doc)));
}

TEST(WriterLimits, ValueShorterThanItsCountIsRefused)
{
    auto doc = Tiff({{Ascii(271, "Canon")}});
    CTag *tag = static_cast<CTag *>(FindNode(doc->FindIfd(0), 271));
    tag->m_count = 60;
    EXPECT_EQ(-1, ComputeExifSize(BlockSource{}, HeaderOf(*doc)));
    std::vector<uint8_t> block(200, 0);
    CStreamObj out(block.data(), int32_t(block.size()));
    CExifWriter writer(&out, BlockSource{});
    EXPECT_EQ(0, writer.WriteTiff(HeaderOf(*doc)));
}

}  // namespace
