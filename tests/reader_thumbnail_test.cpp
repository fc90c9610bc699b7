#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "reader/reader.h"
#include "support/byte_builder.h"
#include "support/reader_file.h"
#include "support/tiff_layout.h"

namespace {

struct Kind {
    const char *name;
    bool jpeg;
    bool bigEndian;
    bool shortType;
};

// IFD 0 with Make, IFD 1 locating a thumbnail placed behind the IFDs, with
// 513 and 514 as LONG or SHORT.
struct ThumbFile {
    explicit ThumbFile(const Kind &kind) : thumb(ThumbnailJpeg(300)), layout(kind.bigEndian)
    {
        LayoutEntry offset = OffsetOf(513, layout.AddBlob(thumb));
        LayoutEntry length = Long(514, uint32_t(thumb.size()));
        if (kind.shortType) offset.type = length.type = 3;
        layout.AddIfd({Ascii(271, "Make")});
        layout.AddIfd({Shorts(259, {6}), offset, length});
    }

    std::vector<uint8_t> Tiff() const { return layout.Build(); }
    std::vector<uint8_t> File(const Kind &kind) const { return kind.jpeg ? JpegFile({ExifApp1(Tiff())}) : Tiff(); }

    std::vector<uint8_t> thumb;
    TiffLayout layout;
};

class ThumbnailKinds : public ::testing::TestWithParam<Kind> {};

TEST_P(ThumbnailKinds, ExistenceAndDataAgree)
{
    ThumbFile source(GetParam());
    ReaderFile file(source.File(GetParam()), GetParam().jpeg ? "t.jpg" : "t.tif");
    ASSERT_NE(nullptr, file.get());
    EXPECT_EQ(1, zRExifIsThumbnailExist(file.get()));
    ExifBuffer out = {};
    ASSERT_EQ(0, zRExifGetThumbnailData(file.get(), &out));
    EXPECT_EQ(source.thumb, ValueBytes(out.data, out.size));
}

// A pointer handed out stays good: a later call gives the same buffer,
// whether or not a tag lookup came between.
TEST_P(ThumbnailKinds, RepeatedCallsGiveTheSameBuffer)
{
    ThumbFile source(GetParam());
    ReaderFile file(source.File(GetParam()), GetParam().jpeg ? "t.jpg" : "t.tif");
    ExifBuffer first = {}, second = {}, third = {};
    ASSERT_EQ(0, zRExifGetThumbnailData(file.get(), &first));
    ASSERT_EQ(0, zRExifGetThumbnailData(file.get(), &second));
    ExifTagValue make;
    ASSERT_EQ(0, zRExifGetTag(file.get(), 271, &make));
    ASSERT_EQ(0, zRExifGetThumbnailData(file.get(), &third));
    EXPECT_EQ(first.data, second.data);
    EXPECT_EQ(first.data, third.data);
    EXPECT_EQ(source.thumb, ValueBytes(third.data, third.size));
}

INSTANTIATE_TEST_SUITE_P(Reader, ThumbnailKinds,
                         ::testing::Values(Kind{"JpegLittleLong", true, false, false},
                                           Kind{"JpegBigLong", true, true, false},
                                           Kind{"JpegBigShort", true, true, true},
                                           Kind{"JpegLittleShort", true, false, true},
                                           Kind{"TiffLittleLong", false, false, false},
                                           Kind{"TiffBigShort", false, true, true}),
                         [](const auto &param) { return std::string(param.param.name); });

// The length field of IFD 1's entry 514 and the offset field of 513.
struct Patched {
    const char *name;
    uint32_t offsetDelta;
    uint32_t length;
    int expected;
};

class ThumbnailFields : public ::testing::TestWithParam<Patched> {};

TEST_P(ThumbnailFields, DeliverOnlyWhatTheFileHolds)
{
    Kind kind{"", true, false, false};
    ThumbFile source(kind);
    ByteBuilder tiff;
    tiff.m_bytes = source.Tiff();
    size_t entries = source.layout.IfdOffset(1) + 2;
    tiff.PatchU32(entries + 12 + 8, source.layout.BlobOffset(0) + GetParam().offsetDelta);
    tiff.PatchU32(entries + 24 + 8, GetParam().length);
    ReaderFile file(JpegFile({ExifApp1(tiff.m_bytes)}));
    ExifBuffer out = {reinterpret_cast<unsigned char *>(1), 1};
    EXPECT_EQ(GetParam().expected, zRExifGetThumbnailData(file.get(), &out));
    EXPECT_EQ(GetParam().expected == 0 ? 1 : 0, file.get()->m_thumbLoaded);
    EXPECT_EQ(1, zRExifIsThumbnailExist(file.get()));
    if (GetParam().expected == 0) {
        EXPECT_EQ(nullptr, out.data);
        EXPECT_EQ(0u, out.size);
    }
}

INSTANTIATE_TEST_SUITE_P(Reader, ThumbnailFields,
                         ::testing::Values(Patched{"EmptyLength", 0, 0, 0}, Patched{"LengthPastTheFile", 0, 100000, -1},
                                           Patched{"LengthTopBit", 0, 0x80000000, -1},
                                           Patched{"LengthAllOnes", 0, 0xFFFFFFFF, -1},
                                           Patched{"OffsetTopBit", 0x80000000, 10, -1},
                                           Patched{"OffsetPastTheFile", 0x10000000, 10, -1}),
                         [](const auto &param) { return std::string(param.param.name); });

TEST(JpegThumbnail, BytesBehindTheExifSegmentAreDelivered)
{
    std::vector<uint8_t> thumb = ThumbnailJpeg(64);
    TiffLayout layout;
    layout.AddIfd({Ascii(271, "Make")});
    layout.AddIfd({Long(513, 0), Long(514, uint32_t(thumb.size()))});
    ByteBuilder tiff;
    tiff.m_bytes = layout.Build();
    std::vector<uint8_t> app1 = ExifApp1(tiff.m_bytes);
    uint32_t behind = uint32_t(app1.size() - 10 + 4);
    tiff.PatchU32(layout.IfdOffset(1) + 2 + 8, behind);
    ReaderFile file(JpegFile({ExifApp1(tiff.m_bytes), JpegSegment(0xE5, thumb)}));
    ExifBuffer out = {};
    ASSERT_EQ(0, zRExifGetThumbnailData(file.get(), &out));
    EXPECT_EQ(thumb, ValueBytes(out.data, out.size));
}

// IFD 1 is searched while no tag was found; afterwards tag 513 anywhere in
// the chain answers, and only IFD 1 delivers.
TEST(JpegThumbnail, Tag513InIfd0CountsOnlyAfterALookup)
{
    TiffLayout layout;
    layout.AddIfd({Ascii(271, "Make"), Long(513, 8), Long(514, 10)});
    ReaderFile file(JpegFile({ExifApp1(layout.Build())}));
    ExifBuffer out = {};
    EXPECT_EQ(0, zRExifIsThumbnailExist(file.get()));
    EXPECT_EQ(-1, zRExifGetThumbnailData(file.get(), &out));
    ExifTagValue make;
    ASSERT_EQ(0, zRExifGetTag(file.get(), 271, &make));
    EXPECT_EQ(1, zRExifIsThumbnailExist(file.get()));
    EXPECT_EQ(-1, zRExifGetThumbnailData(file.get(), &out));
}

TEST(JpegThumbnail, Tag513WithoutLengthExistsButGivesNothing)
{
    TiffLayout layout;
    layout.AddIfd({Ascii(271, "Make")});
    layout.AddIfd({Long(513, 8)});
    ReaderFile file(JpegFile({ExifApp1(layout.Build())}));
    ExifBuffer out = {};
    EXPECT_EQ(1, zRExifIsThumbnailExist(file.get()));
    EXPECT_EQ(-1, zRExifGetThumbnailData(file.get(), &out));
}

TEST(JpegThumbnail, NoExifNoThumbnail)
{
    ReaderFile file(JpegFile({JpegSegment(0xE0, {'J', 'F', 'I', 'F', 0})}));
    ExifBuffer out = {};
    EXPECT_EQ(0, zRExifIsThumbnailExist(file.get()));
    EXPECT_EQ(-1, zRExifGetThumbnailData(file.get(), &out));
}

// IFD 1 may stand at the segment's payload size; nothing is there to read.
TEST(JpegThumbnail, AnIfd1AtTheBoundFindsNothing)
{
    TiffLayout layout;
    layout.AddIfd({Ascii(271, "Make")});
    ByteBuilder tiff;
    tiff.m_bytes = layout.Build();
    tiff.PatchU32(8 + 2 + 12, uint32_t(tiff.Size() + 6));
    ReaderFile file(JpegFile({ExifApp1(tiff.m_bytes)}));
    ExifBuffer out = {};
    EXPECT_EQ(0, zRExifIsThumbnailExist(file.get()));
    EXPECT_EQ(-1, zRExifGetThumbnailData(file.get(), &out));
}

// Entries that the end of the block cuts off count as absent.
TEST(JpegThumbnail, ATruncatedIfd1TableKeepsWhatCame)
{
    std::vector<uint8_t> thumb = ThumbnailJpeg(40);
    TiffLayout layout;
    layout.AddIfd({Ascii(271, "Make")});
    layout.AddIfd({Long(513, 8), Long(514, uint32_t(thumb.size()))});
    std::vector<uint8_t> tiff = layout.Build();
    tiff.resize(layout.IfdOffset(1) + 2 + 12 + 6);
    ReaderFile file(JpegFile({ExifApp1(tiff)}));
    ExifBuffer out = {};
    EXPECT_EQ(-1, zRExifGetThumbnailData(file.get(), &out));
    EXPECT_EQ(1, zRExifIsThumbnailExist(file.get()));
}

TEST(TiffThumbnail, AnIfd0OffsetWithTheTopBitSetGivesNothing)
{
    ThumbFile source(Kind{"", false, false, false});
    ByteBuilder tiff;
    tiff.m_bytes = source.Tiff();
    tiff.PatchU32(4, 0x80000008);
    ReaderFile file(tiff.m_bytes, "t.tif");
    ExifBuffer out = {};
    EXPECT_EQ(0, zRExifIsThumbnailExist(file.get()));
    EXPECT_EQ(-1, zRExifGetThumbnailData(file.get(), &out));
}

}  // namespace
