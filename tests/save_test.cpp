#include <gtest/gtest.h>

#include <sys/file.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>
#include <tuple>

#include "platform/copy_over.h"
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
    {"a FIFO", [](const TempDir &dir, CExifDoc *, const std::string &) {
         mkfifo(dir.Path("pipe.jpg").c_str(), 0644);
         return dir.Path("pipe.jpg");
     }},
    {"a device", [](const TempDir &, CExifDoc *, const std::string &) { return std::string("/dev/null"); }},
    {"a link to itself", [](const TempDir &dir, CExifDoc *, const std::string &) {
         symlink("loop.jpg", dir.Path("loop.jpg").c_str());
         return dir.Path("loop.jpg");
     }},
    {"a hard link whose kept copy is still there",
     [](const TempDir &dir, CExifDoc *, const std::string &) {
         link(dir.Path("target.jpg").c_str(), dir.Path("twin.jpg").c_str());
         dir.Write("target.$#$new", {'n', 'e', 'w'});
         return dir.Path("target.jpg");
     }},
    {"an Exif block one byte larger than a segment holds",
     [](const TempDir &dir, CExifDoc *doc, const std::string &) {
         Bytes big(65472, 'x');
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
    Bytes largest(65471, 'x');
    ExifTagValue value = {7, uint32_t(largest.size()), largest.data()};
    ASSERT_EQ(0, zExifSetTag(doc.get(), 37510, &value, 0));
    EXPECT_EQ(0, zExifSaveFile(doc.get(), source.c_str())) << "the largest block a segment holds";
}

// Runs body in a child process: its result, or minus the signal that ended it.
int InChild(const std::function<int()> &body)
{
    pid_t child = fork();
    if (child == 0) _exit(body());
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

// The temporary file lies beside the target under the target's name with
// "$#$" for its extension; a name too long for that is cut. A save killed
// half-way leaves it behind, and the next save removes it and every other
// leftover of the target that no running save holds (never the new file a
// copy over kept), and always finds a name.
TEST(TempFile, IsNamedAfterTheTargetAndCleanedUpAfterACrash)
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
    const std::string name = std::string(251, 'n') + ".jpg";
    std::string target = dir.Write(name, ExifJpeg(30000)), stem;
    dir.Write("a.jpg", {'a'});
    MakeTempPath(stem, target.c_str());
    stem = stem.substr(dir.m_path.size() + 1);
    EXPECT_EQ('~', stem[stem.size() - 13]) << "the long name's hash takes eight digits";
    EXPECT_EQ(-SIGKILL, InChild([&] {
        std::signal(SIGXFSZ, [](int) { std::raise(SIGKILL); });
        struct rlimit limit = {8192, 8192};
        setrlimit(RLIMIT_FSIZE, &limit);
        DocPtr doc(zExifLoadFile(target.c_str()));
        return zExifSaveFile(doc.get(), target.c_str());
    }));
    EXPECT_EQ((std::vector<std::string>{"a.jpg", name, stem}), dir.List());
    for (int i = 1; i < 100; i++) dir.Write(stem + std::to_string(i), {'x'});
    dir.Write(stem + "new", {'x'});
    DocPtr doc(zExifLoadFile(target.c_str()));
    ASSERT_EQ(0, zExifSaveFile(doc.get(), target.c_str()));
    EXPECT_EQ((std::vector<std::string>{"a.jpg", name, stem + "new"}), dir.List());
    int held = open(dir.Write(stem, {'x'}).c_str(), O_RDONLY);
    ASSERT_EQ(0, flock(held, LOCK_EX));
    doc.reset(zExifLoadFile(target.c_str()));
    EXPECT_EQ(0, zExifSaveFile(doc.get(), target.c_str()));
    EXPECT_EQ((std::vector<std::string>{"a.jpg", name, stem, stem + "new"}), dir.List());
    close(held);
}

struct Shape {
    const char *name;
    // Gives photo its shape; returns the path to save to.
    std::function<std::string(const TempDir &, const std::string &photo)> make;
};

const Shape kShapes[] = {
    {"a chain of as many symbolic links as the system follows",
     [](const TempDir &dir, const std::string &) {
         mkdir(dir.Path("sub").c_str(), 0755);
         symlink("../photo.jpg", dir.Path("sub/mid.jpg").c_str());
         symlink("sub/mid.jpg", dir.Path("link0").c_str());
         for (int i = 1; i < 39; i++) symlink(("link" + std::to_string(i - 1)).c_str(), dir.Path("link" + std::to_string(i)).c_str());
         return dir.Path("link38");
     }},
    {"a second hard link",
     [](const TempDir &dir, const std::string &photo) {
         link(photo.c_str(), dir.Path("twin.jpg").c_str());
         return photo;
     }},
    {"a file mounted over the name, where mounting is allowed",
     [](const TempDir &dir, const std::string &photo) {
         const std::string name = dir.Write("mounted.jpg", {});
         return mount(photo.c_str(), name.c_str(), "none", MS_BIND, nullptr) == 0 ? name : photo;
     }},
    {"another user's file",
     [](const TempDir &, const std::string &photo) {
         if (geteuid() == 0) chown(photo.c_str(), 4321, 4321);
         chmod(photo.c_str(), 02640);
         return photo;
     }},
};

// Owner, group, bits and links of the file at path, and what path itself is.
auto Identity(const std::string &path)
{
    struct stat info = {}, name = {};
    stat(path.c_str(), &info);
    lstat(path.c_str(), &name);
    return std::make_tuple(info.st_uid, info.st_gid, info.st_mode, info.st_nlink, name.st_mode);
}

// A save writes the file that its path names and keeps what the file was:
// a link stays a link and the file it names gets the new content, all hard
// links see it, and the owner, group and bits stay.
TEST(Save, KeepsTheFileWhatItWas)
{
    for (const Shape &c : kShapes) {
        TempDir dir;
        std::string photo = dir.Write("photo.jpg", ExifJpeg(100)), path = c.make(dir, photo);
        DocPtr doc(zExifLoadFile(dir.Write("other.jpg", ExifJpeg(10)).c_str()));
        auto before = Identity(path);
        std::vector<std::string> listing = dir.List();
        EXPECT_EQ(0, zExifSaveFile(doc.get(), path.c_str())) << c.name;
        EXPECT_EQ(before, Identity(path)) << c.name;
        EXPECT_EQ(ExifJpeg(10), ReadFile(photo)) << c.name;
        EXPECT_EQ(listing, dir.List()) << c.name;
        umount2(path.c_str(), MNT_DETACH);
    }
    if (geteuid() != 0) GTEST_SKIP() << "not root: a file of another user's was not tried";
}

// A file the caller may not write to is refused, as an ordinary write would
// be; one the caller may write to but not give away is written in place and
// stays its owner's.
TEST(Save, WritesOnlyWhereAnOrdinaryWriteWould)
{
    TempDir dir;
    chmod(dir.m_path.c_str(), 0777);
    std::string locked = dir.Write("locked.jpg", ExifJpeg(100)), shared = dir.Write("shared.jpg", ExifJpeg(10));
    chmod(locked.c_str(), 0444);
    chmod(shared.c_str(), 0666);
    EXPECT_EQ(0, InChild([&] {
        if (geteuid() == 0 && (setgid(4321) != 0 || setuid(4321) != 0)) return 2;
        DocPtr doc(zExifLoadFile(locked.c_str()));
        bool refused = zExifSaveFile(doc.get(), locked.c_str()) == -1 && errno == EACCES;
        return refused && zExifSaveFile(doc.get(), shared.c_str()) == 0 ? 0 : 1;
    }));
    EXPECT_EQ(ExifJpeg(100), ReadFile(locked));
    EXPECT_EQ(ExifJpeg(100), ReadFile(shared));
    EXPECT_EQ(getuid(), std::get<0>(Identity(shared)));
    EXPECT_EQ((std::vector<std::string>{"locked.jpg", "shared.jpg"}), dir.List());
}

// A JPEG without Exif is written byte for byte, segments of the shortest and
// the longest length included, to a new file with the bits of any new file;
// a big-endian TIFF whose samples are wider than a byte can't be turned
// little-endian and fails.
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
    const mode_t mask = umask(0);
    umask(mask);
    EXPECT_EQ(S_IFREG | (0666 & ~mask), std::get<2>(Identity(dir.Path("out.jpg"))));

    for (bool bigEndian : {false, true}) {
        Block block{bigEndian, {{Short(258, 16), OffsetsOf(273, {0}), Long(279, 8)}}, {}, {Bytes(8, 1)}};
        DocPtr tiff(zExifLoadFile(dir.Write("wide.tif", Layout(block)).c_str()));
        EXPECT_EQ(bigEndian ? -1 : 0, zExifSaveFile(tiff.get(), dir.Path("out.tif").c_str())) << bigEndian;
    }
    // Bytes of a byte wide, whatever fills the rest of the entry.
    Block narrow{true, {{Typed(258, 3, 1, {8, 0, 16, 0}), OffsetsOf(273, {0}), Long(279, 8)}}, {}, {Bytes(8, 1)}};
    DocPtr tiff(zExifLoadFile(dir.Write("narrow.tif", Layout(narrow)).c_str()));
    EXPECT_EQ(0, zExifSaveFile(tiff.get(), dir.Path("out.tif").c_str()));
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
