#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>

#include "platform/copy_over.h"
#include "save/temp_path.h"
#include "support/fault.h"
#include "support/files.h"
#include "support/tree_records.h"

namespace {

// Files in the shapes that take different roads: a JPEG with a thumbnail,
// GPS and audio, a TIFF of strips, a real file of each kind, and a maker
// note a save turns to little-endian.
std::vector<Bytes> Subjects()
{
    std::vector<Bytes> files;
    for (int seed : {3, 4}) {
        std::mt19937 rng{uint32_t(seed)};
        Block block = RandomBlock(rng, seed == 4);
        files.push_back(seed == 4 ? Layout(block) : CameraJpeg(Layout(block), rng));
    }
    Bytes audio = {'R', 'I', 'F', 'F', 4, 0, 0, 0, 'W', 'A', 'V', 'E'};
    Bytes head = {'F', 'P', 'X', 'R', 0, 0, 2, 0, 4, 0, 0, 0, 0};
    head.resize(41, 0);
    head.insert(head.end(), audio.begin(), audio.end());
    files[0].insert(files[0].begin() + 2, {0xFF, 0xE2, 0, uint8_t(head.size() + 2)});
    files[0].insert(files[0].begin() + 6, head.begin(), head.end());
    for (const std::string &path : Samples()) {
        if (files.size() < 4 && path.find(files.size() == 2 ? "Canon_40D.jpg" : ".tif") != std::string::npos) {
            files.push_back(ReadFile(path));
        }
    }
    files.push_back(BigEndianNote());
    return files;
}

std::string Extension(const Bytes &file)
{
    return file[0] == 0xFF ? ".jpg" : ".tif";
}

// Any open, read, seek or allocation of a load that fails gives null; the
// standard library alone gets by without some of its allocations, and then
// the tree is whole.
TEST(Faults, ALoadFailsWholeOrNotAtAll)
{
    for (const Bytes &file : Subjects()) {
        TempDir dir;
        std::string path = dir.Write("photo" + Extension(file), file);
        std::vector<RawTag> clean = ReadRaw(file).tags;
        uint64_t failed = ForEachFailingCall([&](uint64_t failAt) {
            FaultWindow window(FAULT_ANY, failAt);
            DocPtr doc(zExifLoadFile(path.c_str()));
            bool struck = window.Close();
            if (doc != nullptr) EXPECT_EQ(clean, TreeTags(*doc)) << window.Describe(failAt);
            EXPECT_TRUE(doc == nullptr ? struck : !struck || window.m_struck == FAULT_ALLOC) << window.Describe(failAt);
            return struck && !::testing::Test::HasFailure();
        });
        EXPECT_GT(failed, 10u);
    }
}

// A save in place that meets a failure anywhere (reading the source, making,
// writing or syncing the temporary file, renaming it) loses nothing. A copy
// over a target with a second hard link that fails half-way leaves the new
// file kept beside it.
void CheckInPlaceSave(const std::string &path, const Bytes &file, const std::function<void(CExifDoc *)> &prepare,
                      const TempDir &dir)
{
    std::string kept;
    MakeTempPath(kept, path.c_str());
    kept = KeptNewFile(kept);
    DocPtr clean(zExifLoadFile(path.c_str()));
    prepare(clean.get());
    ASSERT_EQ(0, zExifSaveFile(clean.get(), dir.Path("clean").c_str()));
    Bytes saved = ReadFile(dir.Path("clean"));
    std::remove(dir.Path("clean").c_str());
    std::vector<std::string> listing = dir.List();
    uint64_t failed = ForEachFailingCall([&](uint64_t failAt) {
        DocPtr doc(zExifLoadFile(path.c_str()));
        prepare(doc.get());
        FaultWindow window(FAULT_ANY, failAt);
        int result = zExifSaveFile(doc.get(), path.c_str());
        bool struck = window.Close();
        EXPECT_TRUE(struck ? result == -1 || window.m_struck == FAULT_ALLOC : result == 0) << window.Describe(failAt);
        bool torn = result != 0 && ReadFile(kept) == saved && std::remove(kept.c_str()) == 0;
        if (!torn) EXPECT_EQ(result == 0 ? saved : file, ReadFile(path)) << window.Describe(failAt);
        EXPECT_EQ(listing, dir.List()) << window.Describe(failAt);
        if (result == 0 || torn) dir.Write(path.substr(dir.m_path.size() + 1), file);
        return struck && !::testing::Test::HasFailure();
    });
    EXPECT_GT(failed, 10u);
}

// Edits whose allocations fail give -1 and leave the tree as it was, or
// succeed as without the failure; a save of the file as it came, or edited,
// loses nothing to a failure.
TEST(Faults, FailedEditsAndSavesLoseNothing)
{
    Bytes thumb = ThumbnailBytes(500);
    Bytes artist = {'J', 'a', 'n', 'e', 0};
    Bytes block = ExifPayload(Layout({false, {{Ascii(271, "New")}, {OffsetsOf(513, {0}), Long(514, 200)}}, {}, {thumb}}));
    auto setText = [&](uint32_t tag) {
        return [&, tag](CExifDoc *doc) {
            ExifTagValue value = {2, 5, artist.data()};
            return zExifSetTag(doc, tag, &value, 0);
        };
    };
    const std::function<int(CExifDoc *)> edits[] = {
        setText(315), setText(36867),
        [&](CExifDoc *doc) {
            ExifBuffer buffer = {thumb.data(), uint32_t(thumb.size())};
            return zExifSetThumbnailData(doc, &buffer);
        },
        [&](CExifDoc *doc) {
            ExifBuffer buffer = {new unsigned char[block.size()], uint32_t(block.size())};
            std::copy(block.begin(), block.end(), buffer.data);
            int result = zExifInsertExifMarker(doc, &buffer);
            if (result != 0) delete[] buffer.data;
            return result;
        },
    };
    for (const Bytes &file : Subjects()) {
        TempDir dir;
        std::string path = dir.Write("photo" + Extension(file), file);
        std::string wave = dir.Write("voice.wav", Bytes(3000, 1));
        for (const auto &edit : edits) {
            DocPtr clean(zExifLoadFile(path.c_str()));
            edit(clean.get());
            const std::vector<RawTag> after = TreeTags(*clean);
            const Bytes thumbAfter = DocThumbnail(clean.get());
            ForEachFailingCall([&](uint64_t failAt) {
                DocPtr doc(zExifLoadFile(path.c_str()));
                std::vector<RawTag> before = TreeTags(*doc);
                FaultWindow window(FAULT_ALLOC, failAt);
                int result = edit(doc.get());
                bool struck = window.Close();
                EXPECT_EQ(result != 0 ? before : after, TreeTags(*doc)) << window.Describe(failAt);
                if (result == 0) EXPECT_EQ(thumbAfter, DocThumbnail(doc.get())) << window.Describe(failAt);
                return struck && !::testing::Test::HasFailure();
            });
        }
        for (bool edited : {false, true}) {
            auto prepare = [&](CExifDoc *doc) {
                if (!edited) return;
                for (const auto &edit : edits) edit(doc);
                zExifSetAudioFile(doc, wave.c_str());
            };
            CheckInPlaceSave(path, file, prepare, dir);
        }
        link(path.c_str(), dir.Path("twin").c_str());
        CheckInPlaceSave(path, file, [](CExifDoc *) {}, dir);
    }
}

}  // namespace
