#include <gtest/gtest.h>

#include <algorithm>

#include "support/files.h"
#include "support/tree_records.h"
#include "tree/document.h"

namespace {

// A RIFF/WAVE file of size bytes, with samples that show misplaced bytes.
Bytes RiffWave(size_t size, uint32_t seed = 1)
{
    Bytes out = {'R', 'I', 'F', 'F', 0, 0, 0, 0, 'W', 'A', 'V', 'E'};
    Patch32(out, 4, uint32_t(size - 8), false);
    std::mt19937 rng{seed};
    while (out.size() < size) out.push_back(uint8_t(rng()));
    return out;
}

Bytes FpxrHeader(uint16_t index, uint32_t offset)
{
    Bytes header = {'F', 'P', 'X', 'R', 0, 0, 2, uint8_t(index >> 8), uint8_t(index), 0, 0, 0, 0};
    Patch32(header, 9, offset, true);
    return header;
}

Segment Head(const Bytes &chunk, uint16_t index = 4)
{
    Bytes payload = FpxrHeader(index, 0);
    payload.resize(41, 0x5A);
    payload.insert(payload.end(), chunk.begin(), chunk.end());
    return {0xE2, payload};
}

Segment Continuation(const Bytes &chunk, uint16_t index = 4)
{
    Bytes payload = FpxrHeader(index, 0);
    payload.insert(payload.end(), chunk.begin(), chunk.end());
    return {0xE2, payload};
}

Bytes Part(const Bytes &audio, size_t from, size_t to)
{
    return Bytes(audio.begin() + long(from), audio.begin() + long(to));
}

const Bytes kAudio = RiffWave(300);
const Segment kIcc = {0xE2, {'I', 'C', 'C', '_', 'P', 'R', 'O', 'F', 'I', 'L', 'E', 0, 1, 1, 0, 0}};

// The part of kAudio that the heads of the cases carry.
Bytes First100(const Bytes &audio)
{
    return Part(audio, 0, 100);
}

Bytes WithRiffSize(Bytes chunk, uint32_t size)
{
    Patch32(chunk, 4, size, false);
    return chunk;
}

// A head of 20 bytes and continuations of 10: each counts its own bytes.
std::vector<Segment> ShortChunks()
{
    std::vector<Segment> segments = {Head(Part(kAudio, 0, 20))};
    for (size_t at = 20; at < 300; at += 10) segments.push_back(Continuation(Part(kAudio, at, at + 10)));
    return segments;
}

struct AudioCase {
    const char *name;
    std::vector<Segment> segments;
    Bytes extracted;  // what both families write out; none when empty
    size_t kept;    // APP2 segments a removal leaves
    size_t cut = 0;  // bytes cut off the end of the file
};

const AudioCase kCases[] = {
    {"head and continuations", {Head(First100(kAudio)), Continuation(Part(kAudio, 100, 200)), Continuation(Part(kAudio, 200, 300))}, kAudio, 0},
    {"a stream that ends in its head", {Head(WithRiffSize(First100(kAudio), 92)), Continuation(Part(kAudio, 100, 200))},
     WithRiffSize(First100(kAudio), 92), 1},
    {"segments of another index are left out",
     {Head(First100(kAudio)), Continuation(Bytes(50, 1), 5), Continuation(Part(kAudio, 100, 300))}, kAudio, 1},
    {"a head behind other APP2 segments", {kIcc, Head(First100(kAudio)), Continuation(Part(kAudio, 100, 300))}, kAudio, 1},
    {"a RIFF size with its top bit set ends at the head",
     {Head(WithRiffSize(First100(kAudio), 0x80000000)), Continuation(Part(kAudio, 100, 300))},
     WithRiffSize(First100(kAudio), 0x80000000), 1},
    {"a head that holds no more than the RIFF size", {Head(WithRiffSize(Part(kAudio, 0, 8), 0))},
     WithRiffSize(Part(kAudio, 0, 8), 0), 0},
    {"continuations without a head are no audio", {Continuation(Part(kAudio, 100, 300)), kIcc}, {}, 2},
    {"a second head ends the first stream",
     {Head(First100(kAudio)), Head(RiffWave(20, 2)), Continuation(Part(kAudio, 100, 300))}, First100(kAudio), 1},
    {"a continuation too short for its header is passed over",
     {Head(First100(kAudio)), {0xE2, {'F', 'P', 'X', 'R', 0, 0, 2, 0, 4}}, Continuation(Part(kAudio, 100, 300))}, kAudio,
     1},
    {"many short continuations", ShortChunks(), kAudio, 0},
    {"a stream complete in a continuation",
     {Head(First100(kAudio)), Continuation(Part(kAudio, 100, 300)), Continuation({1}), Head(First100(kAudio))}, kAudio, 2},
    {"an empty continuation belongs to the stream",
     {Head(First100(kAudio)), Continuation({}), Continuation(Part(kAudio, 100, 300))}, kAudio, 0},
    {"a segment cut by the end of the file gives what came", {Head(First100(kAudio)), Continuation(Part(kAudio, 100, 300))},
     Part(kAudio, 0, 250), 0, 50},
};

// Every file has an empty APP2 segment, which is no audio and stays.
Bytes FileOf(const AudioCase &c)
{
    std::vector<Segment> segments = {{0xE0, {'J', 'F', 'I', 'F', 0}},
                                     {0xE2, {}},
                                     {0xE1, ExifPayload(Layout({false, {{Short(274, 1)}}, {}, {}}))}};
    segments.insert(segments.end(), c.segments.begin(), c.segments.end());
    Bytes file = Jpeg(segments, {});
    if (c.cut > 0) file.resize(file.size() - 2 - c.cut);
    return file;
}

// What each family writes out, and what a removal leaves: both families
// follow the stream of the first head, by its index, up to its RIFF size.
TEST(AudioStreams, BothFamiliesExtractTheSameAndRemovalTakesTheStream)
{
    for (const AudioCase &c : kCases) {
        TempDir dir;
        std::string path = dir.Write("photo.jpg", FileOf(c));
        const Bytes &expected = c.extracted;
        ReaderPtr reader(zRExifBeginRead(path.c_str()));
        EXPECT_EQ(!c.extracted.empty(), zRExifIsAudioExist(reader.get()) == 1) << c.name;
        EXPECT_EQ(!c.extracted.empty() ? 0 : -1, zRExifGetAudioFile(reader.get(), dir.Path("r.wav").c_str())) << c.name;
        EXPECT_EQ(expected, ReadFile(dir.Path("r.wav"))) << c.name;
        DocPtr doc(zExifLoadFile(path.c_str()));
        EXPECT_EQ(!c.extracted.empty(), zExifIsAudioExist(doc.get()) == 1) << c.name;
        EXPECT_EQ(!c.extracted.empty() ? 0 : -1, zExifGetAudioFile(doc.get(), dir.Path("d.wav").c_str())) << c.name;
        EXPECT_EQ(expected, ReadFile(dir.Path("d.wav"))) << c.name;
        EXPECT_EQ(1, zExifRemoveAudio(doc.get())) << c.name;
        EXPECT_EQ(0, zExifIsAudioExist(doc.get())) << c.name;
        std::vector<const CNode *> chain;
        for (const CNode *node = doc->m_root; node != nullptr; node = node->m_next) chain.push_back(node);
        EXPECT_NE(chain.end(), std::find(chain.begin(), chain.end(), doc->m_cur)) << c.name << ": the cursor stays in the tree";
        if (c.cut > 0) continue;
        ASSERT_EQ(0, zExifSaveFile(doc.get(), path.c_str())) << c.name;
        size_t app2 = 0;
        for (const RawSegment &s : ReadRaw(ReadFile(path)).segments) app2 += s.code == 0xE2 && s.size > 0;
        EXPECT_EQ(c.kept, app2) << c.name;
    }
}

// The audio goes in 63,900-byte chunks behind the APP1 segments, replacing
// the file's own; both families read back every byte, and a second plan
// replaces the first.
TEST(AudioFiles, SetAudioIsSavedInSegmentsAndReadBack)
{
    for (size_t size : {size_t(12), size_t(63900), size_t(63901), size_t(200000)}) {
        TempDir dir;
        Bytes audio = RiffWave(size, uint32_t(size));
        std::string wave = dir.Write("voice.wav", audio);
        std::string other = dir.Write("other.wav", RiffWave(5000));
        std::string path = dir.Write("photo.jpg", FileOf(kCases[0]));
        DocPtr doc(zExifLoadFile(path.c_str()));
        ASSERT_EQ(0, zExifSetAudioFile(doc.get(), other.c_str()));
        ASSERT_EQ(0, zExifSetAudioFile(doc.get(), wave.c_str())) << size;
        ASSERT_EQ(0, zExifSaveFile(doc.get(), path.c_str())) << size;
        std::vector<int64_t> chunks, offsets;
        std::vector<int> codes;
        Bytes file = ReadFile(path);
        for (const RawSegment &s : ReadRaw(file).segments) {
            codes.push_back(s.code);
            if (s.code != 0xE2 || s.size == 0) continue;
            chunks.push_back(s.size - (chunks.empty() ? 41 : 13));
            const uint8_t *field = &file[size_t(s.offset) + 9];
            offsets.push_back(int64_t(field[0]) << 24 | field[1] << 16 | field[2] << 8 | field[3]);
        }
        std::vector<int64_t> expected, starts;
        for (size_t done = 0; done < size || expected.empty(); done += 63900) {
            expected.push_back(int64_t(std::min<size_t>(63900, size - done)));
            starts.push_back(int64_t(done));
        }
        EXPECT_EQ(expected, chunks) << size;
        EXPECT_EQ(starts, offsets) << size << ": each chunk's header tells where in the file it starts";
        EXPECT_EQ((std::vector<int>{0xD8, 0xE0, 0xE2, 0xE1, 0xE2}), std::vector<int>(codes.begin(), codes.begin() + 5));
        ReaderPtr reader(zRExifBeginRead(path.c_str()));
        ASSERT_EQ(0, zRExifGetAudioFile(reader.get(), dir.Path("r.wav").c_str())) << size;
        EXPECT_EQ(audio, ReadFile(dir.Path("r.wav"))) << size;
        DocPtr again(zExifLoadFile(path.c_str()));
        ASSERT_EQ(0, zExifGetAudioFile(again.get(), dir.Path("d.wav").c_str())) << size;
        EXPECT_EQ(audio, ReadFile(dir.Path("d.wav"))) << size;
    }
}

// Failures are told and change nothing: an output that can't be opened or
// written, an audio file that is missing or gone by the save.
TEST(AudioFiles, FailuresLeaveWhatIsThere)
{
    TempDir dir;
    std::string path = dir.Write("photo.jpg", FileOf(kCases[0]));
    Bytes before = ReadFile(path);
    ReaderPtr reader(zRExifBeginRead(path.c_str()));
    DocPtr doc(zExifLoadFile(path.c_str()));
    for (const char *out : {"/nonexistent/zexif/out.wav", "/dev/full"}) {
        EXPECT_EQ(-1, zRExifGetAudioFile(reader.get(), out)) << out;
        EXPECT_EQ(-1, zExifGetAudioFile(doc.get(), out)) << out;
    }
    EXPECT_EQ(-1, zExifSetAudioFile(doc.get(), dir.Path("missing.wav").c_str()));
    for (bool gone : {true, false}) {
        std::string wave = dir.Write("voice.wav", gone ? RiffWave(100) : Bytes());
        ASSERT_EQ(0, zExifSetAudioFile(doc.get(), wave.c_str()));
        if (gone) std::remove(wave.c_str());
        EXPECT_EQ(-1, zExifSaveFile(doc.get(), path.c_str())) << (gone ? "gone" : "empty");
        EXPECT_EQ(before, ReadFile(path));
        std::remove(wave.c_str());
    }
    EXPECT_EQ((std::vector<std::string>{"photo.jpg"}), dir.List());
}

// The reader records 3,000 FPXR segments at most: a head behind them is
// never met.
TEST(AudioStreams, TheReaderKeepsTheFirst3000Segments)
{
    for (size_t before : {size_t(2999), size_t(3000)}) {
        std::vector<Segment> segments(before, Continuation(Bytes(1, 0), 9));
        segments.push_back(Head(WithRiffSize(First100(kAudio), 92)));
        TempDir dir;
        ReaderPtr reader(zRExifBeginRead(dir.Write("photo.jpg", Jpeg(segments, {})).c_str()));
        EXPECT_EQ(before < 3000 ? 1 : 0, zRExifIsAudioExist(reader.get())) << before;
    }
}

}  // namespace
