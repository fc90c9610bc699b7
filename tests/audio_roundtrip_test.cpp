#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "support/byte_builder.h"
#include "support/fpxr_builder.h"
#include "support/jpeg_files.h"
#include "support/samples.h"
#include "support/temp_dir.h"
#include "zexif.h"

namespace {

std::vector<JpegSegmentView> FpxrSegmentsOf(const std::vector<uint8_t> &file)
{
    std::vector<JpegSegmentView> fpxr;
    for (JpegSegmentView &segment : SegmentsOf(file)) {
        if (segment.code == 0xE2 && std::string(segment.payload.begin(), segment.payload.begin() + 4) == "FPXR") {
            fpxr.push_back(std::move(segment));
        }
    }
    return fpxr;
}

std::vector<uint8_t> ExifBlock()
{
    ByteBuilder tiff;
    tiff.TiffHeader().U16(1).Entry(271, 2, 4, 0x00636261).U32(0);
    return ExifApp1(tiff.m_bytes);
}

// A JPEG with a voice annotation of its own between two ICC profiles; the
// one behind is read from the source in a save, not from the audio file.
std::vector<uint8_t> JpegWithAudio()
{
    std::vector<uint8_t> file = Concat({{0xFF, 0xD8}, ExifBlock(), JpegSegment(0xE2, IccPayload(500))});
    for (const auto &payload : FpxrPayloads(RiffWave(3000, 7), 4, {1000})) {
        file = Concat({file, JpegSegment(0xE2, payload)});
    }
    return Concat({file,
                   JpegSegment(0xE2, IccPayload(400, 2)),
                   JpegSegment(0xDB, std::vector<uint8_t>(65, 1)),
                   JpegSegment(0xDA, {1, 1, 0, 0, 63, 0}),
                   {0x12, 0x34, 0xFF, 0x00, 0x56, 0xFF, 0xD9}});
}

std::vector<uint8_t> ExtractWithDocument(const std::string &jpeg, const std::string &out)
{
    CExifDoc *doc = zExifLoadFile(jpeg.c_str());
    EXPECT_NE(nullptr, doc);
    if (doc == nullptr) return {};
    EXPECT_EQ(1, zExifIsAudioExist(doc));
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

struct AudioRoundTrip : ::testing::Test {
    TempDir dir;
    std::vector<uint8_t> audio = RiffWave(100000);
    std::string audioPath = dir.Write("voice.wav", audio);
    std::string source = dir.Write("source.jpg", JpegWithAudio());
    std::string saved = dir.Path("saved.jpg");

    // Loads the source, lets edit change the document, saves it.
    template <typename Edit>
    void SaveEdited(Edit edit)
    {
        CExifDoc *doc = zExifLoadFile(source.c_str());
        ASSERT_NE(nullptr, doc);
        edit(doc);
        EXPECT_EQ(0, zExifSaveFile(doc, saved.c_str()));
        zExifDestroy(doc);
    }
};

TEST_F(AudioRoundTrip, ReplacedAudioIsWrittenInSegmentsAndReadBackByBothFamilies)
{
    SaveEdited([&](CExifDoc *doc) { ASSERT_EQ(0, zExifSetAudioFile(doc, audioPath.c_str())); });
    std::vector<uint8_t> file = ReadFileBytes(saved);

    std::vector<JpegSegmentView> fpxr = FpxrSegmentsOf(file);
    ASSERT_EQ(2u, fpxr.size());
    EXPECT_EQ(63941u, fpxr[0].payload.size());
    EXPECT_EQ(36113u, fpxr[1].payload.size());
    EXPECT_EQ(std::vector<uint8_t>(audio.begin(), audio.begin() + 4),
              std::vector<uint8_t>(fpxr[0].payload.begin() + 41, fpxr[0].payload.begin() + 45));
    // Index 4 in both, the offset field the chunk's place in the audio file.
    EXPECT_EQ((std::vector<uint8_t>{0, 4, 0, 0, 0, 0}),
              std::vector<uint8_t>(fpxr[0].payload.begin() + 7, fpxr[0].payload.begin() + 13));
    EXPECT_EQ((std::vector<uint8_t>{0, 4, 0, 0, 0xF9, 0x9C}),
              std::vector<uint8_t>(fpxr[1].payload.begin() + 7, fpxr[1].payload.begin() + 13));

    std::vector<JpegSegmentView> segments = SegmentsOf(file);
    ASSERT_GE(segments.size(), 5u);
    EXPECT_EQ(0xE1, segments[0].code);
    EXPECT_EQ(63941u, segments[1].payload.size());
    EXPECT_EQ(IccPayload(500), segments[3].payload);
    EXPECT_EQ(IccPayload(400, 2), segments[4].payload);

    EXPECT_EQ(audio, ExtractWithDocument(saved, dir.Path("doc.wav")));
    EXPECT_EQ(audio, ExtractWithReader(saved, dir.Path("reader.wav")));
}

// Once the plan is dropped the save has no business with the audio file.
TEST_F(AudioRoundTrip, ARemovedPlanNeedsNoAudioFile)
{
    SaveEdited([&](CExifDoc *doc) {
        ASSERT_EQ(0, zExifSetAudioFile(doc, audioPath.c_str()));
        EXPECT_EQ(1, zExifRemoveAudio(doc));
        std::remove(audioPath.c_str());
    });
    std::vector<uint8_t> file = ReadFileBytes(saved);
    EXPECT_TRUE(FpxrSegmentsOf(file).empty());
    EXPECT_EQ(IccPayload(500), SegmentsOf(file)[1].payload);
}

// An empty audio file gets a head segment of no data.
TEST_F(AudioRoundTrip, AnEmptyFileGetsAHeadOfNoData)
{
    std::string empty = dir.Write("empty.wav", {});
    SaveEdited([&](CExifDoc *doc) { ASSERT_EQ(0, zExifSetAudioFile(doc, empty.c_str())); });
    std::vector<JpegSegmentView> fpxr = FpxrSegmentsOf(ReadFileBytes(saved));
    ASSERT_EQ(1u, fpxr.size());
    EXPECT_EQ(41u, fpxr[0].payload.size());
}

// A TIFF file has no place for audio: the calls succeed or fail as if it had
// none, and the save writes none.
TEST_F(AudioRoundTrip, ATiffFileGetsNoAudio)
{
    source = dir.Copy(TiffSamples().front(), "source.tif");
    saved = dir.Path("saved.tif");
    SaveEdited([&](CExifDoc *doc) {
        EXPECT_EQ(0, zExifSetAudioFile(doc, audioPath.c_str()));
        EXPECT_EQ(0, zExifIsAudioExist(doc));
        EXPECT_EQ(-1, zExifGetAudioFile(doc, dir.Path("out.wav").c_str()));
        EXPECT_EQ(1, zExifRemoveAudio(doc));
        std::remove(audioPath.c_str());
    });
    std::vector<uint8_t> file = ReadFileBytes(saved);
    EXPECT_FALSE(file.empty());
    EXPECT_EQ(file.end(), std::search(file.begin(), file.end(), audio.begin(), audio.begin() + 12));
}

// The bytes the file loses at its end, inside the last audio segment.
class CutAudio : public ::testing::TestWithParam<size_t> {};

TEST_P(CutAudio, BothFamiliesExtractWhatTheFileHolds)
{
    TempDir dir;
    std::vector<uint8_t> audio = RiffWave(50000);
    auto payloads = FpxrPayloads(audio, 4, {20000, 20000});
    std::vector<uint8_t> file = Concat({{0xFF, 0xD8},
                                        JpegSegment(0xE2, payloads[0]),
                                        JpegSegment(0xE2, FpxrContinuation(5, {1, 2, 3})),
                                        JpegSegment(0xE2, payloads[1]),
                                        JpegSegment(0xE2, payloads[2])});
    file.resize(file.size() - GetParam());
    std::string jpeg = dir.Write("a.jpg", file);
    std::vector<uint8_t> expected(audio.begin(), audio.end() - long(GetParam()));
    EXPECT_EQ(expected, ExtractWithDocument(jpeg, dir.Path("doc.wav")));
    EXPECT_EQ(expected, ExtractWithReader(jpeg, dir.Path("reader.wav")));
}

INSTANTIATE_TEST_SUITE_P(Cuts, CutAudio, ::testing::Values(0, 1, 5000));

}  // namespace
