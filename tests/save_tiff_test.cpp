#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/load_bytes.h"
#include "support/temp_dir.h"
#include "support/tiff_layout.h"

namespace {

// A grey image of 4 x 3 samples of that many bits in one strip.
std::vector<uint8_t> GreyTiff(bool bigEndian, uint32_t bits)
{
    TiffLayout layout(bigEndian);
    int strip = layout.AddBlob(std::vector<uint8_t>(4 * 3 * bits / 8, 0x5A));
    layout.AddIfd({Shorts(256, {4}), Shorts(257, {3}), Shorts(258, {bits}), Shorts(259, {1}), Shorts(262, {1}),
                   OffsetOf(273, strip), Shorts(277, {1}), Shorts(278, {3}), Long(279, 4 * 3 * bits / 8)});
    return layout.Build();
}

struct TiffSave : ::testing::Test {
    TempDir dir;
    std::string source = dir.Path("source.tif");
    std::string target = dir.Write("target.tif", {1, 2, 3});

    // Loads the file and saves it to the target: the save's result.
    int Save(const std::vector<uint8_t> &file, int times = 1)
    {
        dir.Write("source.tif", file);
        DocPtr doc(zExifLoadFile(source.c_str()));
        EXPECT_TRUE(doc);
        int result = -1;
        for (int i = 0; doc && i < times; i++) result = zExifSaveFile(doc.get(), target.c_str());
        return result;
    }
};

// Samples of two bytes keep the source's byte order in the strips, which a
// little-endian header would misread: such a save is refused and leaves the
// target as it was.
TEST_F(TiffSave, WideSamplesOfABigEndianFileAreRefused)
{
    EXPECT_EQ(-1, Save(GreyTiff(true, 16)));
    EXPECT_EQ((std::vector<uint8_t>{1, 2, 3}), ReadFileBytes(target));
    EXPECT_EQ(2u, ListFiles(dir.m_path).size());
    EXPECT_EQ(0, Save(GreyTiff(false, 16)));
}

// The strips stay on file, and after a save the source is closed: a second
// save has nothing to copy them from, and fails without a trace.
TEST_F(TiffSave, SecondSaveFailsCleanly)
{
    ASSERT_EQ(0, Save(GreyTiff(false, 8)));
    std::vector<uint8_t> first = ReadFileBytes(target);
    EXPECT_EQ(-1, Save(GreyTiff(false, 8), 2));
    EXPECT_EQ(first, ReadFileBytes(target));
    EXPECT_EQ(2u, ListFiles(dir.m_path).size());
}

}  // namespace
