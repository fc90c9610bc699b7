#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/byte_builder.h"
#include "support/fpxr_builder.h"
#include "support/temp_dir.h"
#include "zexif.h"

namespace {

// A JPEG file whose audio runs over three segments, with an ICC profile in
// front and a segment of another index in between.
std::vector<uint8_t> JpegFile(const std::vector<uint8_t> &audio)
{
    auto payloads = FpxrPayloads(audio, 4, {20000, 20000});
    return Concat({{0xFF, 0xD8}, JpegSegment(0xE2, IccPayload(700)), JpegSegment(0xE2, payloads[0]),
                   JpegSegment(0xE2, FpxrContinuation(5, {1, 2, 3})), JpegSegment(0xE2, payloads[1]),
                   JpegSegment(0xE2, payloads[2])});
}

std::vector<uint8_t> ExtractWithDocument(const std::string &jpeg, const std::string &out)
{
    CExifDoc *doc = zExifLoadFile(jpeg.c_str());
    EXPECT_NE(nullptr, doc);
    if (doc == nullptr) return {};
    EXPECT_EQ(0, zExifGetAudioFile(doc, out.c_str()));
    zExifDestroy(doc);
    return ReadFileBytes(out);
}

std::vector<uint8_t> ExtractWithReader(const std::string &jpeg, const std::string &out)
{
    CExifReader *reader = zRExifBeginRead(jpeg.c_str());
    EXPECT_NE(nullptr, reader);
    if (reader == nullptr) return {};
    EXPECT_EQ(0, zRExifGetAudioFile(reader, out.c_str()));
    zRExifEndRead(reader);
    return ReadFileBytes(out);
}

// Cut: how many bytes the file loses at its end, inside the last segment.
class LoadedAudio : public ::testing::TestWithParam<size_t> {};

TEST_P(LoadedAudio, BothFamiliesExtractTheSameBytes)
{
    TempDir dir;
    std::vector<uint8_t> audio = RiffWave(50000);
    std::vector<uint8_t> file = JpegFile(audio);
    file.resize(file.size() - GetParam());
    std::string jpeg = dir.Write("a.jpg", file);
    std::vector<uint8_t> expected(audio.begin(), audio.end() - long(GetParam()));
    EXPECT_EQ(expected, ExtractWithDocument(jpeg, dir.Path("doc.wav")));
    EXPECT_EQ(expected, ExtractWithReader(jpeg, dir.Path("reader.wav")));
}

INSTANTIATE_TEST_SUITE_P(Cuts, LoadedAudio, ::testing::Values(0, 1, 5000));

}  // namespace
