#include <gtest/gtest.h>

#include "support/files.h"
#include "support/oracle.h"

namespace {

TEST(RealFiles, AgreeWithARawReadingAndTakeEditsAlone)
{
    SKIP_WITHOUT_SAMPLES();
    for (const std::string &path : Samples()) CheckFile(ReadFile(path), ShortName(path));
}

TEST(GeneratedFiles, AgreeWithARawReadingAndTakeEditsAlone)
{
    for (int seed = 1; seed <= 60; seed++) {
        std::mt19937 rng{uint32_t(seed)};
        CheckFile(CameraJpeg(Layout(RandomBlock(rng, false)), rng), "generated JPEG " + std::to_string(seed));
        CheckFile(Layout(RandomBlock(rng, true)), "generated TIFF " + std::to_string(seed));
    }
    CheckFile(JpegOf({}), "a JPEG without Exif");
    // An edit takes over this APP1, which the raw reading counts as a plain segment.
    CheckFile(Jpeg({{0xE1, {'E', 'x', 'i', 'f', 0, 0, 'I', 'I', 42, 0, 0}}}, {}), "an Exif block too short for an IFD", false);
    CheckFile(Jpeg({{0xE1, {'E', 'x', 'i', 'f', 0, 0, 'I', 'I', 42, 0, 8, 0, 0, 0}}}, {}), "an Exif block of a header alone");
    CheckFile(Layout({false, {{Short(256, 1), Typed(273, 4, 0, {}), Typed(279, 4, 0, {})}}, {}, {}}), "a TIFF of no strips");
    CheckFile(BigEndianNote(), "a big-endian maker note");
    CheckFile(JpegOf({{Ascii(271, "Cam")}, {Long(513, 1), Long(514, 1)}}), "a thumbnail of one byte at offset 1");
}

}  // namespace
