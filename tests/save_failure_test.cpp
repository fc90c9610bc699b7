#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <string>
#include <vector>

#include "support/byte_builder.h"
#include "support/exif_block.h"
#include "support/load_bytes.h"
#include "support/reader_file.h"
#include "support/temp_dir.h"
#include "support/thumb_jpeg.h"

namespace {

std::vector<uint8_t> ExifJpeg(size_t commentSize = 100)
{
    return JpegFile({JpegSegment(0xE1, ExifPayload(ExifBlock({}))),
                     JpegSegment(0xFE, std::vector<uint8_t>(commentSize, 'c'))});
}

// Every failure leaves the target as it was and no file behind but those
// that were there.
struct SaveFailure : ::testing::Test {
    TempDir dir;
    std::string source = dir.Write("source.jpg", ExifJpeg());
    std::string target = dir.Write("target.jpg", {'o', 'l', 'd'});
    DocPtr doc{zExifLoadFile(source.c_str())};

    void ExpectNothingChanged(const std::vector<std::string> &extra = {})
    {
        EXPECT_EQ((std::vector<uint8_t>{'o', 'l', 'd'}), ReadFileBytes(target));
        EXPECT_EQ(2 + extra.size(), ListFiles(dir.m_path).size());
        for (const std::string &name : extra) EXPECT_TRUE(FileExists(dir.Path(name))) << name;
    }
};

TEST_F(SaveFailure, BadArguments)
{
    ASSERT_TRUE(doc);
    EXPECT_EQ(-1, zExifSaveFile(nullptr, target.c_str()));
    EXPECT_EQ(-1, zExifSaveFile(doc.get(), nullptr));
    EXPECT_EQ(-1, zExifSaveFile(doc.get(), ""));
    ExpectNothingChanged();
}

TEST_F(SaveFailure, DirectoryThatCantHoldTheFile)
{
    ASSERT_TRUE(doc);
    EXPECT_EQ(-1, zExifSaveFile(doc.get(), (source + "/inside.jpg").c_str()));
    EXPECT_EQ(-1, zExifSaveFile(doc.get(), dir.Path("missing/target.jpg").c_str()));
    ExpectNothingChanged();
    EXPECT_EQ(0, zExifSaveFile(doc.get(), target.c_str()));
}

TEST_F(SaveFailure, TargetIsADirectory)
{
    ASSERT_TRUE(doc);
    ASSERT_EQ(0, mkdir(dir.Path("folder.jpg").c_str(), 0755));
    EXPECT_EQ(-1, zExifSaveFile(doc.get(), dir.Path("folder.jpg").c_str()));
    struct stat info;
    ASSERT_EQ(0, stat(dir.Path("folder.jpg").c_str(), &info));
    EXPECT_TRUE(S_ISDIR(info.st_mode));
    ExpectNothingChanged({"folder.jpg"});
}

// Bytes still on file must all be there: a source cut short after the load
// fails the save instead of leaving zeros in the output.
TEST_F(SaveFailure, SourceCutShortAfterTheLoad)
{
    ASSERT_TRUE(doc);
    ASSERT_EQ(0, truncate(source.c_str(), 40));
    EXPECT_EQ(-1, zExifSaveFile(doc.get(), target.c_str()));
    ExpectNothingChanged();
}

TEST_F(SaveFailure, SourceClosedWithSegmentsStillOnFile)
{
    ASSERT_TRUE(doc);
    DropSource(*doc);
    EXPECT_EQ(-1, zExifSaveFile(doc.get(), target.c_str()));
    ExpectNothingChanged();
}

// An Exif block must fit one segment; a longer one fails rather than get a
// length field cut to 16 bits.
TEST_F(SaveFailure, ExifBlockLargerThanASegment)
{
    ASSERT_TRUE(doc);
    std::vector<uint8_t> big(65600, 'x');
    ExifTagValue value = {7, uint32_t(big.size()), big.data()};
    ASSERT_EQ(0, zExifSetTag(doc.get(), 37510, &value, 0));
    EXPECT_EQ(-1, zExifSaveFile(doc.get(), target.c_str()));
    ExpectNothingChanged();

    value.count = 65400;
    ASSERT_EQ(0, zExifSetTag(doc.get(), 37510, &value, 0));
    EXPECT_EQ(0, zExifSaveFile(doc.get(), target.c_str()));
}

TEST_F(SaveFailure, AudioFileGoneBeforeTheSave)
{
    ASSERT_TRUE(doc);
    std::string audio = dir.Write("voice.wav", std::vector<uint8_t>(5000, 1));
    ASSERT_EQ(0, zExifSetAudioFile(doc.get(), audio.c_str()));
    ASSERT_EQ(0, unlink(audio.c_str()));
    EXPECT_EQ(-1, zExifSaveFile(doc.get(), target.c_str()));
    ExpectNothingChanged();
}

// A write the file system refuses (here a file size limit, as a full disk
// would) fails the save; the shortened file never reaches the target.
TEST_F(SaveFailure, WriteThatTheFileSystemRefuses)
{
    dir.Write("source.jpg", ExifJpeg(20000));
    DocPtr big(zExifLoadFile(source.c_str()));
    ASSERT_TRUE(big);
    struct rlimit old;
    ASSERT_EQ(0, getrlimit(RLIMIT_FSIZE, &old));
    struct rlimit limited = old;
    limited.rlim_cur = 8192;
    auto previous = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(0, setrlimit(RLIMIT_FSIZE, &limited));
    int result = zExifSaveFile(big.get(), target.c_str());
    setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, previous);
    EXPECT_EQ(-1, result);
    ExpectNothingChanged();
    EXPECT_EQ(0, zExifSaveFile(big.get(), target.c_str()));
}

// The temporary name belongs to whoever made it: a file of that name is
// never opened, let alone truncated or removed.
TEST_F(SaveFailure, FileWithTheTemporaryNameIsLeftAlone)
{
    ASSERT_TRUE(doc);
    std::vector<uint8_t> theirs = {'t', 'h', 'e', 'i', 'r', 's'};
    dir.Write("target.$#$", theirs);
    EXPECT_EQ(0, zExifSaveFile(doc.get(), target.c_str()));
    EXPECT_EQ(theirs, ReadFileBytes(dir.Path("target.$#$")));
    EXPECT_EQ(3u, ListFiles(dir.m_path).size());
}

// A failed save keeps the source open: the document can still be saved.
TEST_F(SaveFailure, DocumentCanBeSavedAfterAFailure)
{
    ASSERT_TRUE(doc);
    EXPECT_EQ(-1, zExifSaveFile(doc.get(), dir.Path("missing/target.jpg").c_str()));
    ASSERT_EQ(0, zExifSaveFile(doc.get(), target.c_str()));
    EXPECT_EQ(ExifJpeg(), ReadFileBytes(source));
    DocPtr back(zExifLoadFile(target.c_str()));
    EXPECT_TRUE(back);
}

TEST_F(SaveFailure, TargetKeepsItsPermissions)
{
    ASSERT_TRUE(doc);
    ASSERT_EQ(0, chmod(target.c_str(), 0640));
    ASSERT_EQ(0, zExifSaveFile(doc.get(), target.c_str()));
    struct stat info;
    ASSERT_EQ(0, stat(target.c_str(), &info));
    EXPECT_EQ(0640u, info.st_mode & 0777);
}

}  // namespace
