#include <gtest/gtest.h>

#include <unistd.h>

#include <string>
#include <tuple>
#include <vector>

#include "support/case_name.h"
#include "support/fpxr_builder.h"
#include "support/memory_jpeg.h"
#include "support/temp_dir.h"
#include "zexif.h"

namespace {

const std::vector<uint8_t> kApp1 = {'E', 'x', 'i', 'f', 0, 0, 'I', 'I', 42, 0, 8, 0, 0, 0, 0, 0, 0, 0, 0, 0};

// The planned nodes of the chain, as (size, offset) in the audio file.
std::vector<std::pair<int, int>> PlanOf(const CExifDoc &doc)
{
    std::vector<std::pair<int, int>> plan;
    for (CMarker *marker : MarkersOf(doc)) {
        if (marker->m_audioChunk) plan.emplace_back(marker->m_size, marker->m_offset);
    }
    return plan;
}

// Where the first planned node stands in the chain, -1 when there is none.
int PlanPosition(const CExifDoc &doc)
{
    std::vector<CMarker *> markers = MarkersOf(doc);
    for (size_t i = 0; i < markers.size(); i++) {
        if (markers[i]->m_audioChunk) return int(i);
    }
    return -1;
}

// A layout of segments, an audio file's size, and the plan the file gets:
// where it stands and its chunks.
struct PlanCase {
    const char *name;
    std::vector<uint8_t> codes;
    size_t fileSize;
    int position;
    std::vector<std::pair<int, int>> plan;
};

class AudioPlan : public ::testing::TestWithParam<PlanCase> {};

// The chunks stand together behind the run of APP1 segments, else APP0, else
// SOI, as APP2 nodes.
TEST_P(AudioPlan, ChunksStandTogetherBehindTheApp1Run)
{
    TempDir dir;
    std::string audio = dir.Write("a.wav", std::vector<uint8_t>(GetParam().fileSize, 0x55));
    MemoryJpeg jpeg;
    for (uint8_t code : GetParam().codes) jpeg.Segment(code, kApp1);
    auto doc = jpeg.Load();
    ASSERT_EQ(0, zExifSetAudioFile(doc.get(), audio.c_str()));
    EXPECT_EQ(GetParam().plan, PlanOf(*doc));
    EXPECT_EQ(GetParam().position, PlanPosition(*doc));
    for (size_t i = 0; i < GetParam().plan.size(); i++)
        EXPECT_TRUE(MarkersOf(*doc)[GetParam().position + i]->m_audioChunk);
    for (CMarker *marker : MarkersOf(*doc)) EXPECT_TRUE(!marker->m_audioChunk || marker->m_id == 0xE2);
    EXPECT_EQ(audio.c_str(), doc->m_audioPath);
}

const std::vector<uint8_t> kApp1Run = {0xE0, 0xE1, 0xE1, 0xDB};

INSTANTIATE_TEST_SUITE_P(
    Layouts, AudioPlan,
    ::testing::Values(PlanCase{"OneChunk", kApp1Run, 63900, 4, {{63900, 0}}},
                      PlanCase{"OneByteMore", kApp1Run, 63901, 4, {{63900, 0}, {1, 63900}}},
                      PlanCase{"ThreeChunks", kApp1Run, 130000, 4, {{63900, 0}, {63900, 63900}, {2200, 127800}}},
                      PlanCase{"EmptyFile", kApp1Run, 0, 4, {{0, 0}}},
                      PlanCase{"FirstApp1Run", {0xE1, 0xFE, 0xE1}, 100, 2, {{100, 0}}},
                      PlanCase{"BehindApp0", {0xDB, 0xE0, 0xDB}, 100, 3, {{100, 0}}},
                      PlanCase{"BehindSoi", {0xDB, 0xC0}, 100, 1, {{100, 0}}}),
    CaseName());

// A JPEG with an ICC profile, a three-segment audio stream and a segment of
// another index, and audio files to plan.
struct ReplaceAudio : ::testing::Test {
    TempDir dir;
    MemoryJpeg jpeg;
    std::unique_ptr<CExifDoc> doc;
    std::string first = dir.Write("first.wav", RiffWave(70000, 1));
    std::string second = dir.Write("second.wav", RiffWave(1000, 2));
    std::vector<std::tuple<int, int, int>> before;

