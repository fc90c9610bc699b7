#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "reader/reader.h"
#include "reader/tiff_chain.h"
#include "support/byte_builder.h"
#include "support/reader_file.h"
#include "support/tiff_layout.h"

namespace {

struct Container {
    const char *name;
    bool jpeg;
    bool bigEndian;
};

// Bytes of a TIFF block whose fields the cases overwrite.
class Block {
public:
    explicit Block(const TiffLayout &layout) : m_tiff(layout.m_bigEndian) { m_tiff.m_bytes = layout.Build(); }

    // The value field of entry i of the IFD at offset ifd, and that IFD's link.
    size_t Field(uint32_t ifd, size_t i) const { return ifd + 2 + 12 * i + 8; }
    size_t Link(uint32_t ifd, size_t entries) const { return ifd + 2 + 12 * entries; }
    void Set(size_t pos, uint32_t v) { m_tiff.PatchU32(pos, v); }
    void Count(size_t pos, uint32_t v) { Set(pos - 4, v); }

    std::vector<uint8_t> File(const Container &c) const
    {
        return c.jpeg ? JpegFile({ExifApp1(m_tiff.m_bytes)}) : m_tiff.m_bytes;
    }

    ByteBuilder m_tiff;
};

class Bounds : public ::testing::TestWithParam<Container> {
protected:
    // IFD 0 with Make and the Exif pointer, IFD 1 with a description, and an
    // Exif IFD with a rational and a date.
    void SetUp() override
    {
        TiffLayout layout(GetParam().bigEndian);
        layout.AddIfd({Ascii(271, "Maker name"), PointerTo(34665, 2)});
        layout.AddIfd({Ascii(270, "Description")});
        layout.AddIfd({Rational(33434, 1, 60), Ascii(36867, "2020:01:01")}, false);
        ifd0 = layout.IfdOffset(0);
        ifd1 = layout.IfdOffset(1);
        exif = layout.IfdOffset(2);
        block = std::make_unique<Block>(layout);
    }

    int Lookup(uint32_t tag)
    {
        ReaderFile file(block->File(GetParam()));
        EXPECT_NE(nullptr, file.get());
        ExifTagValue value;
        return zRExifGetTag(file.get(), tag, &value);
    }

