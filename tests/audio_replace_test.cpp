#include <gtest/gtest.h>

#include <unistd.h>

#include <string>
#include <tuple>
#include <vector>

#include "support/fpxr_builder.h"
#include "support/memory_jpeg.h"
#include "support/temp_dir.h"
#include "zexif.h"

namespace {

using Chain = std::vector<std::tuple<int, int, int>>;

const std::vector<uint8_t> kApp0 = {'J', 'F', 'I', 'F', 0, 1, 2, 0, 0, 1, 0, 1, 0, 0};
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

struct PlanCase {
    size_t fileSize;
    std::vector<std::pair<int, int>> plan;
};

class AudioPlan : public ::testing::TestWithParam<PlanCase> {};

TEST_P(AudioPlan, ChunksStandTogetherBehindTheApp1Run)
{
    TempDir dir;
    std::string audio = dir.Write("a.wav", std::vector<uint8_t>(GetParam().fileSize, 0x55));
    MemoryJpeg jpeg;
    auto doc = jpeg.Segment(0xE0, kApp0).Segment(0xE1, kApp1).Segment(0xE1, kApp1).Segment(0xDB, {1}).Load();
    ASSERT_EQ(0, zExifSetAudioFile(doc.get(), audio.c_str()));
    EXPECT_EQ(GetParam().plan, PlanOf(*doc));
    EXPECT_EQ(4, PlanPosition(*doc));
    EXPECT_EQ(0xDB, MarkersOf(*doc)[4 + GetParam().plan.size()]->m_id);
    for (CMarker *marker : MarkersOf(*doc)) {
        if (!marker->m_audioChunk) continue;
        EXPECT_EQ(0xE2, marker->m_id);
        EXPECT_EQ(BLOCK_ON_FILE, marker->m_state);
        EXPECT_EQ(nullptr, marker->m_sig);
    }
    EXPECT_EQ(audio.c_str(), doc->m_audioPath);
}

INSTANTIATE_TEST_SUITE_P(FileSizes, AudioPlan,
                         ::testing::Values(PlanCase{63900, {{63900, 0}}}, PlanCase{63901, {{63900, 0}, {1, 63900}}},
                                           PlanCase{130000, {{63900, 0}, {63900, 63900}, {2200, 127800}}},
                                           PlanCase{0, {{0, 0}}}));

struct PlaceCase {
    const char *name;
    std::vector<uint8_t> codes;
    int position;
};

class AudioPlace : public ::testing::TestWithParam<PlaceCase> {};

TEST_P(AudioPlace, FollowsApp1ThenApp0ThenSoi)
{
    TempDir dir;
    std::string audio = dir.Write("a.wav", RiffWave(100));
    MemoryJpeg jpeg;
    for (uint8_t code : GetParam().codes) jpeg.Segment(code, code == 0xE1 ? kApp1 : kApp0);
    auto doc = jpeg.Load();
    ASSERT_EQ(0, zExifSetAudioFile(doc.get(), audio.c_str()));
    EXPECT_EQ(GetParam().position, PlanPosition(*doc));
}

INSTANTIATE_TEST_SUITE_P(Layouts, AudioPlace,
                         ::testing::Values(PlaceCase{"app1Run", {0xE0, 0xE1, 0xE1, 0xDB}, 4},
                                           PlaceCase{"app1CommentApp1", {0xE1, 0xFE, 0xE1}, 2},
                                           PlaceCase{"app0", {0xDB, 0xE0, 0xDB}, 3},
                                           PlaceCase{"soi", {0xDB, 0xC0}, 1}),
                         [](const auto &param) { return std::string(param.param.name); });

// A JPEG with an ICC profile, a three-segment audio stream and a segment of
// another index, and audio files to plan.
struct ReplaceAudio : ::testing::Test {
    TempDir dir;
    MemoryJpeg jpeg;
    std::unique_ptr<CExifDoc> doc;
    std::string first;
    std::string second;
    Chain before;