    void SetUp() override
    {
        jpeg.Segment(0xE1, kApp1).Segment(0xE2, IccPayload(200));
        jpeg.Segments(0xE2, FpxrPayloads(RiffWave(5000), 4, {2000, 2000})).Segment(0xE2, FpxrContinuation(9, {1}));
        doc = jpeg.Load();
        before = ChainOf(*doc);
    }

    std::vector<int> SourceApp2Sizes() const
    {
        std::vector<int> sizes;
        for (CMarker *marker : MarkersOf(*doc)) {
            if (marker->m_id == 0xE2 && !marker->m_audioChunk) sizes.push_back(marker->m_size);
        }
        return sizes;
    }
};

// The old audio gives way to the plan, and a second plan to the first; the
// planned offsets lie in the audio file, so nothing reads them from the
// source. Removal drops the plan and its file.
TEST_F(ReplaceAudio, APlanReplacesTheAudioAndTheFormerPlan)
{
    ASSERT_EQ(0, zExifSetAudioFile(doc.get(), first.c_str()));
    EXPECT_EQ((std::vector<int>{200, 14}), SourceApp2Sizes());
    EXPECT_EQ(2u, PlanOf(*doc).size());
    EXPECT_EQ(1, doc->m_hasAudio);
    EXPECT_EQ(-1, zExifGetAudioFile(doc.get(), dir.Path("out.wav").c_str()));
    EXPECT_FALSE(FileExists(dir.Path("out.wav")));
    for (CMarker *marker : MarkersOf(*doc)) EXPECT_TRUE(!marker->m_audioChunk || marker->m_data == nullptr);

    ASSERT_EQ(0, zExifSetAudioFile(doc.get(), second.c_str()));
    EXPECT_EQ((std::vector<std::pair<int, int>>{{1000, 0}}), PlanOf(*doc));
    EXPECT_EQ(second.c_str(), doc->m_audioPath);
    EXPECT_EQ((std::vector<int>{200, 14}), SourceApp2Sizes());

    EXPECT_EQ(1, zExifRemoveAudio(doc.get()));
    EXPECT_TRUE(PlanOf(*doc).empty());
    EXPECT_EQ(nullptr, doc->m_audioPath);
    EXPECT_EQ(0, zExifIsAudioExist(doc.get()));
}

// A file that can't be opened changes nothing, and neither does one beyond
// 2 GiB, whose chunk offsets would wrap around.
TEST_F(ReplaceAudio, AFileThatCantBePlannedChangesNothing)
{
    std::string huge = dir.Write("huge.wav", {});
    ASSERT_EQ(0, truncate(huge.c_str(), 0x80000000LL));
    for (const std::string &path : {std::string("/nonexistent/zexif/a.wav"), dir.m_path, huge}) {
        EXPECT_EQ(-1, zExifSetAudioFile(doc.get(), path.c_str())) << path;
    }
    EXPECT_EQ(before, ChainOf(*doc));
    EXPECT_EQ(nullptr, doc->m_audioPath);
}

TEST_F(ReplaceAudio, ACursorOnARemovedSegmentMovesToItsPredecessor)
{
    std::vector<CMarker *> markers = MarkersOf(*doc);
    doc->MoveTo(markers[3]);
    zExifRemoveAudio(doc.get());
    EXPECT_EQ(markers[2], doc->m_cur);
    EXPECT_EQ(&markers[2]->m_next, doc->m_nextSlot);
}

}  // namespace