    uint32_t ifd0 = 0, ifd1 = 0, exif = 0;
    std::unique_ptr<Block> block;
};

TEST_P(Bounds, TheUntouchedFileGivesEveryTag)
{
    for (uint32_t tag : {271u, 270u, 33434u, 36867u}) EXPECT_EQ(0, Lookup(tag)) << tag;
}

TEST_P(Bounds, AChainThatLoopsEnds)
{
    block->Set(block->Link(ifd1, 1), ifd0);
    EXPECT_EQ(0, Lookup(270));
    block->Set(block->Link(ifd0, 2), ifd0);
    EXPECT_EQ(0, Lookup(271));
    EXPECT_EQ(-1, Lookup(270));
}

// Offsets with the top bit set are refused before any seek.
TEST_P(Bounds, OffsetsWithTheTopBitSetAreRefused)
{
    block->Set(block->Field(ifd0, 0), 0x80000020);
    block->Set(block->Link(ifd0, 2), 0x80000000 | ifd1);
    EXPECT_EQ(-1, Lookup(271));
    EXPECT_EQ(-1, Lookup(270));
    EXPECT_EQ(0, Lookup(36867));
    block->Set(block->Field(ifd0, 1), 0xFFFFFFF0);
    EXPECT_EQ(-1, Lookup(36867));
    block->Set(4, 0x80000008);
    EXPECT_EQ(-1, Lookup(271));
}

// count x size passes 32 bits or the stream's size: the value is absent.
TEST_P(Bounds, ValuesLargerThanTheStreamAreAbsent)
{
    block->Count(block->Field(ifd0, 0), 0xFFFFFFFF);
    block->Count(block->Field(exif, 0), 0x20000001);
    block->Count(block->Field(exif, 1), 1000000);
    EXPECT_EQ(-1, Lookup(271));
    EXPECT_EQ(-1, Lookup(33434));
    EXPECT_EQ(-1, Lookup(36867));
    EXPECT_EQ(0, Lookup(270));
}

TEST_P(Bounds, ValuesBehindTheEndOfTheDataAreAbsent)
{
    uint32_t size = uint32_t(block->m_tiff.Size());
    block->Set(block->Field(ifd0, 0), size - 4);
    block->Set(block->Field(exif, 0), 0x7FFFFFF0);
    EXPECT_EQ(-1, Lookup(271));
    EXPECT_EQ(-1, Lookup(33434));
    EXPECT_EQ(0, Lookup(36867));
}

TEST_P(Bounds, AnIfdBehindTheEndIsEmpty)
{
    block->Set(block->Link(ifd0, 2), 0x7FFFFFF0);
    block->Set(block->Field(ifd0, 1), 0x00FFFFF0);
    EXPECT_EQ(0, Lookup(271));
    EXPECT_EQ(-1, Lookup(270));
    EXPECT_EQ(-1, Lookup(36867));
}

INSTANTIATE_TEST_SUITE_P(Reader, Bounds,
                         ::testing::Values(Container{"JpegLittle", true, false}, Container{"JpegBig", true, true},
                                           Container{"TiffLittle", false, false}, Container{"TiffBig", false, true}),
                         [](const auto &param) { return std::string(param.param.name); });

// A file that ends where IFD 0's link should stand: the link counts as 0.
TEST(TruncatedTiff, ALinkCutOffCountsAsZero)
{
    TiffLayout layout;
    layout.AddIfd({Shorts(274, {6}), Long(300, 7)});
    std::vector<uint8_t> bytes = layout.Build();
    bytes.resize(8 + 2 + 24 + 2);
    ReaderFile file(bytes, "cut.tif");
    ExifTagValue value;
    EXPECT_EQ(0, zRExifGetTag(file.get(), 274, &value));
}

TEST(TruncatedTiff, ATableCutOffIsEmpty)
{
    TiffLayout layout;
    layout.AddIfd({Shorts(274, {6}), Long(300, 7)});
    std::vector<uint8_t> bytes = layout.Build();
    bytes.resize(8 + 2 + 20);
    ReaderFile file(bytes, "cut.tif");
    EXPECT_EQ(0, file.get()->m_tagFound);
}

// In a JPEG the first offset is held against the segment's payload size; an
// offset between the block's end and that size passes and finds nothing.
class FirstOffsetInJpeg : public ::testing::TestWithParam<int> {};

TEST_P(FirstOffsetInJpeg, FindsNothingBehindTheBlock)
{
    TiffLayout layout;
    layout.AddIfd({Shorts(274, {6})});
    ByteBuilder tiff;
    tiff.m_bytes = layout.Build();
    int32_t payload = int32_t(tiff.Size()) + 6;
    tiff.PatchU32(4, uint32_t(payload + GetParam()));
    ReaderFile file(JpegFile({ExifApp1(tiff.m_bytes)}));
    ExifTagValue value;
    EXPECT_EQ(-1, zRExifGetTag(file.get(), 274, &value));
    EXPECT_EQ(0, file.get()->m_tagFound);
}

INSTANTIATE_TEST_SUITE_P(Reader, FirstOffsetInJpeg, ::testing::Values(-6, -2, 0, 1, 1000));

// Each IFD of a long chain names itself in tag 270; the last one read wins.
TEST(LongChain, TheWalkStopsAfterItsBound)
{
    TiffLayout layout;
    for (int i = 0; i < MAX_CHAIN_IFDS + 10; i++) layout.AddIfd({Shorts(270, {uint32_t(i)})});
    ReaderFile file(layout.Build(), "long.tif");
    ExifTagValue value;
    ASSERT_EQ(0, zRExifGetTag(file.get(), 270, &value));
    EXPECT_EQ((std::vector<uint8_t>{0xFF, 0x03}), ValueBytes(value.data, 2)) << "IFD 1023 is the last one read";
}

}  // namespace