    void SetUp() override
    {
        first = dir.Write("first.wav", RiffWave(70000, 1));
        second = dir.Write("second.wav", RiffWave(1000, 2));
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

// Planned offsets lie in the audio file: read from the source they would be
// garbage, so the walks of the other exports never load them.
TEST_F(ReplaceAudio, TheOldAudioGivesWayToAPlanThatStaysUnread)
{
    ASSERT_EQ(0, zExifSetAudioFile(doc.get(), first.c_str()));
    EXPECT_EQ((std::vector<int>{200, 14}), SourceApp2Sizes());
    EXPECT_EQ(2u, PlanOf(*doc).size());
    EXPECT_EQ(1, doc->m_hasAudio);
    EXPECT_EQ(-1, zExifGetAudioFile(doc.get(), dir.Path("out.wav").c_str()));
    EXPECT_FALSE(FileExists(dir.Path("out.wav")));
    for (CMarker *marker : MarkersOf(*doc)) {
        EXPECT_TRUE(!marker->m_audioChunk || marker->m_data == nullptr);
    }
}

TEST_F(ReplaceAudio, ASecondPlanReplacesTheFirst)
{
    ASSERT_EQ(0, zExifSetAudioFile(doc.get(), first.c_str()));
    ASSERT_EQ(0, zExifSetAudioFile(doc.get(), second.c_str()));
    EXPECT_EQ((std::vector<std::pair<int, int>>{{1000, 0}}), PlanOf(*doc));
    EXPECT_EQ(second.c_str(), doc->m_audioPath);
    EXPECT_EQ((std::vector<int>{200, 14}), SourceApp2Sizes());
}

TEST_F(ReplaceAudio, RemovalDropsThePlanAndItsFile)
{
    ASSERT_EQ(0, zExifSetAudioFile(doc.get(), first.c_str()));
    EXPECT_EQ(1, zExifRemoveAudio(doc.get()));
    EXPECT_TRUE(PlanOf(*doc).empty());
    EXPECT_EQ(nullptr, doc->m_audioPath);
    EXPECT_EQ(0, zExifIsAudioExist(doc.get()));
}

TEST_F(ReplaceAudio, AnUnopenableFileChangesNothing)
{
    std::string audioPath = "/nonexistent/zexif/a.wav";
    EXPECT_EQ(-1, zExifSetAudioFile(doc.get(), audioPath.c_str()));
    EXPECT_EQ(-1, zExifSetAudioFile(doc.get(), dir.m_path.c_str()));
    EXPECT_EQ(before, ChainOf(*doc));
    EXPECT_EQ(nullptr, doc->m_audioPath);
}

// Chunk offsets are 32-bit; a larger file can't be planned without them
// wrapping around.
TEST_F(ReplaceAudio, AFileBeyondTwoGigabytesIsRefused)
{
    std::string huge = dir.Write("huge.wav", {});
    ASSERT_EQ(0, truncate(huge.c_str(), 0x80000000LL));
    EXPECT_EQ(-1, zExifSetAudioFile(doc.get(), huge.c_str()));
    EXPECT_EQ(before, ChainOf(*doc));
}

TEST_F(ReplaceAudio, ACursorOnARemovedSegmentMovesToItsPredecessor)
{
    std::vector<CMarker *> markers = MarkersOf(*doc);
    doc->MoveTo(markers[3]);
    zExifRemoveAudio(doc.get());
    EXPECT_EQ(markers[2], doc->m_cur);
    EXPECT_EQ(&markers[2]->m_next, doc->m_nextSlot);
}

TEST(TiffDocument, HasNoPlaceForAudio)
{
    TempDir dir;
    std::string audio = dir.Write("a.wav", RiffWave(100));
    CExifDoc doc;
    doc.m_format = FORMAT_TIFF;
    CNode *header = new CNode;
    header->m_id = NODE_TIFF_HEADER;
    doc.AddChild(header);
    CNode *ifd = new CNode;
    ifd->m_id = NODE_IFD;
    doc.AddSibling(ifd);

    EXPECT_EQ(0, zExifSetAudioFile(&doc, audio.c_str()));
    EXPECT_EQ(nullptr, header->m_next->m_next);
    EXPECT_EQ(nullptr, doc.m_audioPath);
    EXPECT_EQ(0, zExifIsAudioExist(&doc));
    EXPECT_EQ(-1, zExifGetAudioFile(&doc, dir.Path("out.wav").c_str()));
    EXPECT_EQ(1, zExifRemoveAudio(&doc));
}

}  // namespace
