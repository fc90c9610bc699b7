#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "reader/cached_file.h"
#include "support/temp_dir.h"

namespace {

std::vector<uint8_t> Pattern(size_t size)
{
    std::vector<uint8_t> bytes(size);
    for (size_t i = 0; i < size; i++) bytes[i] = uint8_t(i * 31 + (i >> 8));
    return bytes;
}

CStreamIO *OpenFile(const std::string &path)
{
    CStreamIO *file = nullptr;
    EXPECT_EQ(1, CreateFileStream(&file, path.c_str(), STREAM_READ));
    return file;
}

// The cache has to answer every read, seek and end-of-file question as the
// file stream under it would, in the head and behind it.
class CachedFileSize : public ::testing::TestWithParam<size_t> {};

TEST_P(CachedFileSize, AnswersAsTheFileStreamDoes)
{
    TempDir dir;
    std::string path = dir.Write("data.bin", Pattern(GetParam()));
    CStreamIO *plain = OpenFile(path);
    CCachedFileObj cached;
    ASSERT_EQ(1, cached.Open(path.c_str()));
    std::mt19937 random(7);
    int32_t span = int32_t(GetParam()) + 5000;
    for (int i = 0; i < 3000; i++) {
        int whence = int(random() % 3);
        int32_t offset = int32_t(random() % uint32_t(span)) - (whence == 0 ? 0 : span / 2);
        ASSERT_EQ(plain->Seek(whence, offset) == 0, cached.Seek(whence, offset) == 0) << i;
        ASSERT_EQ(plain->Tell(), cached.Tell()) << i;
        uint32_t size = random() % 4 == 0 ? random() % 70000 : random() % 40;
        std::vector<uint8_t> a(size), b(size);
        uint32_t gotPlain = plain->Read(a.data(), size);
        ASSERT_EQ(gotPlain, cached.Read(b.data(), size)) << i;
        a.resize(gotPlain);
        b.resize(gotPlain);
        ASSERT_EQ(a, b) << i;
        ASSERT_EQ(plain->IsEof() != 0, cached.IsEof() != 0) << i;
    }
    DeleteStream(plain);
}

INSTANTIATE_TEST_SUITE_P(Reader, CachedFileSize, ::testing::Values(0, 100, 20000, 65536, 200000));

TEST(CachedFile, HeadViewsStayWhereTheyAre)
{
    TempDir dir;
    std::vector<uint8_t> bytes = Pattern(100000);
    CCachedFileObj cached;
    ASSERT_EQ(1, cached.Open(dir.Write("data.bin", bytes).c_str()));
    unsigned char *first = nullptr, *later = nullptr;
    ASSERT_EQ(100u, cached.HeadView(10, 100, &first));
    ASSERT_EQ(10u, cached.HeadView(60000, 10, &later));
    EXPECT_EQ(std::vector<uint8_t>(bytes.begin() + 10, bytes.begin() + 110), std::vector<uint8_t>(first, first + 100));
    EXPECT_EQ(first + 59990, later);
    EXPECT_EQ(0u, cached.HeadView(65000, 1000, &later));
    EXPECT_EQ(0u, cached.HeadView(-1, 10, &later));
}

TEST(CachedFile, AViewOfAShortFileGivesWhatItHolds)
{
    TempDir dir;
    CCachedFileObj cached;
    ASSERT_EQ(1, cached.Open(dir.Write("data.bin", Pattern(50)).c_str()));
    unsigned char *bytes = nullptr;
    EXPECT_EQ(20u, cached.HeadView(30, 100, &bytes));
    EXPECT_EQ(0u, cached.HeadView(50, 10, &bytes));
}

}  // namespace
