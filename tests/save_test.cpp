#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <functional>

#include "platform/file_replace.h"
#include "save/temp_path.h"
#include "streams/stream.h"
#include "support/files.h"
#include "support/tree_records.h"
#include "tree/document.h"

namespace {

Bytes ExifJpeg(size_t commentSize)
{
    return Jpeg({{0xE1, ExifPayload(Layout({false, {{Ascii(271, "Cam")}}, {}, {}}))}, {0xFE, Bytes(commentSize, 'c')}},
                {1, 2});
}

struct Failure {
    const char *name;
    // Prepares the failure; returns the path to save to.
    std::function<std::string(const TempDir &, CExifDoc *, const std::string &source)> prepare;
};

int SaveWithFileSizeLimit(CExifDoc *doc, const std::string &target, rlim_t limit)
{
    struct rlimit old;
    getrlimit(RLIMIT_FSIZE, &old);
    struct rlimit limited = old;
    limited.rlim_cur = limit;
    auto previous = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &limited);
    int result = zExifSaveFile(doc, target.c_str());
    setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, previous);
    return result;
}

const Failure kFailures[] = {
    {"a path inside a file", [](const TempDir &, CExifDoc *, const std::string &source) { return source + "/in.jpg"; }},
    {"a folder that is missing", [](const TempDir &dir, CExifDoc *, const std::string &) { return dir.Path("no/t.jpg"); }},
    {"an empty path", [](const TempDir &, CExifDoc *, const std::string &) { return std::string(); }},
    {"a target that is a directory",
     [](const TempDir &dir, CExifDoc *, const std::string &) {
         mkdir(dir.Path("folder.jpg").c_str(), 0755);
         return dir.Path("folder.jpg");
     }},
    {"a source cut short after the load",
     [](const TempDir &dir, CExifDoc *, const std::string &source) {
         truncate(source.c_str(), 40);
         return dir.Path("target.jpg");
     }},
    {"a source closed with segments still on file",
     [](const TempDir &dir, CExifDoc *doc, const std::string &) {
         DeleteStream(doc->m_stream);
         doc->m_stream = nullptr;
         return dir.Path("target.jpg");
     }},
    {"an Exif block larger than a segment",
     [](const TempDir &dir, CExifDoc *doc, const std::string &) {
         Bytes big(65600, 'x');
         ExifTagValue value = {7, uint32_t(big.size()), big.data()};
         zExifSetTag(doc, 37510, &value, 0);
         return dir.Path("target.jpg");
     }},
};

// A save that fails says so, and leaves the target and the folder as they
// were; the document can still be saved.
TEST(FailedSave, LosesNothing)
{
    for (const Failure &c : kFailures) {
        TempDir dir;
        std::string source = dir.Write("source.jpg", ExifJpeg(30000));
        std::string target = dir.Write("target.jpg", {'o', 'l', 'd'});
        DocPtr doc(zExifLoadFile(source.c_str()));
        std::string path = c.prepare(dir, doc.get(), source);
        std::vector<std::string> listing = dir.List();
        EXPECT_EQ(-1, zExifSaveFile(doc.get(), path.c_str())) << c.name;
        EXPECT_EQ((Bytes{'o', 'l', 'd'}), ReadFile(target)) << c.name;
        EXPECT_EQ(listing, dir.List()) << c.name;
    }
    TempDir dir;
    std::string source = dir.Write("source.jpg", ExifJpeg(30000));
    DocPtr doc(zExifLoadFile(source.c_str()));
    EXPECT_EQ(-1, SaveWithFileSizeLimit(doc.get(), source, 8192));
    EXPECT_EQ(ExifJpeg(30000), ReadFile(source));
    EXPECT_EQ(std::vector<std::string>{"source.jpg"}, dir.List());
    EXPECT_EQ(-1, zExifSaveFile(nullptr, source.c_str()));
    EXPECT_EQ(-1, zExifSaveFile(doc.get(), nullptr));
    EXPECT_EQ(0, zExifSaveFile(doc.get(), source.c_str()));
}

// The temporary file lies beside the target under the target's name with
// "$#$" for its extension, and never under a name that is taken.
TEST(TempFile, IsNamedAfterTheTargetAndNeverTakesAFile)
{
    const std::pair<const char *, const char *> names[] = {
        {"a/b.jpg", "a/b.$#$"},        {"a/b", "a/b.$#$"},           {"a/.hidden", "a/.hidden.$#$"},
        {"a.b/c", "a.b/c.$#$"},        {"x.$#$", "x.$#$.$#$"},       {"d/f.tar.gz", "d/f.tar.$#$"},
        {"/photo.jpg", "/photo.$#$"},
    };
    for (const auto &name : names) {
        std::string temp;
        MakeTempPath(temp, name.first);
        EXPECT_EQ(name.second, temp);
    }
    TempDir dir;
    std::string target = dir.Write("photo.jpg", ExifJpeg(10));
    dir.Write("photo.$#$", {'t', 'h', 'e', 'i', 'r', 's'});
    dir.Write("photo.$#$1", {'t', 'o', 'o'});
    ASSERT_EQ(0, chmod(target.c_str(), 0640));
    DocPtr doc(zExifLoadFile(target.c_str()));
    ASSERT_EQ(0, zExifSaveFile(doc.get(), target.c_str()));
    EXPECT_EQ((Bytes{'t', 'h', 'e', 'i', 'r', 's'}), ReadFile(dir.Path("photo.$#$")));
    EXPECT_EQ((std::vector<std::string>{"photo.$#$", "photo.$#$1", "photo.jpg"}), dir.List());
    struct stat info;
    ASSERT_EQ(0, stat(target.c_str(), &info));
    EXPECT_EQ(0640u, info.st_mode & 0777);
}

