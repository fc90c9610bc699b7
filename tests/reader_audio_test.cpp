#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "reader/reader.h"
#include "support/byte_builder.h"
#include "support/fpxr_builder.h"
#include "support/reader_file.h"
#include "support/tiff_layout.h"

namespace {

// A JPEG whose APP2 segments carry the given FPXR payloads, in this order.
std::vector<uint8_t> JpegWith(const std::vector<std::vector<uint8_t>> &payloads)
{
    std::vector<uint8_t> bytes = {0xFF, 0xD8};
    for (const auto &payload : payloads) {
        std::vector<uint8_t> segment = JpegSegment(0xE2, payload);
        bytes.insert(bytes.end(), segment.begin(), segment.end());
    }
    std::vector<uint8_t> rest = JpegFile({});
    bytes.insert(bytes.end(), rest.begin() + 2, rest.end());
    return bytes;
}

std::vector<std::vector<uint8_t>> Join(std::initializer_list<std::vector<std::vector<uint8_t>>> groups)
{
    std::vector<std::vector<uint8_t>> out;
    for (const auto &group : groups) out.insert(out.end(), group.begin(), group.end());
    return out;
}

class Audio : public ::testing::Test {
protected:
    int Extract(const std::vector<uint8_t> &jpeg)
    {
        file = std::make_unique<ReaderFile>(jpeg);
        out = file->m_dir.Path("voice.wav");
        return zRExifGetAudioFile(file->get(), out.c_str());
    }

