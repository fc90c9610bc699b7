#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "reader/reader.h"
#include "support/byte_builder.h"
#include "support/reader_file.h"
#include "support/tiff_layout.h"

namespace {

struct Container {
    const char *name;
    bool jpeg;
    bool bigEndian;
};

// The same TIFF data as a JPEG's Exif block or as a TIFF file.
std::vector<uint8_t> Wrap(const Container &c, const std::vector<uint8_t> &tiff)
{
    return c.jpeg ? JpegFile({JpegSegment(0xE0, {'J', 'F', 'I', 'F', 0}), ExifApp1(tiff)}) : tiff;
}

std::string Text(const ExifTagValue &value)
{
    return std::string(static_cast<const char *>(value.data), value.count);
}

std::vector<uint32_t> Numbers(const ExifTagValue &value)
{
    std::vector<uint32_t> out(value.count * (value.type == 5 ? 2 : 1));
    std::memcpy(out.data(), value.data, out.size() * 4);
    return out;
}

uint16_t FirstShort(const ExifTagValue &value)
{
    uint16_t v;
    std::memcpy(&v, value.data, 2);
    return v;
}

class TagLookup : public ::testing::TestWithParam<Container> {
protected:
    void SetUp() override
    {
        TiffLayout tiff(GetParam().bigEndian);
        int exif = 3;
        tiff.AddIfd({Ascii(270, "First description"), Ascii(271, "Canon"), Ascii(272, "EOS 40D"), Shorts(274, {6}),
                     Ascii(306, "2008:05:30 15:56:01"), PointerTo(34665, exif)});
        tiff.AddIfd({Ascii(270, "Second description"), Raw(513, 4, 1, {})});
        tiff.AddIfd({}, false);
        tiff.AddIfd({Rational(33434, 1, 250), Raw(36864, 7, 4, {'0', '2', '2', '1'}), Ascii(36867, "2008:05:30"),
                     Shorts(37383, {5}), Raw(37500, 2, 0, {}), Raw(37510, 2, 3, {'a', 'b', 0})},
                    false);
        file = std::make_unique<ReaderFile>(Wrap(GetParam(), tiff.Build()));
        ASSERT_NE(nullptr, file->get());
    }

    CExifReader *reader() const { return file->get(); }

