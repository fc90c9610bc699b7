#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "support/case_name.h"
#include "support/fpxr_builder.h"
#include "support/memory_jpeg.h"
#include "support/temp_dir.h"
#include "zexif.h"

namespace {

// The audio that zExifGetAudioFile writes; nothing when it fails.
std::vector<uint8_t> Extract(CExifDoc *doc)
{
    TempDir dir;
    std::string out = dir.Path("a.wav");
    return zExifGetAudioFile(doc, out.c_str()) == 0 ? ReadFileBytes(out) : std::vector<uint8_t>{};
}

// Audio cut into segments of the given leading sizes, with an ICC profile in
// front and a segment of another index between every two audio segments.
struct Split {
    const char *name;
    size_t audioSize;
    std::vector<size_t> leading;
};

class AudioOverSegments : public ::testing::TestWithParam<Split> {};

// The file comes out byte for byte without a payload kept in memory; its
// removal takes the audio segments and leaves the others.
TEST_P(AudioOverSegments, IsExtractedAndRemovedAlone)
{
    std::vector<uint8_t> audio = RiffWave(GetParam().audioSize);
    MemoryJpeg jpeg;
    jpeg.Segment(0xE0, {'J', 'F', 'I', 'F', 0}).Segment(0xE2, IccPayload(300));
    for (const auto &payload : FpxrPayloads(audio, 4, GetParam().leading)) {
        jpeg.Segment(0xE2, payload).Segment(0xE2, FpxrContinuation(7, {9, 9, 9}));
    }
    auto doc = jpeg.Segment(0xDB, {0, 1, 2}).Load();
    EXPECT_EQ(1, zExifIsAudioExist(doc.get()));
    EXPECT_EQ(audio, Extract(doc.get()));
    for (CMarker *marker : MarkersOf(*doc)) EXPECT_EQ(nullptr, marker->m_data);

    EXPECT_EQ(1, zExifRemoveAudio(doc.get()));
    std::vector<int> sizes;
    for (CMarker *marker : MarkersOf(*doc)) {
        if (marker->m_id == 0xE2) sizes.push_back(marker->m_size);
    }
    std::vector<int> expected(GetParam().leading.size() + 1, 16);
    expected.insert(expected.begin(), 300);
    EXPECT_EQ(expected, sizes);
    EXPECT_EQ(0, zExifIsAudioExist(doc.get()));
    EXPECT_TRUE(Extract(doc.get()).empty());
}

INSTANTIATE_TEST_SUITE_P(Streams, AudioOverSegments,
                         ::testing::Values(Split{"one", 5000, {}}, Split{"two", 5000, {3000}},
                                           Split{"three", 9000, {4000, 4000}}),
                         CaseName());

// Of two streams only the first is extracted and removed; a second head of
// the same index ends an unfinished first stream, instead of mixing two
// recordings into one file.
TEST(AudioStreams, TheFirstStreamIsTheAudio)
{
    std::vector<uint8_t> first = RiffWave(3000, 1);
    std::vector<uint8_t> second = RiffWave(3000, 2);
    MemoryJpeg jpeg;
    jpeg.Segments(0xE2, FpxrPayloads(first, 4, {1000})).Segments(0xE2, FpxrPayloads(second, 5, {1000}));
    auto doc = jpeg.Load();
    EXPECT_EQ(first, Extract(doc.get()));
    zExifRemoveAudio(doc.get());
    EXPECT_EQ(second, Extract(doc.get()));

    auto unfinished = FpxrPayloads(first, 4, {1000, 1000});
    unfinished.pop_back();
    MemoryJpeg sameIndex;
    auto mixed = sameIndex.Segments(0xE2, unfinished).Segments(0xE2, FpxrPayloads(second, 4, {1000})).Load();
    EXPECT_EQ(std::vector<uint8_t>(first.begin(), first.begin() + 2000), Extract(mixed.get()));
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
    auto doc = jpeg.Segments(0xE2, FpxrPayloads(audio, 4, {1000})).Load();
    EXPECT_EQ(1000u, Extract(doc.get()).size());
    zExifRemoveAudio(doc.get());
    ASSERT_EQ(3u, ChainOf(*doc).size());
    EXPECT_EQ(1000 + 13, std::get<1>(ChainOf(*doc)[1]));
}

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
    EXPECT_EQ(audio, Extract(jpeg.Load().get()));
}

// Payloads that can't hold the fields a head needs, or hold the wrong ones,
// and a head that the end of the file cuts by so many bytes.
using Payload = std::pair<std::vector<uint8_t>, size_t>;

class NotAHead : public ::testing::TestWithParam<Payload> {};

TEST_P(NotAHead, IsNoAudio)
{
    MemoryJpeg jpeg;
    auto doc = jpeg.Segment(0xE2, GetParam().first).CutEnd(GetParam().second).Load();
    EXPECT_EQ(0, zExifIsAudioExist(doc.get()));
    EXPECT_TRUE(Extract(doc.get()).empty());
    zExifRemoveAudio(doc.get());
    EXPECT_EQ(3u, ChainOf(*doc).size());
}

Payload Head(size_t size, uint8_t type = 2, size_t cut = 0)
{
    std::vector<uint8_t> head = FpxrHead(4, RiffWave(100));
    head[6] = type;
    head.resize(size);
    return {head, cut};
}

INSTANTIATE_TEST_SUITE_P(Payloads, NotAHead,
                         ::testing::Values(Head(48), Head(44), Head(9), Head(1), Head(141, 1), Head(141, 2, 100),
                                           Payload{IccPayload(600, 4), 0}));

// Without audio an existing file is left alone; a file that can't be opened
// or written is reported.
TEST(AudioOutput, FailuresLeaveWhatIsThere)
{
    MemoryJpeg icc;
    auto none = icc.Segment(0xE2, IccPayload(100)).Load();
    TempDir dir;
    std::string out = dir.Write("keep.wav", {1, 2, 3});
    EXPECT_EQ(-1, zExifGetAudioFile(none.get(), out.c_str()));
    EXPECT_EQ((std::vector<uint8_t>{1, 2, 3}), ReadFileBytes(out));
    EXPECT_EQ(2, none->m_audioState);

    MemoryJpeg jpeg;
    auto doc = jpeg.Segments(0xE2, FpxrPayloads(RiffWave(3000), 4, {1000})).Load();
    EXPECT_EQ(-1, zExifGetAudioFile(doc.get(), "/nonexistent/zexif/a.wav"));
    EXPECT_EQ(0, doc->m_audioState);
    EXPECT_EQ(-1, zExifGetAudioFile(doc.get(), "/dev/full"));
}

}  // namespace
