#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/fpxr_builder.h"
#include "support/memory_jpeg.h"
#include "support/temp_dir.h"
#include "zexif.h"

namespace {

const std::vector<uint8_t> kApp0 = {'J', 'F', 'I', 'F', 0, 1, 2, 0, 0, 1, 0, 1, 0, 0};

// Audio cut into segments of the given leading sizes, with an ICC profile in
// front and a segment of another index between every two audio segments.
struct Split {
    const char *name;
    size_t audioSize;
    std::vector<size_t> leading;
};

class AudioOverSegments : public ::testing::TestWithParam<Split> {
protected:
    void SetUp() override
    {
        audio = RiffWave(GetParam().audioSize);
        jpeg.Segment(0xE0, kApp0).Segment(0xE2, IccPayload(300));
        for (const auto &payload : FpxrPayloads(audio, 4, GetParam().leading)) {
            jpeg.Segment(0xE2, payload).Segment(0xE2, FpxrContinuation(7, {9, 9, 9}));
        }
        jpeg.Segment(0xDB, {0, 1, 2});
        doc = jpeg.Load();
    }

    std::vector<uint8_t> audio;
    MemoryJpeg jpeg;
    std::unique_ptr<CExifDoc> doc;
    TempDir dir;
};

TEST_P(AudioOverSegments, ExtractsTheFileByteForByte)
{
    std::string out = dir.Path("voice.wav");
    EXPECT_EQ(1, zExifIsAudioExist(doc.get()));
    ASSERT_EQ(0, zExifGetAudioFile(doc.get(), out.c_str()));
    EXPECT_EQ(audio, ReadFileBytes(out));
    for (CMarker *marker : MarkersOf(*doc)) EXPECT_EQ(nullptr, marker->m_data);
}

TEST_P(AudioOverSegments, RemovalLeavesTheOtherSegments)
{
    EXPECT_EQ(1, zExifRemoveAudio(doc.get()));
    std::vector<int> sizes;
    for (CMarker *marker : MarkersOf(*doc)) {
        if (marker->m_id == 0xE2) sizes.push_back(marker->m_size);
    }
    std::vector<int> expected(GetParam().leading.size() + 1, 16);
    expected.insert(expected.begin(), 300);
    EXPECT_EQ(expected, sizes);
    EXPECT_EQ(0, zExifIsAudioExist(doc.get()));
    EXPECT_EQ(-1, zExifGetAudioFile(doc.get(), dir.Path("none.wav").c_str()));
}

INSTANTIATE_TEST_SUITE_P(Streams, AudioOverSegments,
                         ::testing::Values(Split{"one", 5000, {}}, Split{"two", 5000, {3000}},
                                           Split{"three", 9000, {4000, 4000}}),
                         [](const auto &param) { return std::string(param.param.name); });

TEST(AudioStreams, OnlyTheFirstOfTwoIsExtractedAndRemoved)
{
    std::vector<uint8_t> first = RiffWave(3000, 1);
    std::vector<uint8_t> second = RiffWave(3000, 2);
    MemoryJpeg jpeg;
    jpeg.Segments(0xE2, FpxrPayloads(first, 4, {1000})).Segments(0xE2, FpxrPayloads(second, 5, {1000}));
    auto doc = jpeg.Load();
    TempDir dir;
    ASSERT_EQ(0, zExifGetAudioFile(doc.get(), dir.Path("a.wav").c_str()));
    EXPECT_EQ(first, ReadFileBytes(dir.Path("a.wav")));

    zExifRemoveAudio(doc.get());
    ASSERT_EQ(0, zExifGetAudioFile(doc.get(), dir.Path("b.wav").c_str()));
    EXPECT_EQ(second, ReadFileBytes(dir.Path("b.wav")));
}

// The second stream carries the same index: appending its continuation would
// mix two recordings into one file.
TEST(AudioStreams, ASecondHeadEndsAnUnfinishedFirstStream)
{
    std::vector<uint8_t> first = RiffWave(3000, 1);
    std::vector<uint8_t> second = RiffWave(3000, 2);
    auto firstPayloads = FpxrPayloads(first, 4, {1000, 1000});
    firstPayloads.pop_back();
    MemoryJpeg jpeg;
    jpeg.Segments(0xE2, firstPayloads).Segments(0xE2, FpxrPayloads(second, 4, {1000}));
    auto doc = jpeg.Load();
    TempDir dir;
    ASSERT_EQ(0, zExifGetAudioFile(doc.get(), dir.Path("a.wav").c_str()));
    EXPECT_EQ(std::vector<uint8_t>(first.begin(), first.begin() + 2000), ReadFileBytes(dir.Path("a.wav")));
}

TEST(AudioStreams, StreamsInOneSegmentAreAllRemoved)
{
    MemoryJpeg jpeg;
    jpeg.Segment(0xE2, FpxrHead(4, RiffWave(100, 1)))
        .Segment(0xE2, IccPayload(40, 4))
        .Segments(0xE2, FpxrPayloads(RiffWave(300, 2), 5, {100}))
        .Segment(0xE2, FpxrContinuation(5, {1}));
    auto doc = jpeg.Load();
    zExifRemoveAudio(doc.get());
    EXPECT_EQ((std::vector<std::tuple<int, int, int>>{{0xD8, 0, 0}, {0xE2, 40, 151}, {0xE2, 14, 557}, {0xD9, 0, 0}}),
              ChainOf(*doc));
}

// A RIFF size with its top bit set reads as negative: the stream ends at its
// head instead of swallowing every later segment of the index.
TEST(AudioStreams, RiffSizeWithTopBitSetEndsAtTheHead)
{
    std::vector<uint8_t> audio = RiffWave(2000);
    audio[7] = 0x80;
    MemoryJpeg jpeg;
    jpeg.Segments(0xE2, FpxrPayloads(audio, 4, {1000}));
    auto doc = jpeg.Load();
    TempDir dir;
    ASSERT_EQ(0, zExifGetAudioFile(doc.get(), dir.Path("a.wav").c_str()));
    EXPECT_EQ(1000u, ReadFileBytes(dir.Path("a.wav")).size());
    zExifRemoveAudio(doc.get());
    ASSERT_EQ(3u, ChainOf(*doc).size());
    EXPECT_EQ(1000 + 13, std::get<1>(ChainOf(*doc)[1]));
}

// Payloads that can't hold the fields a head needs, or hold the wrong ones.
class NotAHead : public ::testing::TestWithParam<std::vector<uint8_t>> {};

TEST_P(NotAHead, IsNoAudio)
{
    MemoryJpeg jpeg;
    jpeg.Segment(0xE2, GetParam());
    auto doc = jpeg.Load();
    TempDir dir;
    EXPECT_EQ(0, zExifIsAudioExist(doc.get()));
    EXPECT_EQ(-1, zExifGetAudioFile(doc.get(), dir.Path("a.wav").c_str()));
    EXPECT_FALSE(FileExists(dir.Path("a.wav")));
    zExifRemoveAudio(doc.get());
    EXPECT_EQ(3u, ChainOf(*doc).size());
}

std::vector<uint8_t> HeadOf(size_t size)
{
    std::vector<uint8_t> head = FpxrHead(4, RiffWave(100));
    head.resize(size);
    return head;
}

std::vector<uint8_t> HeadWithType(uint8_t type)
{
    std::vector<uint8_t> head = HeadOf(141);
    head[6] = type;
    return head;
}

INSTANTIATE_TEST_SUITE_P(Payloads, NotAHead,
                         ::testing::Values(HeadOf(48), HeadOf(44), HeadOf(9), HeadOf(1), HeadWithType(1),
                                           IccPayload(600, 4)));

TEST(AudioStreams, ContinuationsTooShortForAHeaderArePassedOver)
{
    std::vector<uint8_t> audio = RiffWave(2000);
    auto payloads = FpxrPayloads(audio, 4, {1000});
    std::vector<uint8_t> stub = FpxrContinuation(4, {});
    MemoryJpeg jpeg;
    jpeg.Segment(0xE2, payloads[0])
        .Segment(0xE2, std::vector<uint8_t>(stub.begin(), stub.begin() + 12))
        .Segment(0xE2, stub)
        .Segment(0xE2, payloads[1]);
    auto doc = jpeg.Load();
    TempDir dir;
    ASSERT_EQ(0, zExifGetAudioFile(doc.get(), dir.Path("a.wav").c_str()));
    EXPECT_EQ(audio, ReadFileBytes(dir.Path("a.wav")));
}

// Bytes that the file doesn't hold are not made up as zeros.
TEST(AudioStreams, ASegmentCutOffByTheEndOfTheFileGivesWhatIsThere)
{
    std::vector<uint8_t> audio = RiffWave(3000);
    MemoryJpeg jpeg;
    jpeg.Segments(0xE2, FpxrPayloads(audio, 4, {1000, 1000})).CutEnd(300);
    auto doc = jpeg.Load();
    TempDir dir;
    ASSERT_EQ(0, zExifGetAudioFile(doc.get(), dir.Path("a.wav").c_str()));
    EXPECT_EQ(std::vector<uint8_t>(audio.begin(), audio.end() - 300), ReadFileBytes(dir.Path("a.wav")));

    MemoryJpeg cutHead;
    cutHead.Segment(0xE2, FpxrHead(4, RiffWave(100))).CutEnd(100);
    auto headDoc = cutHead.Load();
    EXPECT_EQ(0, zExifIsAudioExist(headDoc.get()));
}

TEST(AudioOutput, WithoutAudioAnExistingFileIsLeftAlone)
{
    MemoryJpeg jpeg;
    auto doc = jpeg.Segment(0xE2, IccPayload(100)).Load();
    TempDir dir;
    std::string out = dir.Write("keep.wav", {1, 2, 3});
    EXPECT_EQ(-1, zExifGetAudioFile(doc.get(), out.c_str()));
    EXPECT_EQ((std::vector<uint8_t>{1, 2, 3}), ReadFileBytes(out));
    EXPECT_EQ(2, doc->m_audioState);
}

TEST(AudioOutput, FailuresToOpenOrWriteAreReported)
{
    MemoryJpeg jpeg;
    auto doc = jpeg.Segments(0xE2, FpxrPayloads(RiffWave(3000), 4, {1000})).Load();
    EXPECT_EQ(-1, zExifGetAudioFile(doc.get(), "/nonexistent/zexif/a.wav"));
    EXPECT_EQ(0, doc->m_audioState);
    EXPECT_EQ(-1, zExifGetAudioFile(doc.get(), "/dev/full"));
}

}  // namespace