    std::unique_ptr<ReaderFile> file;
    std::string out;
};

TEST_F(Audio, ThreeSegmentsGiveTheRiffFile)
{
    std::vector<uint8_t> audio = RiffWave(3000);
    ASSERT_EQ(0, Extract(JpegWith(FpxrPayloads(audio, 4, {1000, 1000}))));
    EXPECT_EQ(audio, ReadFileBytes(out));
    EXPECT_EQ(1, zRExifIsAudioExist(file->get()));
}

TEST_F(Audio, AudioInTheHeadAloneEndsTheWalkThere)
{
    std::vector<uint8_t> audio = RiffWave(500);
    ASSERT_EQ(0, Extract(JpegWith({FpxrHead(4, audio), FpxrContinuation(4, {1, 2, 3})})));
    EXPECT_EQ(audio, ReadFileBytes(out));
    EXPECT_EQ(1, file->get()->m_hasAudio);
}

TEST_F(Audio, SegmentsOfAnotherIndexAreLeftOut)
{
    std::vector<uint8_t> audio = RiffWave(3000);
    auto parts = FpxrPayloads(audio, 4, {1000, 1000});
    auto mixed = JpegWith({parts[0], FpxrContinuation(7, {9, 9}), parts[1], FpxrContinuation(5, {8}), parts[2]});
    ASSERT_EQ(0, Extract(mixed));
    EXPECT_EQ(audio, ReadFileBytes(out));
}

TEST_F(Audio, ASecondCallWritesTheSameFileAgain)
{
    std::vector<uint8_t> audio = RiffWave(2000);
    ASSERT_EQ(0, Extract(JpegWith(FpxrPayloads(audio, 4, {900}))));
    ASSERT_EQ(0, zRExifGetAudioFile(file->get(), out.c_str()));
    EXPECT_EQ(audio, ReadFileBytes(out));
}

// Another FPXR stream may come first; a head behind it still counts.
TEST_F(Audio, AHeadThatIsNotFirstIsFound)
{
    std::vector<uint8_t> notAudio = FpxrContinuation(1, std::vector<uint8_t>(60, 'x'));
    file = std::make_unique<ReaderFile>(JpegWith({notAudio, notAudio, FpxrHead(4, RiffWave(100))}));
    EXPECT_EQ(1, zRExifIsAudioExist(file->get()));
}

// A RIFF size with its top bit set leaves nothing outstanding after the head.
TEST_F(Audio, ANegativeRiffSizeEndsAtTheHead)
{
    std::vector<uint8_t> audio = RiffWave(1000);
    audio[7] = 0x80;
    auto parts = FpxrPayloads(audio, 4, {400});
    ASSERT_EQ(0, Extract(JpegWith(parts)));
    EXPECT_EQ(std::vector<uint8_t>(audio.begin(), audio.begin() + 400), ReadFileBytes(out));
}

TEST_F(Audio, WithoutAHeadNoFileIsMade)
{
    EXPECT_EQ(-1, Extract(JpegWith({FpxrContinuation(4, {1, 2, 3}), FpxrContinuation(4, {4})})));
    EXPECT_EQ(0, zRExifIsAudioExist(file->get()));
    EXPECT_FALSE(FileExists(out));
}

TEST_F(Audio, ATiffHasNone)
{
    TiffLayout layout;
    layout.AddIfd({Ascii(271, "Make")});
    file = std::make_unique<ReaderFile>(layout.Build(), "t.tif");
    EXPECT_EQ(0, zRExifIsAudioExist(file->get()));
    EXPECT_EQ(-1, zRExifGetAudioFile(file->get(), file->m_dir.Path("voice.wav").c_str()));
}

TEST_F(Audio, AnOutputThatCannotBeOpenedOrWrittenFails)
{
    file = std::make_unique<ReaderFile>(JpegWith(FpxrPayloads(RiffWave(300), 4, {})));
    EXPECT_EQ(-1, zRExifGetAudioFile(file->get(), file->m_dir.Path("missing/voice.wav").c_str()));
    // A device that takes nothing stands for a full disk.
    EXPECT_EQ(-1, zRExifGetAudioFile(file->get(), "/dev/full"));
}

// A second head while the first stream is open is not mixed in: the first
// stream is the audio, as far as it came.
TEST_F(Audio, ASecondHeadEndsTheFirstStream)
{
    std::vector<uint8_t> first = RiffWave(3000, 1);
    auto firstParts = FpxrPayloads(first, 4, {1000, 1000});
    auto second = FpxrPayloads(RiffWave(1500, 2), 4, {1000});
    ASSERT_EQ(0, Extract(JpegWith(Join({{firstParts[0], firstParts[1]}, second, {firstParts[2]}}))));
    EXPECT_EQ(std::vector<uint8_t>(first.begin(), first.begin() + 2000), ReadFileBytes(out));
}

// Segments shorter than a header have no index to trust and are passed over,
// never read past their end.
TEST_F(Audio, ShortSegmentsAreNotReadPastTheirEnd)
{
    std::vector<uint8_t> audio = RiffWave(2000);
    auto parts = FpxrPayloads(audio, 4, {1000});
    std::vector<uint8_t> stub = {'F', 'P', 'X', 'R', 0, 0, 2, 0};
    std::vector<uint8_t> shortHead(parts[0].begin(), parts[0].begin() + 45);
    ASSERT_EQ(0, Extract(JpegWith({shortHead, parts[0], stub, parts[1]})));
    EXPECT_EQ(audio, ReadFileBytes(out));
}

// A file that ends inside the last segment: only the bytes that came count.
TEST_F(Audio, ASegmentCutByTheEndOfTheFileGivesWhatCame)
{
    std::vector<uint8_t> audio = RiffWave(3000);
    std::vector<uint8_t> bytes = JpegWith(FpxrPayloads(audio, 4, {1000, 1000}));
    size_t tail = JpegFile({}).size() - 2;
    bytes.resize(bytes.size() - tail - 300);
    ASSERT_EQ(0, Extract(bytes));
    EXPECT_EQ(std::vector<uint8_t>(audio.begin(), audio.end() - 300), ReadFileBytes(out));
}

TEST_F(Audio, AudioComesOutOfAFullTable)
{
    std::vector<uint8_t> audio = RiffWave(3000);
    auto payloads = FpxrPayloads(audio, 4, {1000, 1000});
    payloads.resize(READER_MAX_FPXR_SEGMENTS + 1, FpxrContinuation(9, {1}));
    ASSERT_EQ(0, Extract(JpegWith(payloads)));
    EXPECT_EQ(audio, ReadFileBytes(out));
}

}  // namespace