// Where a rename can't cross file systems, a copy beside the target is
// renamed over it; a copy onto a directory or from a file that is gone fails
// and leaves nothing.
TEST(TempFile, ReplaceByCopy)
{
    TempDir dir;
    std::string temp = dir.Write("new.$#$", {'n', 'e', 'w'});
    std::string target = dir.Write("photo.jpg", {'o', 'l', 'd'});
    ASSERT_EQ(1, ReplaceByCopy(temp, target));
    EXPECT_EQ((Bytes{'n', 'e', 'w'}), ReadFile(target));
    ASSERT_EQ(0, mkdir(dir.Path("folder").c_str(), 0755));
    EXPECT_EQ(0, ReplaceByCopy(temp, dir.Path("folder")));
    EXPECT_EQ(0, ReplaceByCopy(dir.Path("missing"), target));
    EXPECT_EQ((Bytes{'n', 'e', 'w'}), ReadFile(target));
    EXPECT_EQ((std::vector<std::string>{"folder", "new.$#$", "photo.jpg"}), dir.List());
}

// A JPEG without Exif is written byte for byte, segments of the shortest and
// the longest length included; a big-endian TIFF whose samples are wider than a byte
// can't be turned little-endian and fails.
TEST(Save, CopiesWhatItDoesNotRebuild)
{
    TempDir dir;
    Bytes plain = JpegOf({});
    plain.insert(plain.begin() + 2, {0xFF, 0xFE, 0xFF, 0xFF});
    plain.insert(plain.begin() + 6, 65533, 'c');
    plain.insert(plain.begin() + 2, {0xFF, 0xFE, 0x00, 0x02});
    DocPtr doc(zExifLoadFile(dir.Write("plain.jpg", plain).c_str()));
    ASSERT_EQ(0, zExifSaveFile(doc.get(), dir.Path("out.jpg").c_str()));
    EXPECT_EQ(plain, ReadFile(dir.Path("out.jpg")));

    for (bool bigEndian : {false, true}) {
        Block block{bigEndian, {{Short(258, 16), OffsetsOf(273, {0}), Long(279, 8)}}, {}, {Bytes(8, 1)}};
        DocPtr tiff(zExifLoadFile(dir.Write("wide.tif", Layout(block)).c_str()));
        EXPECT_EQ(bigEndian ? -1 : 0, zExifSaveFile(tiff.get(), dir.Path("out.tif").c_str())) << bigEndian;
    }
}

// A strip may lie anywhere in the file, its first byte included; strip tags
// that can't describe strips (an offset beyond 31 bits) fail the save rather
// than be copied with offsets that point nowhere, while a thumbnail of strips
// the block doesn't hold is left out.
TEST(Save, StripsAreCarriedWhereverTheyLie)
{
    TempDir dir;
    Bytes tiff = Layout({false, {{Long(273, 0), Long(279, 8)}}, {}, {}});
    DocPtr doc(zExifLoadFile(dir.Write("head.tif", tiff).c_str()));
    ASSERT_EQ(0, zExifSaveFile(doc.get(), dir.Path("out.tif").c_str()));
    EXPECT_EQ(std::vector<Bytes>{Bytes(tiff.begin(), tiff.begin() + 8)}, ReadRaw(ReadFile(dir.Path("out.tif"))).images);
    DocPtr far(zExifLoadFile(dir.Write("far.jpg", JpegOf({{Short(274, 1)}, {Long(273, 0x80000000), Long(279, 10)}})).c_str()));
    EXPECT_EQ(-1, zExifSaveFile(far.get(), dir.Path("out.jpg").c_str()));
    DocPtr large(zExifLoadFile(dir.Write("large.jpg", JpegOf({{Short(274, 1)}, {Long(273, 10), Long(279, 0x7FFFFFFF)}})).c_str()));
    ASSERT_EQ(0, zExifSaveFile(large.get(), dir.Path("out.jpg").c_str()));
    EXPECT_EQ(1u, ReadRaw(ReadFile(dir.Path("out.jpg"))).tags.size());
}

}  // namespace
