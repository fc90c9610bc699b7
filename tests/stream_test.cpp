#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "streams/file_stream.h"
#include "streams/hook_stream.h"
#include "streams/memory_stream.h"
#include "support/temp_dir.h"

namespace {

std::vector<uint8_t> Counting(size_t n)
{
    std::vector<uint8_t> bytes(n);
    for (size_t i = 0; i < n; i++) bytes[i] = uint8_t(i);
    return bytes;
}

struct MemoryStream : ::testing::Test {
    std::vector<uint8_t> block = Counting(10);
    CStreamIO *stream = nullptr;
    void SetUp() override { ASSERT_EQ(1, CreateMemoryStream(&stream, block.data(), 10)); }
    void TearDown() override { DeleteStream(stream); }
};

TEST_F(MemoryStream, SeekStopsAtEitherEndAndReportsWhereItWent)
{
    EXPECT_EQ(10, stream->Seek(0, 25));
    EXPECT_EQ(10, stream->Tell());
    EXPECT_EQ(1, stream->IsEof());

    stream->Seek(0, 4);
    EXPECT_EQ(6, stream->Seek(1, 25));
    EXPECT_EQ(0, stream->Seek(2, 5));
    EXPECT_EQ(10, stream->Tell());
    EXPECT_EQ(-3, stream->Seek(2, -3));
    EXPECT_EQ(7, stream->Tell());
    EXPECT_EQ(-10, stream->Seek(2, -25));
    EXPECT_EQ(0, stream->Tell());
    stream->Seek(0, 3);
    EXPECT_EQ(5, stream->Seek(7, 5));
    EXPECT_EQ(3, stream->Tell());
}

TEST_F(MemoryStream, NegativeOffsetsNeverLeaveTheBlock)
{
    EXPECT_EQ(0, stream->Seek(0, -5));
    EXPECT_EQ(0, stream->Tell());
    stream->Seek(0, 4);
    EXPECT_EQ(-4, stream->Seek(1, -100));
    EXPECT_EQ(0, stream->Tell());
    EXPECT_EQ(0, stream->Seek(0, INT32_MIN));
    EXPECT_EQ(0, stream->Tell());
    stream->Seek(0, 5);
    EXPECT_EQ(5, stream->Seek(1, INT32_MAX));
    EXPECT_EQ(10, stream->Tell());
}

TEST_F(MemoryStream, ReadAndWriteAreCutAtTheEnd)
{
    uint8_t buffer[8] = {};
    stream->Seek(0, 6);
    EXPECT_EQ(4u, stream->Read(buffer, 8));
    EXPECT_EQ(6, buffer[0]);
    EXPECT_EQ(0u, stream->Read(buffer, 8));

    const uint8_t ones[8] = {1, 1, 1, 1, 1, 1, 1, 1};
    stream->Seek(0, 6);
    EXPECT_EQ(4u, stream->Write(ones, 8));
    EXPECT_EQ(10, stream->Tell());
    EXPECT_EQ(1, block[9]);
}

TEST_F(MemoryStream, IsEofAsSoonAsTheLastByteIsConsumed)
{
    uint8_t buffer[9];
    stream->Read(buffer, 9);
    EXPECT_EQ(0, stream->IsEof());
    stream->Read(buffer, 1);
    EXPECT_EQ(1, stream->IsEof());
}

TEST(FileStream, IsEofOnlyAfterAReadPastTheEnd)
{
    TempDir dir;
    std::string path = dir.Write("ten.bin", Counting(10));
    CStreamIO *stream = nullptr;
    ASSERT_EQ(1, CreateFileStream(&stream, path.c_str(), STREAM_READ));
    uint8_t buffer[10];
    EXPECT_EQ(10u, stream->Read(buffer, 10));
    EXPECT_EQ(0, stream->IsEof());
    EXPECT_EQ(0u, stream->Read(buffer, 1));
    EXPECT_NE(0, stream->IsEof());
    EXPECT_EQ(0, stream->Seek(0, 100));
    EXPECT_EQ(0, stream->IsEof());
    EXPECT_EQ(0u, stream->Read(buffer, 1));
    DeleteStream(stream);
}

TEST(FileStream, WriteModeCreatesAndTruncates)
{
    TempDir dir;
    std::string path = dir.Write("out.bin", Counting(50));
    CStreamIO *stream = nullptr;
    ASSERT_EQ(1, CreateFileStream(&stream, path.c_str(), STREAM_WRITE));
    EXPECT_EQ(3u, stream->Write("abc", 3));
    EXPECT_EQ(1, static_cast<CFileObj *>(stream)->Close());
    DeleteStream(stream);
    EXPECT_EQ((std::vector<uint8_t>{'a', 'b', 'c'}), ReadFileBytes(path));
}

TEST(StreamFactories, FailuresLeaveTheCallersPointer)
{
    CStreamIO *const sentinel = reinterpret_cast<CStreamIO *>(0x1);
    CStreamIO *stream = sentinel;
    uint8_t byte = 0;
    EXPECT_EQ(0, CreateMemoryStream(&stream, &byte, 0));
    EXPECT_EQ(0, CreateMemoryStream(&stream, nullptr, 1));
    EXPECT_EQ(0, CreateHookStream(&stream, nullptr, 4));
    EXPECT_EQ(0, CreateFileStream(&stream, "/nonexistent/dir/file.jpg", STREAM_READ));
    EXPECT_EQ(0, CreateFileStream(&stream, "/nonexistent/dir/file.jpg", STREAM_WRITE));
    EXPECT_EQ(0, CreateFileStream(&stream, "/nonexistent/dir/file.jpg", 3));
    EXPECT_EQ(sentinel, stream);

    CStreamIO *parent = nullptr;
    ASSERT_EQ(1, CreateMemoryStream(&parent, &byte, 1));
    EXPECT_EQ(0, CreateHookStream(&stream, parent, 0));
    EXPECT_EQ(sentinel, stream);
    DeleteStream(parent);
    DeleteStream(nullptr);
}

struct HookOverFile : ::testing::Test {
    TempDir dir;
    CStreamIO *file = nullptr;
    CStreamIO *view = nullptr;
    void SetUp() override
    {
        std::string path = dir.Write("200.bin", Counting(200));
        ASSERT_EQ(1, CreateFileStream(&file, path.c_str(), STREAM_READ));
        file->Seek(0, 100);
        ASSERT_EQ(1, CreateHookStream(&view, file, 20));
    }
    void TearDown() override
    {
        DeleteStream(view);
        DeleteStream(file);
    }
};

TEST_F(HookOverFile, PositionsCountFromWhereTheViewWasMade)
{
    EXPECT_EQ(0, view->Tell());
    EXPECT_EQ(-100, view->Seek(0, 5));
    EXPECT_EQ(105, file->Tell());
    uint8_t buffer[30];
    view->Seek(0, 0);
    EXPECT_EQ(30u, view->Read(buffer, 30));
    EXPECT_EQ(100, buffer[0]);
    EXPECT_EQ(1, view->IsEof());
    view->Seek(2, 0);
    EXPECT_EQ(200, file->Tell());
}

TEST_F(HookOverFile, NegativeViewOffsetsStopAtTheViewStart)
{
    view->Seek(0, -50);
    EXPECT_EQ(100, file->Tell());
    view->Seek(0, INT32_MAX);
    view->Seek(0, INT32_MIN);
    EXPECT_EQ(0, view->Tell());
}

TEST_F(HookOverFile, DeletingTheViewLeavesTheParentOpen)
{
    DeleteStream(view);
    view = nullptr;
    uint8_t byte = 0;
    EXPECT_EQ(1u, file->Read(&byte, 1));
    EXPECT_EQ(100, byte);
}

TEST(HookOverMemory, SeekPastTheParentsEndStopsThere)
{
    std::vector<uint8_t> block = Counting(110);
    CStreamIO *memory = nullptr;
    CStreamIO *view = nullptr;
    ASSERT_EQ(1, CreateMemoryStream(&memory, block.data(), 110));
    memory->Seek(0, 100);
    ASSERT_EQ(1, CreateHookStream(&view, memory, 20));
    EXPECT_EQ(10, view->Seek(0, 30));
    DeleteStream(view);
    DeleteStream(memory);
    EXPECT_EQ(109, block[109]);
}

}  // namespace
