#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "support/jpeg_files.h"
#include "support/load_bytes.h"
#include "support/reader_file.h"
#include "support/tag_records.h"
#include "support/temp_dir.h"
#include "support/tiff_layout.h"

namespace {

constexpr uint32_t kWidth = 4;
constexpr uint32_t kRows = 3;

std::vector<uint8_t> StripBytes(uint32_t row, uint32_t bytesPerRow)
{
    std::vector<uint8_t> strip;
    for (uint32_t i = 0; i < bytesPerRow; i++) strip.push_back(uint8_t(row * 40 + i));
    return strip;
}

// A grey image of one strip per row, the strips stored in the file in the
// reverse of their order, the strip tags SHORT.
std::vector<uint8_t> GreyTiff(bool bigEndian, uint32_t bits, std::vector<LayoutEntry> extra = {})
{
    uint32_t bytesPerRow = kWidth * bits / 8;
    TiffLayout layout(bigEndian);
    std::vector<int> blobs(kRows);
    for (uint32_t row = kRows; row-- > 0;) blobs[row] = layout.AddBlob(StripBytes(row, bytesPerRow));
    std::vector<uint32_t> offsets(kRows, 0);
    std::vector<LayoutEntry> entries = {Shorts(256, {kWidth}), Shorts(257, {kRows}), Shorts(258, {bits}),
                                        Shorts(259, {1}), Shorts(262, {1}), Shorts(273, offsets), Shorts(277, {1}),
                                        Shorts(278, {1}), Shorts(279, std::vector<uint32_t>(kRows, bytesPerRow)),
                                        Ascii(305, "grey maker")};
    entries.insert(entries.end(), extra.begin(), extra.end());
    layout.AddIfd(entries);
    for (uint32_t row = 0; row < kRows; row++) offsets[row] = layout.BlobOffset(blobs[row]);
    entries[5] = Shorts(273, offsets);
    TiffLayout final(bigEndian);
    for (uint32_t row = kRows; row-- > 0;) final.AddBlob(StripBytes(row, bytesPerRow));
    final.AddIfd(entries);
    return final.Build();
}

bool RunsClean(const std::string &command, const std::string &scratch)
{
    std::string errors = scratch + "/stderr.txt";
    if (std::system((command + " >/dev/null 2>'" + errors + "'").c_str()) != 0) return false;
    return ReadFileBytes(errors).empty();
}

struct TiffSave : ::testing::Test {
    TempDir dir;
    std::string source = dir.Path("source.tif");
    std::string target = dir.Path("target.tif");
};

TEST_F(TiffSave, BigEndianFileComesOutLittleEndianWithItsStripsInOrder)
{
    dir.Write("source.tif", GreyTiff(true, 8));
    DocPtr doc(zExifLoadFile(source.c_str()));
    ASSERT_TRUE(doc);
    std::vector<TagRecord> tags = TagRecords(*doc);
    ASSERT_EQ(0, zExifSaveFile(doc.get(), target.c_str()));

    std::vector<uint8_t> saved = ReadFileBytes(target);
    EXPECT_EQ((std::vector<uint8_t>{'I', 'I', 42, 0, 8, 0, 0, 0}),
              std::vector<uint8_t>(saved.begin(), saved.begin() + 8));
    DocPtr back(zExifLoadFile(target.c_str()));
    ASSERT_TRUE(back);
    EXPECT_EQ(tags, TagRecords(*back));
    std::vector<uint8_t> image;
    for (uint32_t row = 0; row < kRows; row++) {
        std::vector<uint8_t> strip = StripBytes(row, kWidth);
        image.insert(image.end(), strip.begin(), strip.end());
    }
    EXPECT_EQ(std::vector<std::vector<uint8_t>>{image}, ImageData(*back, saved));
    if (HasProgram("tiffinfo") && HasProgram("tiffcmp")) {
        EXPECT_TRUE(RunsClean("tiffinfo -D '" + target + "'", dir.m_path));
        EXPECT_TRUE(RunsClean("tiffcmp '" + source + "' '" + target + "'", dir.m_path));
    }
}

// Samples of two bytes keep the source's byte order in the strips, which a
// little-endian header would misread: such a save is refused.
TEST_F(TiffSave, BigEndianFileWithWideSamplesIsRefused)
{
    dir.Write("source.tif", GreyTiff(true, 16));
    std::vector<uint8_t> before = {1, 2, 3};
    dir.Write("target.tif", before);
    DocPtr doc(zExifLoadFile(source.c_str()));
    ASSERT_TRUE(doc);
    EXPECT_EQ(-1, zExifSaveFile(doc.get(), target.c_str()));
    EXPECT_EQ(before, ReadFileBytes(target));
    EXPECT_EQ(2u, ListFiles(dir.m_path).size());
}

TEST_F(TiffSave, LittleEndianFileWithWideSamplesIsSaved)
{
    dir.Write("source.tif", GreyTiff(false, 16));
    DocPtr doc(zExifLoadFile(source.c_str()));
    ASSERT_TRUE(doc);
    EXPECT_EQ(0, zExifSaveFile(doc.get(), target.c_str()));
}

// The strips stay on file, and after a save the source is closed: a second
// save has nothing to copy them from.
TEST_F(TiffSave, SecondSaveFailsCleanly)
{
    dir.Write("source.tif", GreyTiff(false, 8));
    DocPtr doc(zExifLoadFile(source.c_str()));
    ASSERT_TRUE(doc);
    ASSERT_EQ(0, zExifSaveFile(doc.get(), target.c_str()));
    std::vector<uint8_t> first = ReadFileBytes(target);
    EXPECT_EQ(-1, zExifSaveFile(doc.get(), target.c_str()));
    EXPECT_EQ(first, ReadFileBytes(target));
    EXPECT_EQ(2u, ListFiles(dir.m_path).size());
}

TEST_F(TiffSave, ThumbnailIfdCarriesTheThumbnailSetInIt)
{
    dir.Write("source.tif", GreyTiff(false, 8));
    DocPtr doc(zExifLoadFile(source.c_str()));
    ASSERT_TRUE(doc);
    std::vector<uint8_t> thumb = ThumbnailJpeg(500);
    ExifBuffer buffer = {thumb.data(), uint32_t(thumb.size())};
    ASSERT_EQ(0, zExifSetThumbnailData(doc.get(), &buffer));
    ASSERT_EQ(0, zExifSaveFile(doc.get(), target.c_str()));

    DocPtr back(zExifLoadFile(target.c_str()));
    ASSERT_TRUE(back);
    ExifBuffer read = {};
    ASSERT_EQ(0, zExifGetThumbnailData(back.get(), &read));
    EXPECT_EQ(thumb, std::vector<uint8_t>(read.data, read.data + read.size));
    std::free(read.data);
}

TEST_F(TiffSave, TiledImageKeepsItsTiles)
{
    TiffLayout layout(true);
    std::vector<uint8_t> tile0(16 * 16, 7);
    std::vector<uint8_t> tile1(16 * 16, 9);
    int second = layout.AddBlob(tile1);
    int first = layout.AddBlob(tile0);
    std::vector<LayoutEntry> entries = {Shorts(256, {32}),  Shorts(257, {16}), Shorts(258, {8}), Shorts(259, {1}),
                                        Shorts(262, {1}),   Shorts(277, {1}),  Shorts(322, {16}), Shorts(323, {16}),
                                        Raw(324, 4, 2, {}), Shorts(325, {256, 256})};
    layout.AddIfd(entries);
    LayoutEntry offsets;
    offsets.tag = 324;
    offsets.type = 4;
    offsets.count = 2;
    offsets.numbers = {layout.BlobOffset(first), layout.BlobOffset(second)};
    entries[8] = offsets;
    TiffLayout final(true);
    final.AddBlob(tile1);
    final.AddBlob(tile0);
    final.AddIfd(entries);
    dir.Write("source.tif", final.Build());

    DocPtr doc(zExifLoadFile(source.c_str()));
    ASSERT_TRUE(doc);
    ASSERT_EQ(0, zExifSaveFile(doc.get(), target.c_str()));
    DocPtr back(zExifLoadFile(target.c_str()));
    ASSERT_TRUE(back);
    std::vector<uint8_t> image = tile0;
    image.insert(image.end(), tile1.begin(), tile1.end());
    EXPECT_EQ(std::vector<std::vector<uint8_t>>{image}, ImageData(*back, ReadFileBytes(target)));
    if (HasProgram("tiffinfo")) {
        EXPECT_TRUE(RunsClean("tiffinfo -D '" + target + "'", dir.m_path));
    }
}

}  // namespace
