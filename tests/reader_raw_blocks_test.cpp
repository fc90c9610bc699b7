#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "reader/tif_tag_list.h"
#include "support/byte_builder.h"
#include "support/reader_file.h"
#include "support/tiff_layout.h"

namespace {

std::vector<uint8_t> SmallTiff(bool bigEndian = false)
{
    TiffLayout layout(bigEndian);
    layout.AddIfd({Ascii(271, "Make"), PointerTo(34665, 1)});
    layout.AddIfd({Rational(33434, 1, 125)}, false);
    return layout.Build();
}

TEST(ExifMarker, IsTheSegmentPayloadInANewBufferEachCall)
{
    std::vector<uint8_t> app1 = ExifApp1(SmallTiff());
    ReaderFile file(JpegFile({JpegSegment(0xE0, {'J', 'F', 'I', 'F', 0}), app1}));
    ExifBuffer first = {}, second = {};
    ASSERT_EQ(0, zRExifGetExifMarker(file.get(), &first));
    ASSERT_EQ(0, zRExifGetExifMarker(file.get(), &second));
    EXPECT_EQ(std::vector<uint8_t>(app1.begin() + 4, app1.end()), ValueBytes(first.data, first.size));
    EXPECT_NE(first.data, second.data);
    delete[] first.data;
    delete[] second.data;
}

TEST(ExifMarker, WhatATruncatedFileLacksIsZero)
{
    std::vector<uint8_t> bytes = Concat({{0xFF, 0xD8}, ExifApp1(SmallTiff())});
    size_t payload = bytes.size() - 6;
    bytes.resize(bytes.size() - 5);
    ReaderFile file(bytes);
    ExifBuffer out = {};
    ASSERT_EQ(0, zRExifGetExifMarker(file.get(), &out));
    ASSERT_EQ(payload, out.size);
    EXPECT_EQ(std::vector<uint8_t>(5, 0), ValueBytes(out.data + payload - 5, 5));
    delete[] out.data;
}

TEST(ExifMarker, OnlyAJpegWithExifHasOne)
{
    ExifBuffer out = {};
    ReaderFile tiff(SmallTiff(), "t.tif");
    EXPECT_EQ(-1, zRExifGetExifMarker(tiff.get(), &out));
    ReaderFile plain(JpegFile({JpegSegment(0xE0, {'J', 'F', 'I', 'F', 0})}));
    EXPECT_EQ(-1, zRExifGetExifMarker(plain.get(), &out));
}

class TagList : public ::testing::TestWithParam<bool> {
protected:
    // The Exif IFD holds one entry of each kind a list has to carry.
    TifTagList *Read()
    {
        TiffLayout layout(GetParam());
        layout.AddIfd({Ascii(271, "Make"), PointerTo(34665, 1)});
        layout.AddIfd({Rational(33434, 1, 125), Raw(36864, 7, 4, {'0', '2', '3', '0'}), Ascii(36867, "2020:02:02"),
                       Shorts(37383, {2}), Raw(40000, 13, 2, {9, 9}), Raw(41728, 7, 1, {3}),
                       Shorts(41495, {1, 2, 3})},
                      false);
        file = std::make_unique<ReaderFile>(layout.Build(), "t.tif");
        TifTagList *list = nullptr;
        EXPECT_EQ(0, zRExifGetTIFExifData(file->get(), &list));
        return list;
    }

    std::unique_ptr<ReaderFile> file;
};

TEST_P(TagList, CarriesEveryEntryInHostForm)
{
    TifTagList *list = Read();
    ASSERT_NE(nullptr, list);
    ASSERT_EQ(7, list->count);
    uint32_t rational[2];
    std::memcpy(rational, list->items[0]->data, 8);
    EXPECT_EQ(1u, rational[0]);
    EXPECT_EQ(125u, rational[1]);
    EXPECT_EQ(std::string("0230"), std::string(static_cast<char *>(list->items[1]->data)));
    EXPECT_EQ(std::string("2020:02:02"), std::string(static_cast<char *>(list->items[2]->data)));
    uint16_t shortValue;
    std::memcpy(&shortValue, list->items[3]->data, 2);
    EXPECT_EQ(2, shortValue);
    EXPECT_EQ(40000u, list->items[4]->tag);
    EXPECT_EQ(nullptr, list->items[4]->data);
    EXPECT_EQ((std::vector<uint8_t>{3, 0}), ValueBytes(list->items[5]->data, 2));
    EXPECT_EQ((std::vector<uint8_t>{1, 0, 2, 0, 3, 0}), ValueBytes(list->items[6]->data, 6));
    // Everything in a list comes from malloc: a C caller releases it with free().
    for (int32_t i = 0; i < list->count; i++) {
        std::free(list->items[i]->data);
        std::free(list->items[i]);
    }
    std::free(list->items);
    std::free(list);
}

INSTANTIATE_TEST_SUITE_P(Reader, TagList, ::testing::Values(false, true));

TEST(TagListLimits, ValuesOutsideTheFileLeaveTheirEntryOut)
{
    TiffLayout layout;
    layout.AddIfd({PointerTo(34665, 1)});
    layout.AddIfd({Rational(33434, 1, 125), Ascii(36867, "2020:02:02"), Ascii(37510, "comment")}, false);
    ByteBuilder tiff;
    tiff.m_bytes = layout.Build();
    size_t entries = layout.IfdOffset(1) + 2;
    tiff.PatchU32(entries + 4, 0x20000001);
    tiff.PatchU32(entries + 12 + 8, 0x80000010);
    ReaderFile file(tiff.m_bytes, "t.tif");
    TifTagList *list = nullptr;
    ASSERT_EQ(0, zRExifGetTIFExifData(file.get(), &list));
    ASSERT_NE(nullptr, list);
    ASSERT_EQ(1, list->count);
    EXPECT_EQ(37510u, list->items[0]->tag);
    FreeTifTagList(list);
}

TEST(TagListLimits, AnEmptyExifIfdGivesNoList)
{
    TiffLayout layout;
    layout.AddIfd({PointerTo(34665, 1)});
    layout.AddIfd({}, false);
    ReaderFile file(layout.Build(), "t.tif");
    TifTagList *list = reinterpret_cast<TifTagList *>(1);
    EXPECT_EQ(0, zRExifGetTIFExifData(file.get(), &list));
    EXPECT_EQ(nullptr, list);
}

TEST(TagListLimits, OnlyATiffWithAnExifIfdHasOne)
{
    TifTagList *list = nullptr;
    ReaderFile jpeg(JpegFile({ExifApp1(SmallTiff())}));
    EXPECT_EQ(-1, zRExifGetTIFExifData(jpeg.get(), &list));
    TiffLayout gpsOnly;
    gpsOnly.AddIfd({PointerTo(34853, 1)});
    gpsOnly.AddIfd({Raw(1, 2, 2, {'N', 0})}, false);
    ReaderFile gps(gpsOnly.Build(), "t.tif");
    EXPECT_EQ(1, zRExifIsExifExist(gps.get()));
    EXPECT_EQ(-1, zRExifGetTIFExifData(gps.get(), &list));
    EXPECT_EQ(nullptr, list);
}

}  // namespace
