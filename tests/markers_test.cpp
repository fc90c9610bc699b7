#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "reader/tif_tag_list.h"
#include "support/files.h"
#include "support/tree_records.h"

namespace {

const Entry kMake = Ascii(271, "Cam");

Bytes ExifBlockWithThumbnail(const std::string &make)
{
    return Layout({false, {{Ascii(271, make)}, {OffsetsOf(513, {0}), Long(514, 200)}}, {}, {ThumbnailBytes(200)}});
}

// SOI, APP0, Exif APP1, an XMP APP1, two APP2 of ICC, DQT, SOS, EOI.
Bytes JpegWithSegments()
{
    Bytes xmp = {'h', 't', 't', 'p', ':', '/', '/'}, icc = {'I', 'C', 'C', '_', 1};
    return Jpeg({{0xE0, {'J', 'F', 'I', 'F', 0}}, {0xE1, ExifPayload(ExifBlockWithThumbnail("Cam"))}, {0xE1, xmp},
                 {0xE2, icc}, {0xE2, icc}, {0xDB, Bytes(65, 1)}, {0xDA, {1, 1, 0, 0, 0x3F, 0}}},
                {9, 9});
}

uint32_t Signature(const char *text)
{
    uint32_t value;
    std::memcpy(&value, text, 4);
    return value;
}

// APP1 takes every APP1 with it, whatever their signatures, and the Exif
// they held; another code takes the first segment of that code when its
// signature matches, and nothing else.
TEST(RemoveMarker, TakesWhatItNames)
{
    TempDir dir;
    std::string path = dir.Write("photo.jpg", JpegWithSegments());
    DocPtr doc(zExifLoadFile(path.c_str()));
    EXPECT_EQ(0, zExifRemoveMarker(doc.get(), 0xE2, Signature("XXXX")));
    EXPECT_EQ((std::vector<int>{0xD8, 0xE0, 0xE1, 0xE1, 0xE2, 0xE2, 0xDB, 0xDA, 161, 0xD9}), MarkerCodes(*doc));
    EXPECT_EQ(0, zExifRemoveMarker(doc.get(), 0xE2, Signature("ICC_")));
    EXPECT_EQ((std::vector<int>{0xD8, 0xE0, 0xE1, 0xE1, 0xE2, 0xDB, 0xDA, 161, 0xD9}), MarkerCodes(*doc));
    EXPECT_EQ(-1, zExifRemoveMarker(doc.get(), 0xE5, 0));
    EXPECT_EQ(0, zExifRemoveMarker(doc.get(), 0xE1, 0));
    EXPECT_EQ((std::vector<int>{0xD8, 0xE0, 0xE2, 0xDB, 0xDA, 161, 0xD9}), MarkerCodes(*doc));
    EXPECT_EQ(0, zExifIsThumbnailExist(doc.get()));
    ExifTagValue value = {};
    EXPECT_EQ(-1, zExifGetTag(doc.get(), 271, &value, 0));
    ASSERT_EQ(0, zExifSaveFile(doc.get(), path.c_str()));
    EXPECT_TRUE(ReadRaw(ReadFile(path)).tags.empty());

    DocPtr tiff(zExifLoadFile(dir.Write("photo.tif", Layout({false, {{kMake}}, {}, {}})).c_str()));
    EXPECT_EQ(-1, zExifRemoveMarker(tiff.get(), 0xE1, 0));
    EXPECT_EQ(-1, zExifRemoveMarker(nullptr, 0xE1, 0));
}

ExifBuffer ExifMarkerOf(const std::string &path)
{
    ReaderPtr reader(zRExifBeginRead(path.c_str()));
    ExifBuffer buffer = {};
    EXPECT_EQ(0, zRExifGetExifMarker(reader.get(), &buffer));
    return buffer;
}

// The block goes in front of the Exif the document had, which the save
// copies as it was; tags, lookups and the thumbnail come from the new one.
TEST(InsertExifMarker, TakesOverTheBlockAndItsThumbnail)
{
    TempDir dir;
    std::string from = dir.Write("from.jpg", Jpeg({{0xE1, ExifPayload(ExifBlockWithThumbnail("New"))}}, {}));
    std::string into = dir.Write("into.jpg", JpegWithSegments());
    DocPtr doc(zExifLoadFile(into.c_str()));
    ExifBuffer buffer = ExifMarkerOf(from);
    ASSERT_EQ(0, zExifInsertExifMarker(doc.get(), &buffer));
    EXPECT_EQ((std::vector<int>{0xD8, 0xE0, 0xE1, 0xE1, 0xE1, 0xE2, 0xE2, 0xDB, 0xDA, 161, 0xD9}), MarkerCodes(*doc));
    ExifTagValue value = {};
    ASSERT_EQ(0, zExifGetTag(doc.get(), 271, &value, 0));
    EXPECT_EQ((Bytes{'N', 'e', 'w', 0}), ValueBytes(value));
    std::free(value.data);
    EXPECT_EQ(ThumbnailBytes(200), DocThumbnail(doc.get()));
    ASSERT_EQ(0, zExifSaveFile(doc.get(), into.c_str()));
    RawFile saved = ReadRaw(ReadFile(into));
    EXPECT_EQ(ReadRaw(ReadFile(from)).tags, std::vector<RawTag>(saved.tags.begin(), saved.tags.begin() + 3));
    EXPECT_EQ(ThumbnailBytes(200), saved.thumbnail);
    EXPECT_EQ("APP1#1:IFD0", saved.tags[3].place);
}

TEST(InsertExifMarker, RefusesWhatIsNoExifBlock)
{
    TempDir dir;
    DocPtr doc(zExifLoadFile(dir.Write("into.jpg", JpegWithSegments()).c_str()));
    Bytes good = ExifPayload(Layout({false, {{kMake}}, {}, {}}));
    for (size_t damage : {0, 3, 6, 7}) {
        Bytes payload = good;
        payload[damage] = 'X';
        ExifBuffer buffer = {payload.data(), uint32_t(payload.size())};
        EXPECT_EQ(-1, zExifInsertExifMarker(doc.get(), &buffer)) << damage;
    }
    ExifBuffer empty = {nullptr, uint32_t(good.size())};
    for (ExifBuffer *none : {&empty, static_cast<ExifBuffer *>(nullptr)}) EXPECT_EQ(-1, zExifInsertExifMarker(doc.get(), none));
    // A block of a header alone is one; a thumbnail that lies outside its
    // block is none, one of a single byte inside it is one.
    const std::pair<Bytes, int> blocks[] = {
        {ExifPayload(Layout({false, {}, {}, {}})), 0},
        {ExifPayload(Layout({false, {{kMake}, {Long(513, 4000), Long(514, 10)}}, {}, {}})), 0},
        {ExifPayload(Layout({false, {{kMake}, {OffsetsOf(513, {0}), Long(514, 1)}}, {}, {{0xFF}}})), 1}};
    for (const auto &[payload, thumbnail] : blocks) {
        DocPtr taker(zExifLoadFile(dir.Path("into.jpg").c_str()));
        ExifBuffer taken = {new unsigned char[payload.size()], uint32_t(payload.size())};
        std::copy(payload.begin(), payload.end(), taken.data);
        EXPECT_EQ(0, zExifInsertExifMarker(taker.get(), &taken));
        EXPECT_EQ(thumbnail, zExifIsThumbnailExist(taker.get()));
    }
    DocPtr tiff(zExifLoadFile(dir.Write("photo.tif", Layout({false, {{kMake}}, {}, {}})).c_str()));
    ExifBuffer buffer = {good.data(), uint32_t(good.size())};
    EXPECT_EQ(-1, zExifInsertExifMarker(tiff.get(), &buffer));
    EXPECT_EQ(3u, TreeTags(*doc).size());
}

}  // namespace
