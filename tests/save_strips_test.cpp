#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "load/tiff_types.h"
#include "save/block_size.h"
#include "save/exif_writer.h"
#include "save/strip_list.h"
#include "streams/memory_stream.h"
#include "support/byte_builder.h"
#include "support/tree_builder.h"
#include "tree/walk.h"

namespace {

// A source file whose byte at position p is p mod 251, so that every strip
// has bytes of its own.
struct Source {
    std::vector<uint8_t> bytes;
    CStreamObj stream;
    explicit Source(size_t size) : bytes(Pattern(size)), stream(bytes.data(), int32_t(size)) {}

    static std::vector<uint8_t> Pattern(size_t size)
    {
        std::vector<uint8_t> bytes(size);
        for (size_t i = 0; i < size; i++) bytes[i] = uint8_t(i % 251);
        return bytes;
    }
    std::vector<uint8_t> At(size_t offset, size_t size) const
    {
        return std::vector<uint8_t>(bytes.begin() + long(offset), bytes.begin() + long(offset + size));
    }
    BlockSource Block(bool strict = true)
    {
        BlockSource source;
        source.m_stream = &stream;
        source.m_size = int64_t(bytes.size());
        source.m_strictImages = strict;
        return source;
    }
};

CNode *HeaderOf(CExifDoc &doc)
{
    return FindInChain(doc.m_root, NODE_TIFF_HEADER);
}

// Prepares the strips and writes the block; empty on failure.
std::vector<uint8_t> Write(CExifDoc &doc, const BlockSource &source)
{
    if (!PrepareStrips(HeaderOf(doc))) return {};
    int64_t size = ComputeExifSize(source, HeaderOf(doc));
    if (size < 1) return {};
    std::vector<uint8_t> bytes(size_t(size), 0xEE);
    CStreamObj out(bytes.data(), int32_t(size));
    CExifWriter writer(&out, source);
    if (!writer.WriteTiff(HeaderOf(doc)) || writer.m_end != size) return {};
    return bytes;
}

class StripType : public ::testing::TestWithParam<uint32_t> {};

// The arrays stand among the values in entry order, the strips behind them
// in index order, whatever their order in the source; SHORT tags come out
// as LONGs.
TEST_P(StripType, SeveralStripsLayOutTheirArraysThenTheirBytes)
{
    Source source(200);
    auto doc = TreeBuilder(FORMAT_TIFF)
                   .TiffBlock({{Numbers(273, GetParam(), {150, 100, 50}), Numbers(279, GetParam(), {10, 20, 30})}})
                   .Take();
    std::vector<uint8_t> out = Write(*doc, source.Block());
    ASSERT_FALSE(out.empty());
    ByteBuilder expected;
    expected.TiffHeader(8).U16(2).Entry(273, 4, 3, 38).Entry(279, 4, 3, 50).U32(0);
    expected.U32(62).U32(72).U32(92).U32(10).U32(20).U32(30);
    expected.Bytes(source.At(150, 10)).Bytes(source.At(100, 20)).Bytes(source.At(50, 30));
    EXPECT_EQ(expected.m_bytes, out);
}

TEST_P(StripType, OneStripStandsBehindTheLink)
{
    Source source(2000);
    auto doc = TreeBuilder(FORMAT_TIFF)
                   .TiffBlock({{Numbers(273, GetParam(), {900}), Numbers(279, GetParam(), {1000})}})
                   .Take();
    std::vector<uint8_t> out = Write(*doc, source.Block());
    ASSERT_FALSE(out.empty());
    ByteBuilder expected;
    expected.TiffHeader(8).U16(2).Entry(273, 4, 1, 38).Entry(279, 4, 1, 1000).U32(0).Bytes(source.At(900, 1000));
    EXPECT_EQ(expected.m_bytes, out);
}

INSTANTIATE_TEST_SUITE_P(ShortAndLong, StripType, ::testing::Values(uint32_t(TIFF_SHORT), uint32_t(TIFF_LONG)));

TEST(Tiles, OffsetsAndCountsArePatchedLikeStrips)
{
    Source source(100);
    auto doc = TreeBuilder(FORMAT_TIFF)
                   .TiffBlock({{Long(322, 16), Numbers(324, TIFF_LONG, {40, 10}), Numbers(325, TIFF_LONG, {5, 6})}})
                   .Take();
    std::vector<uint8_t> out = Write(*doc, source.Block());
    ASSERT_FALSE(out.empty());
    ByteBuilder expected;
    expected.TiffHeader(8).U16(3).Entry(322, 4, 1, 16).Entry(324, 4, 2, 50).Entry(325, 4, 2, 58).U32(0);
    expected.U32(66).U32(71).U32(5).U32(6).Bytes(source.At(40, 5)).Bytes(source.At(10, 6));
    EXPECT_EQ(expected.m_bytes, out);
}

TEST(Tiles, StripsWinWhenAnIfdHasBoth)
{
    Source source(100);
    auto doc = TreeBuilder(FORMAT_TIFF)
                   .TiffBlock({{Long(273, 10), Long(279, 4), Long(324, 50), Long(325, 8)}})
                   .Take();
    std::vector<uint8_t> out = Write(*doc, source.Block());
    ASSERT_FALSE(out.empty());
    ByteBuilder expected;
    expected.TiffHeader(8).U16(2).Entry(273, 4, 1, 38).Entry(279, 4, 1, 4).U32(0).Bytes(source.At(10, 4));
    EXPECT_EQ(expected.m_bytes, out);
}

// Each IFD has its own image data or none; an IFD without strip tags doesn't
// borrow those of the next.
TEST(ImageData, IfdWithoutStripsWritesNone)
{
    Source source(100);
    auto doc = TreeBuilder(FORMAT_TIFF).TiffBlock({{Short(274, 1)}, {Long(273, 60), Long(279, 7)}}).Take();
    std::vector<uint8_t> out = Write(*doc, source.Block());
    ASSERT_FALSE(out.empty());
    ByteBuilder expected;
    expected.TiffHeader(8).U16(1).Entry(274, 3, 1, 1).U32(26);
    expected.U16(2).Entry(273, 4, 1, 56).Entry(279, 4, 1, 7).U32(0).Bytes(source.At(60, 7));
    EXPECT_EQ(expected.m_bytes, out);
    EXPECT_EQ(nullptr, FindInChain(doc->FindIfd(0)->m_child, NODE_STRIP_LIST));
}

TEST(ImageData, StripTagsThatDisagreeAreRefused)
{
    auto counts = TreeBuilder(FORMAT_TIFF)
                      .TiffBlock({{Numbers(273, TIFF_LONG, {1, 2, 3}), Numbers(279, TIFF_LONG, {1, 2})}})
                      .Take();
    EXPECT_EQ(0, PrepareStrips(HeaderOf(*counts)));
    auto type = TreeBuilder(FORMAT_TIFF).TiffBlock({{Ascii(273, "abc"), Ascii(279, "def")}}).Take();
    EXPECT_EQ(0, PrepareStrips(HeaderOf(*type)));
    auto huge = TreeBuilder(FORMAT_TIFF).TiffBlock({{Long(273, 0x80000000u), Long(279, 4)}}).Take();
    EXPECT_EQ(0, PrepareStrips(HeaderOf(*huge)));
}

// A TIFF file whose strips the source doesn't hold can't be written; a
// thumbnail stored as strips in an Exif block is left out instead.
TEST(ImageData, StripsOutsideTheSource)
{
    Source source(100);
    auto strict = TreeBuilder(FORMAT_TIFF).TiffBlock({{Short(274, 1), Long(273, 90), Long(279, 20)}}).Take();
    EXPECT_TRUE(Write(*strict, source.Block(true)).empty());

    auto lenient = TreeBuilder(FORMAT_TIFF).TiffBlock({{Short(274, 1), Long(273, 90), Long(279, 20)}}).Take();
    std::vector<uint8_t> out = Write(*lenient, source.Block(false));
    ByteBuilder expected;
    expected.TiffHeader(8).U16(1).Entry(274, 3, 1, 1).U32(0);
    EXPECT_EQ(expected.m_bytes, out);
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

TEST(ImageData, ImagePassing2GiBIsRefusedBeforeCopying)
{
    auto doc = TreeBuilder(FORMAT_TIFF)
                   .TiffBlock({{Numbers(273, TIFF_LONG, {0, 0}), Numbers(279, TIFF_LONG, {0x40000000, 0x40000000})}})
                   .Take();
    ASSERT_EQ(1, PrepareStrips(HeaderOf(*doc)));
    EndlessStream file;
    EndlessStream out;
    BlockSource source;
    source.m_stream = &file;
    source.m_size = 0x40000000;
    source.m_strictImages = 1;
    CExifWriter writer(&out, source);
    EXPECT_EQ(0, writer.WriteTiff(HeaderOf(*doc)));
    EXPECT_LT(out.m_written, 1000);
}

}  // namespace
