#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>

#include "load/doc_builder.h"
#include "load/tiff_parser.h"
#include "streams/stream.h"
#include "support/byte_builder.h"
#include "support/load_bytes.h"
#include "support/temp_dir.h"
#include "tree/walk.h"

namespace {

// A TIFF file of one IFD at offset 8 with the given entries, followed by the
// next-IFD link and any value bytes.
ByteBuilder OneIfd(bool bigEndian, const std::vector<std::vector<uint32_t>> &entries, uint32_t link = 0)
{
    ByteBuilder b(bigEndian);
    b.TiffHeader(8).U16(uint16_t(entries.size()));
    for (const auto &e : entries) b.Entry(uint16_t(e[0]), uint16_t(e[1]), e[2], e[3]);
    b.U32(link);
    return b;
}

class ByteOrder : public ::testing::TestWithParam<bool> {};

TEST_P(ByteOrder, ValuesArriveInHostOrder)
{
    bool be = GetParam();
    const uint32_t data = 8 + 2 + 6 * 12 + 4;
    ByteBuilder b(be);
    b.TiffHeader(8).U16(6);
    b.Entry(256, 3, 1, be ? 0x00010000u : 1u);
    b.U16(257).U16(3).U32(2).U16(1).U16(2);
    b.EntryRaw(258, 1, 2, {1, 2});
    b.Entry(259, 4, 1, 70000);
    b.Entry(282, 5, 1, data);
    b.Entry(283, 3, 3, data + 8);
    b.U32(0);
    b.U32(1).U32(2);
    b.U16(10).U16(20).U16(30);

    DocPtr doc = LoadBytes(b.Data());
    ASSERT_TRUE(doc);
    EXPECT_EQ(FORMAT_TIFF, zExifGetFileFormat(doc.get()));
    EXPECT_EQ(be ? 1 : 0, doc->m_bigEndian);
    std::vector<CTag *> tags = TagsOf(doc->FindIfd(0));
    ASSERT_EQ(6u, tags.size());
    EXPECT_EQ(1u, tags[0]->m_value);
    EXPECT_EQ(0x00020001u, tags[1]->m_value);
    EXPECT_EQ(0, std::memcmp(&tags[2]->m_value, "\x01\x02\x00\x00", 4));
    EXPECT_EQ(70000u, tags[3]->m_value);
    ASSERT_EQ(8, tags[4]->m_size);
    uint32_t rational[2];
    std::memcpy(rational, tags[4]->m_data, 8);
    EXPECT_EQ(1u, rational[0]);
    EXPECT_EQ(2u, rational[1]);
    uint16_t shorts[3];
    std::memcpy(shorts, tags[5]->m_data, 6);
    EXPECT_EQ(30, shorts[2]);
}

TEST_P(ByteOrder, EntryCountsFromOneToAHundred)
{
    for (uint32_t count : {0u, 1u, 100u, 101u}) {
        ByteBuilder b(GetParam());
        b.TiffHeader(8).U16(uint16_t(count));
        for (uint32_t i = 0; i < count; i++) b.Entry(uint16_t(1000 + i), 3, 1, 0);
        b.U32(0);
        DocPtr doc = LoadBytes(b.Data());
        EXPECT_EQ(count >= 1 && count <= 100, doc != nullptr) << count;
        if (doc) {
            EXPECT_EQ(count, doc->FindIfd(0)->m_child->m_value);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(LittleAndBig, ByteOrder, ::testing::Bool());

TEST(TiffLoad, HeaderOnlyAndUnrecognisedFiles)
{
    DocPtr empty = LoadBytes({0x49, 0x49, 0x2A, 0, 0, 0, 0, 0});
    ASSERT_TRUE(empty);
    EXPECT_EQ(0, zExifIsExifExist(empty.get()));
    EXPECT_EQ(NODE_TIFF_HEADER, empty->m_root->m_id);
    EXPECT_EQ(nullptr, empty->m_root->m_next);
    EXPECT_TRUE(LoadBytes({'M', 'M', 0x2A, 0, 0, 0, 0, 0}));

    for (auto bytes : std::vector<std::vector<uint8_t>>{
             {0x49, 0x4D, 0x2A, 0, 8, 0, 0, 0}, {0xFF, 0xD9, 0, 0}, {0x42, 0x4D, 0, 0}, {}, {0x49}, {0x49, 0x49, 0x2A},
             {0x49, 0x49, 0x2A, 0, 8, 0}}) {
        EXPECT_FALSE(LoadBytes(bytes)) << bytes.size();
    }
    EXPECT_EQ(0, zExifIsExifExist(nullptr));
}

// Offsets in the tree are 32-bit, and so is a stream's Tell: a file of 2 GiB
// or more would wrap them. Such a file is refused before its parse starts.
TEST(TiffLoad, FilesOfTwoGigabytesAndMoreAreRefused)
{
    TempDir dir;
    for (auto head : std::vector<std::vector<uint8_t>>{{0xFF, 0xD8, 0xFF, 0xDA, 0, 2}, {'I', 'I', 42, 0, 8, 0, 0, 0}}) {
        std::string path = dir.Write("big.bin", head);
        std::filesystem::resize_file(path, (uint64_t(1) << 32) + 64);
        EXPECT_EQ(nullptr, zExifLoadFile(path.c_str())) << int(head[0]);
        std::filesystem::resize_file(path, uint64_t(1) << 31);
        EXPECT_EQ(nullptr, zExifLoadFile(path.c_str())) << int(head[0]);
    }
}

TEST(TiffLoad, TypeZeroFailsAndUnknownTypesAreKept)
{
    EXPECT_FALSE(LoadBytes(OneIfd(false, {{256, 3, 1, 1}, {257, 0, 1, 1}}).Data()));
    DocPtr doc = LoadBytes(OneIfd(false, {{256, 13, 9, 0x12345678}}).Data());
    ASSERT_TRUE(doc);
    CTag *tag = TagsOf(doc->FindIfd(0))[0];
    EXPECT_EQ(13u, tag->m_type);
    EXPECT_EQ(nullptr, tag->m_data);
}

TEST(TiffLoad, AsciiKeepsItsCountWithoutAddedNul)
{
    ByteBuilder b = OneIfd(false, {{271, 2, 5, 26}});
    b.Text("Canon");
    DocPtr doc = LoadBytes(b.Data());
    ASSERT_TRUE(doc);
    CTag *make = TagsOf(doc->FindIfd(0))[0];
    EXPECT_EQ(5, make->m_size);
    EXPECT_EQ(0, std::memcmp(make->m_data, "Canon", 5));
}

TEST(TiffLoad, ExifPointersAreFollowedOnceAndRegistered)
{
    // IFD 0 at 8: 513, 34665 -> 50, 34665 again -> 50. The Exif IFD at 50
    // points at itself.
    ByteBuilder b(false);
    b.TiffHeader(8).U16(3).Entry(513, 4, 1, 0).Entry(34665, 4, 1, 50).Entry(34665, 4, 1, 50).U32(0);
    b.U16(2).Entry(36867, 2, 4, 0x31323334).Entry(34665, 4, 1, 50).U32(0);
    ASSERT_EQ(50u + 30u, b.Size());
    DocPtr doc = LoadBytes(b.Data());
    ASSERT_TRUE(doc);
    std::vector<CTag *> ifd0 = TagsOf(doc->FindIfd(0));
    ASSERT_EQ(3u, ifd0.size());
    EXPECT_NE(nullptr, ifd0[1]->m_child);
    EXPECT_EQ(nullptr, ifd0[2]->m_child);
    EXPECT_EQ(ifd0[2], doc->m_exifIfdTag);
    EXPECT_EQ(1, zExifIsExifExist(doc.get()));
    EXPECT_EQ(1, doc->m_hasThumb);
    EXPECT_EQ(uint32_t(THUMB_TYPE_JPEG), doc->m_thumbType & THUMB_TYPE_JPEG);
    EXPECT_EQ(ifd0[0], doc->m_thumbTag);
}

TEST(TiffLoad, GpsTagsWithStructuralNumbersAreTags)
{
    ByteBuilder b(true);
    b.TiffHeader(8).U16(1).Entry(34853, 4, 1, 26).U32(0);
    b.U16(3).EntryRaw(1, 2, 2, {'N', 0}).Entry(2, 5, 3, 0).EntryRaw(3, 2, 2, {'E', 0}).U32(0);
    b.Fill(24, 0);
    DocPtr doc = LoadBytes(b.Data());
    ASSERT_TRUE(doc);
    CNode *gps = FindNode(doc->m_root, 34853);
    std::vector<CTag *> tags = TagsOf(gps);
    ASSERT_EQ(3u, tags.size());
    EXPECT_EQ('E', char(tags[2]->m_value & 0xFF));
    EXPECT_EQ(0, zExifIsExifExist(doc.get()));
    EXPECT_EQ(NODE_ENTRY_COUNT, FindNode(gps->m_child, 3)->m_id);
}

TEST(TiffLoad, AFailingIfdAnywhereFailsTheLoad)
{
    ByteBuilder gps(false);
    gps.TiffHeader(8).U16(1).Entry(34853, 4, 1, 26).U32(0);
    gps.U16(101);
    EXPECT_FALSE(LoadBytes(gps.Data()));

    ByteBuilder second(false);
    second.TiffHeader(8).U16(1).Entry(256, 3, 1, 1).U32(26);
    second.U16(1).Entry(256, 3, 1, 1).U32(44);
    second.U16(0);
    EXPECT_FALSE(LoadBytes(second.Data()));

    EXPECT_FALSE(LoadBytes(OneIfd(false, {{34665, 4, 1, 5000}}).Data()));
}

// A parse run over a block in memory may fail after some tags went into the
// tree; the count of that IFD then still matches the tags it holds.
TEST(TiffLoad, AnIfdCutShortByAFailureCountsTheTagsItKept)
{
    ByteBuilder b(false);
    b.TiffHeader(8).U16(3).Entry(256, 3, 1, 1).Entry(34665, 4, 1, 50).Entry(258, 3, 1, 8).U32(0);
    b.U16(101);
    CExifDoc doc;
    CStreamIO *block = nullptr;
    ASSERT_TRUE(CreateMemoryStream(&block, b.m_bytes.data(), int32_t(b.Size())));
    CDocBuilder builder(&doc);
    EXPECT_EQ(0, ParseTiff(block, &builder));
    DeleteStream(block);
    CNode *ifd = doc.FindIfd(0);
    ASSERT_NE(nullptr, ifd);
    EXPECT_EQ(2u, ifd->m_child->m_value);
    EXPECT_EQ(2u, TagsOf(ifd).size());
}

TEST(TiffLoad, PointersBackToTheParentDoNotRecurse)
{
    // IFD 0 at 8 points at the Exif IFD at 26, which points back at IFD 0
    // both as its Exif and as its GPS IFD.
    ByteBuilder b(true);
    b.TiffHeader(8).U16(1).Entry(34665, 4, 1, 26).U32(0);
    b.U16(2).Entry(34665, 4, 1, 8).Entry(34853, 4, 1, 8).U32(0);
    DocPtr doc = LoadBytes(b.Data());
    ASSERT_TRUE(doc);
    std::vector<CTag *> exif = TagsOf(TagsOf(doc->FindIfd(0))[0]);
    ASSERT_EQ(2u, exif.size());
    EXPECT_EQ(nullptr, exif[0]->m_child);
    std::vector<CTag *> gps = TagsOf(exif[1]);
    ASSERT_EQ(1u, gps.size());
    EXPECT_EQ(nullptr, gps[0]->m_child);
}

TEST(TiffLoad, LoopingAndBrokenChainsEndQuietly)
{
    // IFD 0 links to IFD 1, IFD 1 links back to IFD 0.
    ByteBuilder loop(false);
    loop.TiffHeader(8).U16(1).Entry(256, 3, 1, 1).U32(26);
    loop.U16(1).Entry(256, 3, 1, 2).U32(8);
    DocPtr doc = LoadBytes(loop.Data());
    ASSERT_TRUE(doc);
    EXPECT_EQ(2, doc->CountIfds());

    DocPtr junk = LoadBytes(OneIfd(false, {{256, 3, 1, 1}}, 0x00FFFFF0).Data());
    ASSERT_TRUE(junk);
    EXPECT_EQ(1, junk->CountIfds());

    EXPECT_FALSE(LoadBytes(OneIfd(false, {{256, 3, 1, 1}}, 0x80000010).Data()));

    // A chain without a loop that goes on and on stops at a bound.
    ByteBuilder longChain(false);
    longChain.TiffHeader(8);
    const uint32_t ifdSize = 2 + 12 + 4;
    for (uint32_t i = 0; i < MAX_CHAINED_IFDS + 10; i++) {
        longChain.U16(1).Entry(256, 3, 1, i).U32(8 + (i + 1) * ifdSize);
    }
    longChain.U32(0);
    DocPtr bounded = LoadBytes(longChain.Data());
    ASSERT_TRUE(bounded);
    EXPECT_EQ(MAX_CHAINED_IFDS, bounded->CountIfds());
}

TEST(TiffLoad, TruncatedTablesKeepOnlyWholeEntries)
{
    ByteBuilder b(false);
    b.TiffHeader(8).U16(3).Entry(256, 3, 1, 1).Entry(257, 3, 1, 2).U16(258);
    DocPtr doc = LoadBytes(b.Data());
    ASSERT_TRUE(doc);
    CNode *ifd = doc->FindIfd(0);
    EXPECT_EQ(2u, ifd->m_child->m_value);
    EXPECT_EQ(2u, TagsOf(ifd).size());

    ByteBuilder none(false);
    none.TiffHeader(8).U16(3).U16(256);
    EXPECT_FALSE(LoadBytes(none.Data()));
}

TEST(TiffLoad, ValuesAreBoundedByTheFile)
{
    // A value partly behind the end reads as zeros there; one larger than
    // the file is dropped with its entry.
    ByteBuilder b = OneIfd(false, {{270, 2, 8, 50}, {271, 2, 0x7FFFFFF0, 8}, {272, 2, 6, 0xFFFFFFF0}});
    b.Text("abcd");
    DocPtr doc = LoadBytes(b.Data());
    ASSERT_TRUE(doc);
    std::vector<CTag *> tags = TagsOf(doc->FindIfd(0));
    ASSERT_EQ(2u, tags.size());
    EXPECT_EQ(2u, doc->FindIfd(0)->m_child->m_value);
    EXPECT_EQ(0, std::memcmp(tags[0]->m_data, "abcd\0\0\0\0", 8));
    EXPECT_EQ(272, tags[1]->m_id);
    EXPECT_EQ(0, std::memcmp(tags[1]->m_data, "\0\0\0\0\0\0", 6));
}

TEST(TiffLoad, ValueBudgetRefusesFilesThatAskForTooMuch)
{
    // Each of the 100 entries asks for nearly the whole file again; 100 IFDs
    // of them would need far more memory than the file justifies.
    const uint32_t fileSize = 200000;
    ByteBuilder b(false);
    b.TiffHeader(8);
    uint32_t ifdSize = 2 + 100 * 12 + 4;
    for (uint32_t ifd = 0; ifd < 100; ifd++) {
        b.U16(100);
        for (uint16_t i = 0; i < 100; i++) b.Entry(uint16_t(300 + i), 7, fileSize - 100, 0);
        b.U32(ifd + 1 < 100 ? 8 + (ifd + 1) * ifdSize : 0);
    }
    b.Fill(fileSize - b.Size(), 0);
    EXPECT_FALSE(LoadBytes(b.Data()));
}

}  // namespace
