#include <gtest/gtest.h>

#include "support/files.h"
#include "support/oracle.h"

namespace {

constexpr int kGeneratedFiles = 60;

TEST(RealFiles, LoadReadersAndSaveAgreeWithARawReading)
{
    SKIP_WITHOUT_SAMPLES();
    for (const std::string &path : Samples()) CheckFile(ReadFile(path), ShortName(path));
}

TEST(RealFiles, EditsChangeWhatTheyAskAndNothingElse)
{
    SKIP_WITHOUT_SAMPLES();
    for (const std::string &path : Samples()) CheckEdits(ReadFile(path), ShortName(path));
}

TEST(GeneratedFiles, LoadReadersAndSaveAgreeWithARawReading)
{
    for (int seed = 1; seed <= kGeneratedFiles; seed++) {
        std::mt19937 rng{uint32_t(seed)};
        CheckFile(CameraJpeg(Layout(RandomBlock(rng, false)), rng), "generated JPEG " + std::to_string(seed));
        CheckFile(Layout(RandomBlock(rng, true)), "generated TIFF " + std::to_string(seed));
    }
    CheckFile(Jpeg({{0xE1, {'E', 'x', 'i', 'f', 0, 0, 'I', 'I', 42, 0, 0}}}, {}), "an Exif block too short for an IFD");
    CheckFile(Jpeg({{0xE1, {'E', 'x', 'i', 'f', 0, 0, 'I', 'I', 42, 0, 8, 0, 0, 0}}}, {}), "an Exif block of a header alone");
    CheckFile(Layout({false, {{Short(256, 1), Typed(273, 4, 0, {}), Typed(279, 4, 0, {})}}, {}, {}}), "a TIFF of no strips");
}

TEST(GeneratedFiles, EditsChangeWhatTheyAskAndNothingElse)
{
    for (int seed = 1; seed <= kGeneratedFiles; seed++) {
        std::mt19937 rng{uint32_t(seed)};
        CheckEdits(CameraJpeg(Layout(RandomBlock(rng, false)), rng), "generated JPEG " + std::to_string(seed));
        CheckEdits(Layout(RandomBlock(rng, true)), "generated TIFF " + std::to_string(seed));
    }
    CheckEdits(JpegOf({}), "JPEG without Exif");
}

}  // namespace
