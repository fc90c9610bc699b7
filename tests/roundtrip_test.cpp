#include <gtest/gtest.h>

#include "support/files.h"
#include "support/oracle.h"

namespace {

constexpr int kGeneratedFiles = 60;

// A big-endian block whose maker note holds an IFD behind a signature, with
// a value in an entry and values of two and eight bytes in the note.
Bytes BigEndianNote()
{
    const Bytes note = {'Z', 'N', 'o', 't', 'e', 0, 0, 3, 0, 1, 0, 3, 0, 0, 0, 1, 1, 2, 0, 0, 0, 2, 0, 3, 0, 0, 0, 3,
                        0, 0, 0, 0, 0, 3, 0, 5, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 1, 2, 3, 4, 5, 6, 0, 0, 0, 7, 0, 0, 0, 9};
    Bytes block = Layout({true, {{PointerTo(34665, 0)}}, {{Typed(37500, 7, uint32_t(note.size()), note)}}, {}});
    const uint32_t at = uint32_t(block.size() - note.size());  // the block's last value
    Patch32(block, at + 28, at + 48, true);
    Patch32(block, at + 40, at + 54, true);
    return Jpeg({{0xE1, ExifPayload(block)}, {0xFE, {'n'}}}, {});
}

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
    CheckFile(BigEndianNote(), "a big-endian maker note");
    CheckFile(JpegOf({{Ascii(271, "Cam")}, {Long(513, 1), Long(514, 1)}}), "a thumbnail of one byte at offset 1");
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
