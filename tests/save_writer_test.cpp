#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "load/tiff_types.h"
#include "save/block_size.h"
#include "save/exif_writer.h"
#include "save/strip_list.h"
#include "streams/memory_stream.h"
#include "support/case_name.h"
#include "support/byte_builder.h"
#include "support/load_bytes.h"
#include "support/tag_records.h"
#include "support/tree_builder.h"
#include "tree/walk.h"

namespace {

// A source file whose byte at position p is p mod 251, so that every strip
// has bytes of its own.
std::vector<uint8_t> Pattern(size_t size)
{
    std::vector<uint8_t> bytes(size);
    for (size_t i = 0; i < size; i++) bytes[i] = uint8_t(i % 251);
    return bytes;
}

std::vector<uint8_t> At(size_t offset, size_t size)
{
    std::vector<uint8_t> pattern = Pattern(offset + size);
    return std::vector<uint8_t>(pattern.begin() + long(offset), pattern.end());
}

CNode *HeaderOf(CExifDoc &doc)
{
    return FindInChain(doc.m_root, NODE_TIFF_HEADER);
}

// Prepares the strips, sizes the block, writes it into a memory block of
// exactly that size and checks that the writer filled it to the last byte;
// empty on failure. The source holds sourceSize bytes of the pattern.
std::vector<uint8_t> Write(CExifDoc &doc, size_t sourceSize = 0, bool strict = true)
{
    std::vector<uint8_t> file = Pattern(sourceSize);
    CStreamObj stream(file.data(), int32_t(file.size()));
    BlockSource source;
    source.m_stream = sourceSize > 0 ? &stream : nullptr;
    source.m_size = int64_t(sourceSize);
    source.m_strictImages = strict;
    if (!PrepareStrips(HeaderOf(doc))) return {};
    int64_t size = ComputeExifSize(source, HeaderOf(doc));
    if (size < 1) return {};
    std::vector<uint8_t> bytes(size_t(size), 0xEE);
    CStreamObj out(bytes.data(), int32_t(size));
    CExifWriter writer(&out, source);
    if (!writer.WriteTiff(HeaderOf(doc)) || writer.m_end != size) return {};
    return bytes;
}

// The IFDs, the source's size, and the bytes written: exactly these, or, for
// none, a block that loads back with the same tags.
struct WriteCase {
    const char *name;
    std::vector<IfdDef> ifds;
    size_t sourceSize;
    std::vector<uint8_t> expected;
};

class WriteBlock : public ::testing::TestWithParam<WriteCase> {};

TEST_P(WriteBlock, LaysOutWhatTheTreeHolds)
{
    auto doc = TiffDoc(GetParam().ifds);
    std::vector<uint8_t> out = Write(*doc, GetParam().sourceSize);
    ASSERT_FALSE(out.empty());
    if (!GetParam().expected.empty()) {
        EXPECT_EQ(GetParam().expected, out);
        return;
    }
    DocPtr back = LoadBytes(out);
    ASSERT_TRUE(back);
    EXPECT_EQ(TagRecords(*doc), TagRecords(*back));
}

WriteCase Writes(const char *name, const std::vector<IfdDef> &ifds, const std::vector<uint8_t> &expected,
                 size_t sourceSize = 0)
{
    return {name, ifds, sourceSize, expected};
}

WriteCase Reloads(const char *name, const std::vector<IfdDef> &ifds)
{
    return {name, ifds, 0, {}};
}

using Entries = std::vector<std::array<uint32_t, 4>>;

// An IFD as written: its count, its entries as {tag, type, count, value},
// and its link.
std::vector<uint8_t> Ifd(const Entries &entries, uint32_t link)
{
    ByteBuilder b;
    b.U16(uint16_t(entries.size()));
    for (const auto &e : entries) b.Entry(uint16_t(e[0]), uint16_t(e[1]), e[2], e[3]);
    return b.U32(link).m_bytes;
}

// A block whose IFD 0 stands at 8.
std::vector<uint8_t> Block(const Entries &entries, uint32_t link = 0)
{
    ByteBuilder b;
    b.TiffHeader(8);
    return Concat({b.m_bytes, Ifd(entries, link)});
}

std::vector<uint8_t> Longs(const std::vector<uint32_t> &numbers)
{
    ByteBuilder b;
    for (uint32_t n : numbers) b.U32(n);
    return b.m_bytes;
}

std::vector<uint8_t> Text(const std::string &text)
{
    return std::vector<uint8_t>(text.c_str(), text.c_str() + text.size() + 1);
}

// A value that fits stands in the slot as the tree holds it; any other goes
// behind the link, at 26 in a block of one entry.
WriteCase Slot(const char *name, uint32_t type, const std::vector<uint8_t> &bytes)
{
    EntryDef entry = Bytes(700, type, bytes);
    if (bytes.size() > 4) return Writes(name, {{entry}}, Concat({Block({{700, type, entry.count, 26}}), bytes}));
    ByteBuilder b;
    b.TiffHeader(8).U16(1).EntryRaw(700, uint16_t(type), entry.count, bytes).U32(0);
    return Writes(name, {{entry}}, b.m_bytes);
}

const char *const kDate = "2008:05:30 15:56:01";

// An IFD of count SHORT tags, and the block it makes.
IfdDef ManyTags(uint32_t count)
{
    IfdDef many;
    for (uint32_t i = 0; i < count; i++) many.push_back(Short(int32_t(1000 + i), uint16_t(i)));
    return many;
}

std::vector<uint8_t> ManyEntries(uint32_t count)
{
    Entries entries;
    for (uint32_t i = 0; i < count; i++) entries.push_back({1000 + i, 3, 1, i});
    return Block(entries);
}

INSTANTIATE_TEST_SUITE_P(
    Values, WriteBlock,
    ::testing::Values(Writes("ExifIfdBehindIfd0Values", {{Ascii(271, "Canon"), Pointer(34665, {Ascii(36867, kDate)})}},
                             Concat({Block({{271, 2, 6, 38}, {34665, 4, 1, 44}}), Text("Canon"),
                                     Ifd({{36867, 2, 20, 62}}, 0), Text(kDate)})),
                      Slot("RationalBehind", TIFF_RATIONAL, {1, 0, 0, 0, 2, 0, 0, 0}),
                      Slot("AsciiInline", TIFF_ASCII, {'a', 'b', 'c', 0}),
                      Slot("AsciiBehind", TIFF_ASCII, {'a', 'b', 'c', 'd', 0}),
                      Slot("ShortsInline", TIFF_SHORT, {1, 0, 2, 0}),
                      Slot("ShortsBehind", TIFF_SHORT, {1, 0, 2, 0, 3, 0}), Slot("LongInline", TIFF_LONG, {7, 0, 0, 0}),
                      Slot("LongsBehind", TIFF_LONG, {7, 0, 0, 0, 8, 0, 0, 0}),
                      Slot("UndefinedInline", TIFF_UNDEFINED, {9, 8, 7, 6}),
                      Slot("DoubleBehind", TIFF_DOUBLE, {0, 0, 0, 0, 0, 0, 0xF0, 0x3F}),
                      Writes("ValuesBehindEachOtherUnpadded", {{Ascii(270, "abcd"), Ascii(271, "efghi")}},
                             Concat({Block({{270, 2, 5, 38}, {271, 2, 6, 43}}), Text("abcd"), Text("efghi")})),
                      Writes("LongOfCountZero", {{Bytes(700, TIFF_LONG, {})}}, Block({{700, 4, 0, 26}})),
                      Writes("UnknownTypeKeepsItsSlot", {{EntryDef{700, 13, 7, {1, 2, 3, 4}, {}}}},
                             Block({{700, 13, 7, 0x04030201}})),
                      Writes("AHundredAndOneTags", {ManyTags(101)}, ManyEntries(101))),
    CaseName());

// Sub-IFDs at any depth are sized and written, tags numbered like structural
// nodes included. Offsets into the source that nothing in the tree describes
// would point at whatever the rewrite puts there, and a reader refuses an IFD
// of no entries: such entries, IFDs and their pointers are left out.
INSTANTIATE_TEST_SUITE_P(
    Pointers, WriteBlock,
    ::testing::Values(
        Reloads("StructuralNumbers", {{Short(60, 5), Short(70, 7),
                                       Pointer(34853, {Ascii(1, "N"), Short(2, 2), Ascii(3, "E"), Short(4, 4)})}}),
        Reloads("GpsInsideTheExifIfd",
                {{Short(274, 1),
                  Pointer(34665, {Ascii(36867, kDate), Pointer(34853, {Ascii(1, "N"), Rational(2, 1, 2)})})}}),
        Reloads("SecondIfdBehindAllOfTheFirst",
                {{Short(274, 1), Pointer(34665, {Ascii(36867, kDate)}), Pointer(34853, {Ascii(1, "N")})},
                 {Short(259, 6)}}),
        Writes("InteropIfdWithAChain", {{Pointer(34665, {Short(40961, 1), Pointer(40965, {Ascii(1, "R98")})})}},
               Concat({Block({{34665, 4, 1, 26}}), Ifd({{40961, 3, 1, 1}, {40965, 4, 1, 56}}, 0),
                       Ifd({{1, 2, 4, 0x00383952}}, 0)})),
        Writes("ChildlessInteropPointer", {{Pointer(34665, {Short(40961, 1), Long(40965, 1234)})}},
               Concat({Block({{34665, 4, 1, 26}}), Ifd({{40961, 3, 1, 1}}, 0)})),
        Writes("SubIfdEmptiedByDrops", {{Short(274, 1), Pointer(34665, {Long(40965, 1234)})}}, Block({{274, 3, 1, 1}})),
        Writes("EmptiedIfd", {{Long(40965, 1)}, {Short(259, 6)}}, Block({{259, 3, 1, 6}})),
        Writes("NoIfds", {}, {'I', 'I', 42, 0, 0, 0, 0, 0}),
        Writes("OffsetsThatCantMove", {{Short(274, 1), Long(288, 100), Long(289, 10), Long(330, 500), Long(513, 77)}},
               Block({{274, 3, 1, 1}}))),
    CaseName());

// The strip arrays stand among the values in entry order, the strips behind
// them in index order, whatever their order in the source; SHORT tags come
// out as LONGs, and one strip stands right behind the link. Tiles are
// patched like strips, and strips win when an IFD has both. Each IFD has its
// own image data or none.
INSTANTIATE_TEST_SUITE_P(
    Strips, WriteBlock,
    ::testing::Values(
        Writes("ShortStrips", {{Numbers(273, TIFF_SHORT, {150, 100, 50}), Numbers(279, TIFF_SHORT, {10, 20, 30})}},
               Concat({Block({{273, 4, 3, 38}, {279, 4, 3, 50}}), Longs({62, 72, 92, 10, 20, 30}), At(150, 10),
                       At(100, 20), At(50, 30)}),
               200),
        Writes("OneLongStrip", {{Long(273, 900), Long(279, 1000)}},
               Concat({Block({{273, 4, 1, 38}, {279, 4, 1, 1000}}), At(900, 1000)}), 2000),
        Writes("OneShortStrip", {{Short(273, 900), Short(279, 1000)}},
               Concat({Block({{273, 4, 1, 38}, {279, 4, 1, 1000}}), At(900, 1000)}), 2000),
        Writes("Tiles", {{Long(322, 16), Numbers(324, TIFF_LONG, {40, 10}), Numbers(325, TIFF_LONG, {5, 6})}},
               Concat({Block({{322, 4, 1, 16}, {324, 4, 2, 50}, {325, 4, 2, 58}}), Longs({66, 71, 5, 6}), At(40, 5),
                       At(10, 6)}),
               100),
        Writes("StripsOverTiles", {{Long(273, 10), Long(279, 4), Long(324, 50), Long(325, 8)}},
               Concat({Block({{273, 4, 1, 38}, {279, 4, 1, 4}}), At(10, 4)}), 100),
        Writes("IfdWithoutStrips", {{Short(274, 1)}, {Long(273, 60), Long(279, 7)}},
               Concat({Block({{274, 3, 1, 1}}, 26), Ifd({{273, 4, 1, 56}, {279, 4, 1, 7}}, 0), At(60, 7)}), 100)),
    CaseName());

// Strip tags that disagree can't describe strips; a TIFF file whose strips the
// source doesn't hold can't be written, while a thumbnail stored as strips in
// an Exif block is left out instead. A block that doesn't fit its stream, a
// value shorter than its count and an entry of type 0, which would make the
// whole file unreadable, fail or go.
TEST(WriteBlock, RefusesOrDropsWhatCantBeWritten)
{
    for (IfdDef ifd : {IfdDef{Numbers(273, TIFF_LONG, {1, 2, 3}), Numbers(279, TIFF_LONG, {1, 2})},
                       IfdDef{Ascii(273, "abc"), Ascii(279, "def")}, IfdDef{Long(273, 0x80000000u), Long(279, 4)}}) {
        EXPECT_EQ(0, PrepareStrips(HeaderOf(*TiffDoc({ifd}))));
    }
    IfdDef outside = {Short(274, 1), Long(273, 90), Long(279, 20)};
    EXPECT_TRUE(Write(*TiffDoc({outside}), 100, true).empty());
    EXPECT_EQ(Block({{274, 3, 1, 1}}), Write(*TiffDoc({outside}), 100, false));

    auto typeZero = TiffDoc({{Short(274, 1), Short(275, 2)}});
    AsTag(FindNode(typeZero->m_root, 275))->m_type = 0;
    EXPECT_EQ(Block({{274, 3, 1, 1}}), Write(*typeZero));

    auto doc = TiffDoc({{Ascii(271, "Canon"), Pointer(34665, {Ascii(36867, kDate)})}});
    std::vector<uint8_t> small(81, 0);
    CStreamObj out(small.data(), int32_t(small.size()));
    EXPECT_EQ(0, CExifWriter(&out, BlockSource{}).WriteTiff(HeaderOf(*doc)));

    AsTag(FindNode(doc->FindIfd(0), 271))->m_count = 60;
    EXPECT_EQ(-1, ComputeExifSize(BlockSource{}, HeaderOf(*doc)));
    std::vector<uint8_t> large(200, 0);
    CStreamObj roomy(large.data(), int32_t(large.size()));
    EXPECT_EQ(0, CExifWriter(&roomy, BlockSource{}).WriteTiff(HeaderOf(*doc)));
}

TEST(WriteBlock, JpegThumbnailIsLastAndItsLengthTheBytesWritten)
{
    auto doc = TiffDoc({{Short(274, 1)}, {Short(259, 6), Long(513, 9999), Long(514, 3)}});
    std::vector<uint8_t> thumb = {0xFF, 0xD8, 1, 2, 3, 0xFF, 0xD9};
    doc->m_thumbTag->SetData(thumb.data(), int32_t(thumb.size()));
    std::vector<uint8_t> ifd1 = Ifd({{259, 3, 1, 6}, {513, 4, 1, 68}, {514, 4, 1, 7}}, 0);
    EXPECT_EQ(Concat({Block({{274, 3, 1, 1}}, 26), ifd1, thumb}), Write(*doc));
}

// A stream of any length that reads zeros and keeps nothing it is given,
// counting the bytes.
class EndlessStream : public CStreamIO {
public:
    uint32_t Read(void *buffer, uint32_t size) override
    {
        std::memset(buffer, 0, size);
        m_pos += size;
        return size;
    }
    uint32_t Write(const void *, uint32_t size) override
    {
        m_pos += size;
        m_written += size;
        return size;
    }
    int32_t Seek(int, int32_t offset) override
    {
        m_pos = offset;
        return 0;
    }
    int32_t Tell() override { return int32_t(m_pos); }
    int IsEof() override { return 0; }

    int64_t m_pos = 0;
    int64_t m_written = 0;
};

TEST(WriteBlock, ImagePassing2GiBIsRefusedBeforeCopying)
{
    auto doc = TiffDoc({{Numbers(273, TIFF_LONG, {0, 0}), Numbers(279, TIFF_LONG, {0x40000000, 0x40000000})}});
    ASSERT_EQ(1, PrepareStrips(HeaderOf(*doc)));
    EndlessStream file;
    EndlessStream out;
    BlockSource source;
    source.m_stream = &file;
    source.m_size = 0x40000000;
    source.m_strictImages = 1;
    EXPECT_EQ(0, CExifWriter(&out, source).WriteTiff(HeaderOf(*doc)));
    EXPECT_LT(out.m_written, 1000);
}

}  // namespace
