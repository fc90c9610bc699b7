#include <gtest/gtest.h>

#include <sys/stat.h>

#include <string>
#include <vector>

#include "platform/file_replace.h"
#include "save/temp_path.h"
#include "support/byte_builder.h"
#include "support/load_bytes.h"
#include "support/reader_file.h"
#include "support/temp_dir.h"

namespace {

struct TempPathCase {
    std::string path;
    std::string temp;
};

class TempPathName : public ::testing::TestWithParam<TempPathCase> {};

// The temporary file lies beside the target, so that the rename over it
// never leaves the file system, and it is never the target itself.
TEST_P(TempPathName, ReplacesTheExtensionOfTheFileName)
{
    std::string temp;
    EXPECT_EQ(1, MakeTempPath(temp, GetParam().path.c_str()));
    EXPECT_EQ(GetParam().temp, temp);
}

INSTANTIATE_TEST_SUITE_P(
    Paths, TempPathName,
    ::testing::Values(TempPathCase{"/pics/a.jpg", "/pics/a.$#$"}, TempPathCase{"a.b.c", "a.b.$#$"},
                      TempPathCase{"photo", "photo.$#$"}, TempPathCase{"x", "x.$#$"}, TempPathCase{".jpg", ".jpg.$#$"},
                      TempPathCase{"/dir.d/file", "/dir.d/file.$#$"}, TempPathCase{"/dir/.hidden", "/dir/.hidden.$#$"},
                      TempPathCase{"odd.$#$", "odd.$#$.$#$"}, TempPathCase{"trailing.", "trailing.$#$"}));

// Paths are strings of any length: nothing is cut at 260 characters.
TEST(TempFile, LongPathsAreSaved)
{
    TempDir dir;
    std::string deep = dir.m_path;
    for (int i = 0; i < 3; i++) {
        deep += "/" + std::string(120, char('a' + i));
        ASSERT_EQ(0, mkdir(deep.c_str(), 0755));
    }
    std::string source = dir.Write("source.jpg", JpegFile({JpegSegment(0xFE, {'x'})}));
    std::string target = deep + "/" + std::string(100, 't') + ".jpg";
    ASSERT_GT(target.size(), 400u);
    DocPtr doc(zExifLoadFile(source.c_str()));
    ASSERT_TRUE(doc);
    ASSERT_EQ(0, zExifSaveFile(doc.get(), target.c_str()));
    EXPECT_EQ(ReadFileBytes(source), ReadFileBytes(target));
    EXPECT_EQ(1u, ListFiles(deep).size());
}

// /dev/shm is a file system of its own where it exists, so a rename from
// there can't reach the target; the copy does.
TEST(Replace, AcrossFileSystemsByCopy)
{
    struct stat shm;
    struct stat tmp;
    TempDir dir;
    if (stat("/dev/shm", &shm) != 0 || stat(dir.m_path.c_str(), &tmp) != 0 || shm.st_dev == tmp.st_dev) {
        GTEST_SKIP() << "no second file system";
    }
    std::string temp = "/dev/shm/zexif-replace-" + std::to_string(getpid());
    FILE *file = CreateNewFile(temp);
    ASSERT_NE(nullptr, file);
    std::fputs("new", file);
    std::fclose(file);
    std::string target = dir.Write("target.jpg", {'o', 'l', 'd'});
    EXPECT_EQ(1, ReplaceFile(temp, target));
    EXPECT_EQ((std::vector<uint8_t>{'n', 'e', 'w'}), ReadFileBytes(target));
    EXPECT_FALSE(FileExists(temp));
    EXPECT_EQ(1u, ListFiles(dir.m_path).size());
}

TEST(Replace, CopyOntoADirectoryFailsAndLeavesNoCopy)
{
    TempDir dir;
    std::string temp = dir.Write("temp", {'n'});
    ASSERT_EQ(0, mkdir(dir.Path("target").c_str(), 0755));
    EXPECT_EQ(0, ReplaceByCopy(temp, dir.Path("target")));
    EXPECT_EQ(0, ReplaceFile(temp, dir.Path("target")));
    EXPECT_TRUE(FileExists(temp));
    EXPECT_EQ(2u, ListFiles(dir.m_path).size());
}

TEST(Replace, CopyPutsTheBytesOverTheTarget)
{
    TempDir dir;
    std::string temp = dir.Write("temp", {'n', 'e', 'w'});
    std::string target = dir.Write("target", {'o', 'l', 'd', '!'});
    ASSERT_EQ(0, chmod(target.c_str(), 0604));
    EXPECT_EQ(1, ReplaceByCopy(temp, target));
    EXPECT_EQ((std::vector<uint8_t>{'n', 'e', 'w'}), ReadFileBytes(target));
    struct stat info;
    ASSERT_EQ(0, stat(target.c_str(), &info));
    EXPECT_EQ(0604u, info.st_mode & 0777);
    EXPECT_EQ(2u, ListFiles(dir.m_path).size());
}

}  // namespace