    std::unique_ptr<ReaderFile> file;
    ExifTagValue value = {};
};

TEST_P(TagLookup, CachedTagsComeFromTheChainAndTheLastIfdWins)
{
    ASSERT_EQ(0, zRExifGetTag(reader(), 271, &value));
    EXPECT_EQ(2u, value.type);
    EXPECT_EQ(std::string("Canon", 6), Text(value));
    ASSERT_EQ(0, zRExifGetTag(reader(), 306, &value));
    EXPECT_EQ(std::string("2008:05:30 15:56:01", 20), Text(value));
    ASSERT_EQ(0, zRExifGetTag(reader(), 270, &value));
    EXPECT_EQ(std::string("Second description", 19), Text(value));
    ASSERT_EQ(0, zRExifGetTag(reader(), 274, &value));
    EXPECT_EQ(3u, value.type);
    EXPECT_EQ(6, FirstShort(value));
    EXPECT_EQ(1, zRExifIsExifExist(reader()));
}

TEST_P(TagLookup, ExifIfdTagsAreScannedForInTheirForm)
{
    ASSERT_EQ(0, zRExifGetTag(reader(), 33434, &value));
    EXPECT_EQ(5u, value.type);
    EXPECT_EQ((std::vector<uint32_t>{1, 250}), Numbers(value));
    ASSERT_EQ(0, zRExifGetTag(reader(), 36864, &value));
    EXPECT_EQ("0221", Text(value));
    ASSERT_EQ(0, zRExifGetTag(reader(), 37383, &value));
    EXPECT_EQ(5, FirstShort(value));
    ASSERT_EQ(0, zRExifGetTag(reader(), 37510, &value));
    EXPECT_EQ(std::string("ab", 3), Text(value));
    ASSERT_EQ(0, zRExifGetTag(reader(), 37500, &value));
    EXPECT_EQ(0u, value.count);
    EXPECT_EQ(nullptr, value.data);
}

TEST_P(TagLookup, TagsNeitherCachedNorOfTheExifIfdAreNotOffered)
{
    for (uint32_t tag : {256u, 513u, 514u, 34665u, 34853u, 36880u}) {
        EXPECT_EQ(-1, zRExifGetTag(reader(), tag, &value)) << tag;
    }
    EXPECT_EQ(1, reader()->m_hasThumb);
}

TEST_P(TagLookup, ACachedTagKeepsItsPointer)
{
    ASSERT_EQ(0, zRExifGetTag(reader(), 272, &value));
    void *first = value.data;
    ASSERT_EQ(0, zRExifGetTag(reader(), 36867, &value));
    ASSERT_EQ(0, zRExifGetTag(reader(), 272, &value));
    EXPECT_EQ(first, value.data);
}

// Each wanted tag keeps a value of its own: what was handed out stays valid
// and unchanged however many other tags are asked for, or the same again.
TEST_P(TagLookup, EveryValueHandedOutStaysValid)
{
    ASSERT_EQ(0, zRExifGetTag(reader(), 36867, &value));
    const void *date = value.data;
    EXPECT_EQ(-1, zRExifGetTag(reader(), 36868, &value));
    ASSERT_EQ(0, zRExifGetTag(reader(), 33434, &value));
    ASSERT_EQ(0, zRExifGetTag(reader(), 36867, &value));
    EXPECT_EQ(date, value.data);
    EXPECT_EQ(std::string("2008:05:30", 11), Text(value));
}

INSTANTIATE_TEST_SUITE_P(Reader, TagLookup,
                         ::testing::Values(Container{"JpegLittle", true, false}, Container{"JpegBig", true, true},
                                           Container{"TiffLittle", false, false}, Container{"TiffBig", false, true}),
                         [](const auto &param) { return std::string(param.param.name); });

class ChainCases : public ::testing::TestWithParam<Container> {
protected:
    std::unique_ptr<ReaderFile> Open(const TiffLayout &tiff)
    {
        auto file = std::make_unique<ReaderFile>(Wrap(GetParam(), tiff.Build()));
        EXPECT_NE(nullptr, file->get());
        return file;
    }
    ExifTagValue value = {};
};

// Orientation is the one Exif IFD tag with a slot: once found it is cached.
TEST_P(ChainCases, OrientationFromTheExifIfdIsCached)
{
    TiffLayout tiff(GetParam().bigEndian);
    tiff.AddIfd({Ascii(271, "Make"), PointerTo(34665, 1)});
    tiff.AddIfd({Shorts(274, {8}), Ascii(36867, "date")}, false);
    auto file = Open(tiff);
    ASSERT_EQ(0, zRExifGetTag(file->get(), 274, &value));
    EXPECT_EQ(8, FirstShort(value));
    EXPECT_EQ(1, file->get()->m_hasOrientation);
    EXPECT_EQ(nullptr, file->get()->m_wantedTags);
}

TEST_P(ChainCases, OrientationNowhereIsMissing)
{
    TiffLayout tiff(GetParam().bigEndian);
    tiff.AddIfd({Ascii(271, "Make"), PointerTo(34665, 1)});
    tiff.AddIfd({Ascii(36867, "date")}, false);
    auto file = Open(tiff);
    EXPECT_EQ(-1, zRExifGetTag(file->get(), 274, &value));
}

// A SHORT and a short ASCII value that stand in the entry come out the same
// from either byte order.
TEST_P(ChainCases, InlineValuesKeepTheirMeaningInEitherByteOrder)
{
    TiffLayout tiff(GetParam().bigEndian);
    tiff.AddIfd({Ascii(271, "abc"), Shorts(274, {3, 9}), PointerTo(34665, 1)});
    tiff.AddIfd({Raw(37121, 7, 4, {1, 2, 3, 0}), Shorts(41495, {2})}, false);
    auto file = Open(tiff);
    ASSERT_EQ(0, zRExifGetTag(file->get(), 271, &value));
    EXPECT_EQ(std::string("abc", 4), Text(value));
    ASSERT_EQ(0, zRExifGetTag(file->get(), 274, &value));
    EXPECT_EQ(2u, value.count);
    EXPECT_EQ((std::vector<uint8_t>{3, 0, 9, 0}), ValueBytes(value.data, 4));
    ASSERT_EQ(0, zRExifGetTag(file->get(), 37121, &value));
    EXPECT_EQ((std::vector<uint8_t>{1, 2, 3, 0}), ValueBytes(value.data, 4));
    ASSERT_EQ(0, zRExifGetTag(file->get(), 41495, &value));
    EXPECT_EQ(2, FirstShort(value));
}

TEST_P(ChainCases, AnExifPointerWithoutValueIsNoExif)
{
    TiffLayout tiff(GetParam().bigEndian);
    LayoutEntry pointer = PointerTo(34665, 1);
    pointer.count = 0;
    tiff.AddIfd({Ascii(271, "Make"), pointer});
    tiff.AddIfd({Ascii(36867, "date")}, false);
    auto file = Open(tiff);
    EXPECT_EQ(-1, file->get()->m_exifIfdOffset);
    EXPECT_EQ(GetParam().jpeg ? 1 : 0, zRExifIsExifExist(file->get()));
    EXPECT_EQ(-1, zRExifGetTag(file->get(), 36867, &value));
}

TEST_P(ChainCases, AGpsPointerAloneIsExifWithoutAnExifIfd)
{
    TiffLayout tiff(GetParam().bigEndian);
    tiff.AddIfd({PointerTo(34853, 1)});
    tiff.AddIfd({Raw(1, 2, 2, {'N', 0})}, false);
    auto file = Open(tiff);
    EXPECT_EQ(-1, zRExifGetTag(file->get(), 271, &value));
    EXPECT_EQ(1, zRExifIsExifExist(file->get()));
    EXPECT_EQ(int32_t(tiff.IfdOffset(1)), file->get()->m_gpsIfdOffset);
    EXPECT_EQ(-1, zRExifGetTag(file->get(), 33434, &value));
}

// An entry of type 0 ends the chain; what came before it stays cached.
TEST_P(ChainCases, TypeZeroEndsTheChain)
{
    TiffLayout tiff(GetParam().bigEndian);
    tiff.AddIfd({Ascii(271, "Make"), Raw(300, 0, 1, {}), Ascii(272, "Model")});
    tiff.AddIfd({Ascii(306, "date")});
    auto file = Open(tiff);
    EXPECT_EQ(0, zRExifGetTag(file->get(), 271, &value));
    EXPECT_EQ(-1, zRExifGetTag(file->get(), 272, &value));
    EXPECT_EQ(-1, zRExifGetTag(file->get(), 306, &value));
}

TEST_P(ChainCases, AnEntryCountWithItsTopBitSetIsEmpty)
{
    TiffLayout tiff(GetParam().bigEndian);
    tiff.AddIfd({Ascii(271, "Make")});
    std::vector<uint8_t> bytes = tiff.Build();
    bytes[8] = GetParam().bigEndian ? 0x80 : 0x01;
    bytes[9] = GetParam().bigEndian ? 0x01 : 0x80;
    ReaderFile file(Wrap(GetParam(), bytes));
    EXPECT_EQ(-1, zRExifGetTag(file.get(), 271, &value));
}

// A wanted scan of the Exif IFD never refills a cached tag's slot, whether
// the value stands in the entry or outside it: what was handed out stays.
TEST_P(ChainCases, AWantedScanKeepsCachedValues)
{
    TiffLayout tiff(GetParam().bigEndian);
    tiff.AddIfd({Ascii(271, "Canon"), Shorts(274, {1}), PointerTo(34665, 1)});
    tiff.AddIfd({Ascii(271, "Other make"), Shorts(274, {3}), Ascii(36867, "date")}, false);
    auto file = Open(tiff);
    ASSERT_EQ(0, zRExifGetTag(file->get(), 271, &value));
    const void *make = value.data;
    ASSERT_EQ(0, zRExifGetTag(file->get(), 274, &value));
    const void *orientation = value.data;
    ASSERT_EQ(0, zRExifGetTag(file->get(), 36867, &value));
    ASSERT_EQ(0, zRExifGetTag(file->get(), 271, &value));
    EXPECT_EQ(make, value.data);
    EXPECT_EQ(std::string("Canon", 6), Text(value));
    ASSERT_EQ(0, zRExifGetTag(file->get(), 274, &value));
    EXPECT_EQ(orientation, value.data);
    EXPECT_EQ(1, FirstShort(value));
}

// Of a type outside 1 to 12 only the four bytes of the field can be had.
TEST_P(ChainCases, UnknownTypesGiveNoMoreThanTheirField)
{
    TiffLayout tiff(GetParam().bigEndian);
    tiff.AddIfd({Raw(271, 13, 3, {'a', 'b', 'c', 0}), Raw(272, 13, 10, {1, 2, 3, 4})});
    auto file = Open(tiff);
    ASSERT_EQ(0, zRExifGetTag(file->get(), 271, &value));
    EXPECT_EQ(13u, value.type);
    EXPECT_EQ(std::string("abc"), Text(value));
    EXPECT_EQ(-1, zRExifGetTag(file->get(), 272, &value));
}

INSTANTIATE_TEST_SUITE_P(Reader, ChainCases,
                         ::testing::Values(Container{"JpegLittle", true, false}, Container{"JpegBig", true, true},
                                           Container{"TiffLittle", false, false}, Container{"TiffBig", false, true}),
                         [](const auto &param) { return std::string(param.param.name); });

TEST(JpegTagLookup, AChainWithoutKeptTagsLoadsTheBlockAgain)
{
    TiffLayout tiff;
    tiff.AddIfd({Shorts(256, {640})});
    ReaderFile file(JpegFile({ExifApp1(tiff.Build())}));
    ExifTagValue value;
    EXPECT_EQ(-1, zRExifGetTag(file.get(), 271, &value));
    EXPECT_EQ(0, file.get()->m_tagFound);
    EXPECT_EQ(-1, zRExifGetTag(file.get(), 33434, &value));
}

}  // namespace
