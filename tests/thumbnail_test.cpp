#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "support/files.h"
#include "support/tree_records.h"

namespace {

const Entry kMake = Ascii(271, "Cam");
// The IFDs a new thumbnail gets: a minimal IFD 0 where there is none, and
// the thumbnail's own (a reduced image in a TIFF file).
const std::vector<Entry> kIfd0 = {Rational(282, 72, 1), Rational(283, 72, 1), Short(296, 2)};
const std::vector<Entry> kThumbIfd = {Short(259, 6), Rational(282, 72, 1), Rational(283, 72, 1), Short(296, 2),
                                      Long(513, 0), Long(514, 0)};
const std::vector<Entry> kTiffThumbIfd = {Long(254, 1),         Long(256, 160),        Long(257, 120),
                                          Short(259, 6),        Rational(282, 72, 1),  Rational(283, 72, 1),
                                          Short(296, 2),        Long(513, 0),          Long(514, 0)};

std::vector<RawTag> Tags(const std::vector<std::pair<std::string, std::vector<Entry>>> &ifds)
{
    std::vector<RawTag> tags;
    for (const auto &ifd : ifds) {
        for (const Entry &e : ifd.second) tags.push_back({ifd.first, e.tag, e.type, e.count, e.value});
    }
    return AsSaved(tags);
}

Bytes TiffOf(std::vector<Ifd> chain)
{
    chain[0].insert(chain[0].end(), {Short(256, 4), OffsetsOf(273, {0}), Long(279, 16)});
    std::sort(chain[0].begin(), chain[0].end(), [](const Entry &a, const Entry &b) { return a.tag < b.tag; });
    return Layout({false, chain, {}, {Bytes(16, 3)}});
}

struct ThumbCase {
    const char *name;
    Bytes file;
    std::vector<RawTag> tags;  // after the thumbnail is set
};

const ThumbCase kCases[] = {
    {"a JPEG without Exif gets an APP1 with IFD 0 and IFD 1", JpegOf({}), Tags({{"IFD0", kIfd0}, {"IFD1", kThumbIfd}})},
    {"a JPEG's IFD 0 gets an IFD 1 behind it", JpegOf({{kMake}}), Tags({{"IFD0", {kMake}}, {"IFD1", kThumbIfd}})},
    {"a JPEG's IFD 1 without thumbnail gives way", JpegOf({{kMake}, {Short(300, 1)}, {Short(301, 1)}}),
     Tags({{"IFD0", {kMake}}, {"IFD1", kThumbIfd}})},
    {"a JPEG's IFD 1 with an offset but no length gives way", JpegOf({{kMake}, {Short(259, 6), Long(513, 8)}}),
     Tags({{"IFD0", {kMake}}, {"IFD1", kThumbIfd}})},
    {"a JPEG's thumbnail is replaced where it stands",
     JpegOf({{kMake}, {OffsetsOf(513, {0}), Long(514, 100), Short(700, 1)}}, {}, {ThumbnailBytes(100)}),
     Tags({{"IFD0", {kMake}}, {"IFD1", {Long(513, 0), Long(514, 0), Short(700, 1)}}})},
    {"a TIFF gets a reduced image as IFD 1", TiffOf({{kMake}}),
     Tags({{"IFD0", {Short(256, 4), kMake, Long(273, 0), Long(279, 16)}}, {"IFD1", kTiffThumbIfd}})},
    {"a TIFF's second page moves behind the new IFD 1", TiffOf({{kMake}, {Long(254, 0)}}),
     Tags({{"IFD0", {Short(256, 4), kMake, Long(273, 0), Long(279, 16)}},
           {"IFD1", kTiffThumbIfd},
           {"IFD2", {Long(254, 0)}}})},
    {"a TIFF's reduced IFD 1 is rebuilt", TiffOf({{kMake}, {Long(254, 1), Short(300, 1)}}),
     Tags({{"IFD0", {Short(256, 4), kMake, Long(273, 0), Long(279, 16)}}, {"IFD1", kTiffThumbIfd}})},
};

// The thumbnail goes where a reader of the saved file finds it, with the
// IFDs it needs; both families hand it out, before and after the save.
TEST(SetThumbnail, MakesTheIfdsItNeedsAndComesBack)
{
    for (const ThumbCase &c : kCases) {
        TempDir dir;
        DocPtr doc(zExifLoadFile(dir.Write("photo", c.file).c_str()));
        ASSERT_NE(nullptr, doc) << c.name;
        Bytes thumb = ThumbnailBytes(2000, 4), given = thumb;
        ExifBuffer buffer = {given.data(), uint32_t(given.size())};
        ASSERT_EQ(0, zExifSetThumbnailData(doc.get(), &buffer)) << c.name;
        given.assign(given.size(), 0);
        EXPECT_EQ(1, zExifIsThumbnailExist(doc.get())) << c.name;
        EXPECT_EQ(uint32_t(THUMB_TYPE_JPEG), zExifGetThumbType(doc.get())) << c.name;
        EXPECT_EQ(thumb, DocThumbnail(doc.get())) << c.name;
        EXPECT_EQ(c.tags, AsSaved(TreeTags(*doc))) << c.name;
        std::string saved = dir.Path("saved");
        ASSERT_EQ(0, zExifSaveFile(doc.get(), saved.c_str())) << c.name;
        EXPECT_EQ(thumb, DocThumbnail(doc.get())) << c.name << ": after the save";
        RawFile raw = ReadRaw(ReadFile(saved));
        EXPECT_EQ(c.tags, AsSaved(raw.tags)) << c.name;
        EXPECT_EQ(thumb, raw.thumbnail) << c.name;
        ReaderPtr reader(zRExifBeginRead(saved.c_str()));
        ExifBuffer fromReader = {};
        ASSERT_EQ(0, zRExifGetThumbnailData(reader.get(), &fromReader)) << c.name;
        EXPECT_EQ(thumb, Bytes(fromReader.data, fromReader.data + fromReader.size)) << c.name;
    }
}

// The APP1 must stay within one segment: a thumbnail for a new APP1 may take
// 63,500 bytes, and the payload of an APP1 that stands may grow to 63,900.
TEST(SetThumbnail, SizeBoundsAreExact)
{
    TempDir dir;
    std::string plain = dir.Write("plain.jpg", JpegOf({}));
    for (uint32_t size : {63500u, 63501u}) {
        DocPtr doc(zExifLoadFile(plain.c_str()));
        Bytes thumb = ThumbnailBytes(size);
        ExifBuffer buffer = {thumb.data(), size};
        EXPECT_EQ(size <= 63500 ? 0 : -1, zExifSetThumbnailData(doc.get(), &buffer)) << size;
    }
    std::string small = dir.Write("small.jpg", JpegOf({{kMake}, {OffsetsOf(513, {0}), Long(514, 100)}}, {}, {ThumbnailBytes(100)}));
    std::string ifd0 = dir.Write("ifd0.jpg", JpegOf({{kMake}}));
    std::string ifd1 = dir.Write("ifd1.jpg", JpegOf({{kMake}, {Short(300, 1), Ascii(305, "Software")}}));
    for (const std::string &path : {plain, small, ifd0, ifd1}) {
        auto replace = [&](uint32_t size, const char *saveTo) {
            DocPtr doc(zExifLoadFile(path.c_str()));
            Bytes first = ThumbnailBytes(10), thumb = ThumbnailBytes(size);
            ExifBuffer buffer = {first.data(), 10};
            if (path == plain) zExifSetThumbnailData(doc.get(), &buffer);
            buffer = {thumb.data(), size};
            int result = zExifSetThumbnailData(doc.get(), &buffer);
            if (result == 0 && saveTo != nullptr) result = zExifSaveFile(doc.get(), saveTo);
            return result == 0;
        };
        uint32_t fits = 60000, tooLarge = 63900;
        while (tooLarge - fits > 1) {
            uint32_t middle = (fits + tooLarge) / 2;
            (replace(middle, nullptr) ? fits : tooLarge) = middle;
        }
        ASSERT_TRUE(replace(fits, dir.Path("out.jpg").c_str()));
        int64_t payload = 0;
        for (const RawSegment &s : ReadRaw(ReadFile(dir.Path("out.jpg"))).segments) {
            if (s.code == 0xE1) payload = s.size;
        }
        EXPECT_EQ(63900, payload) << path << ": the largest payload a thumbnail may make";
    }
}

TEST(SetThumbnail, RefusesWhatIsNoThumbnail)
{
    TempDir dir;
    DocPtr doc(zExifLoadFile(dir.Write("photo.jpg", JpegOf({{kMake}})).c_str()));
    uint8_t byte = 0xFF;
    ExifBuffer empty = {&byte, 0}, one = {&byte, 1}, none = {nullptr, 1};
    for (const ExifBuffer *refused : {&empty, &none, static_cast<ExifBuffer *>(nullptr)}) EXPECT_EQ(-1, zExifSetThumbnailData(doc.get(), refused));
    EXPECT_EQ(-1, zExifSetThumbDataEx(doc.get(), &one, THUMB_TYPE_JPEG));
    EXPECT_EQ(0, zExifIsThumbnailExist(doc.get()));
    ExifBuffer out = {&byte, 1};
    EXPECT_EQ(-1, zExifGetThumbnailData(doc.get(), &out));
    ExifTagValue unsized = {0x10000, 1, &byte};
    ASSERT_EQ(0, zExifSetTag(doc.get(), 700, &unsized, 0)) << "no save can size the block, so no estimate refuses";
    for (const char *set : {"set", "replaced"}) ASSERT_EQ(0, zExifSetThumbnailData(doc.get(), &one)) << set;
    for (ExifBuffer *to : {&out, static_cast<ExifBuffer *>(nullptr)}) EXPECT_EQ(-1, zExifGetThumbDataEx(doc.get(), to, to == nullptr ? THUMB_TYPE_JPEG : 0x400));
    ASSERT_EQ(0, zExifGetThumbDataEx(doc.get(), &out, THUMB_TYPE_JPEG));
    EXPECT_EQ(Bytes{0xFF}, Bytes(out.data, out.data + out.size));
    std::free(out.data);
    ASSERT_EQ(0, zExifDelTag(doc.get(), 513, 1));
    EXPECT_EQ(0, zExifIsThumbnailExist(doc.get())) << "the thumbnail goes with its tag";
    // A TIFF's IFD 1 needs the image's size, which only a frame header tells.
    DocPtr tiff(zExifLoadFile(dir.Write("photo.tif", TiffOf({{kMake}})).c_str()));
    Bytes frameless = ThumbnailBytes(20);
    ExifBuffer buffer = {frameless.data(), uint32_t(frameless.size())};
    EXPECT_EQ(-1, zExifSetThumbnailData(tiff.get(), &buffer));
    EXPECT_EQ(0, zExifIsThumbnailExist(tiff.get()));
    // A frame header (here of the last kind, SOF15) cut right behind the
    // image's width still tells it, also behind restart markers, which have
    // no length.
    Bytes cut = {0xFF, 0xD8, 0xFF, 0xD0, 0xFF, 0xD7, 0xFF, 0xCF, 0, 17, 8, 0, 120, 0, 160};
    for (uint32_t size : {14u, 15u}) {
        buffer = {cut.data(), size};
        EXPECT_EQ(size == 15 ? 0 : -1, zExifSetThumbnailData(tiff.get(), &buffer)) << size;
    }
    for (size_t at : {0, 2, 12, 14}) {
        Bytes flat = cut;
        flat[at] = 0;
        buffer = {flat.data(), 15};
        EXPECT_EQ(-1, zExifSetThumbnailData(tiff.get(), &buffer)) << "no SOI, a stray byte, no height or width: " << at;
    }
}

// A thumbnail offset without its length, one whose bytes the file or the
// block doesn't hold, an offset of 0, an offset or a length that isn't one
// number, is no thumbnail: a save leaves the two tags out, and the document
// has none.
TEST(GetThumbnail, WhatTheFileDoesNotHoldIsNone)
{
    const Ifd broken[] = {{Short(259, 6), Long(513, 8)},
                          {Short(259, 6), Long(513, 8), Long(514, 100000)},
                          {Short(259, 6), Long(513, 0), Long(514, 8)},
                          {Short(259, 6), Long(513, 200), Long(514, 20)},
                          {Short(259, 6), Typed(513, 4, 2, {8, 0, 0, 0, 8, 0, 0, 0}), Long(514, 8)},
                          {Short(259, 6), Long(513, 8), Rational(514, 8, 1)}};
    for (const Ifd &ifd1 : broken) {
        for (bool tiff : {false, true}) {
            TempDir dir;
            std::string path = dir.Write("photo", tiff ? TiffOf({{kMake}, ifd1}) : JpegOf({{kMake}, ifd1}));
            DocPtr doc(zExifLoadFile(path.c_str()));
            ASSERT_EQ(0, zExifSaveFile(doc.get(), dir.Path("saved").c_str()));
            EXPECT_EQ(Bytes{}, DocThumbnail(doc.get()));
            std::vector<RawTag> ifd1Saved;
            for (const RawTag &t : ReadRaw(ReadFile(dir.Path("saved"))).tags) {
                if (t.place == "IFD1") ifd1Saved.push_back(t);
            }
            EXPECT_EQ((std::vector<RawTag>{{"IFD1", 259, 3, 1, {6, 0}}}), ifd1Saved) << tiff;
        }
    }
}

}  // namespace
