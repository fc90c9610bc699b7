#include <gtest/gtest.h>
#include <malloc.h>

#include "support/byte_builder.h"
#include "support/temp_dir.h"
#include "zexif.h"

namespace {

// What the README promises: a load takes less than 40 bytes of memory per
// byte of file, plus 2 MiB, however the file is made.
constexpr size_t BYTES_PER_FILE_BYTE = 40;
constexpr size_t EXTRA_BYTES = 2 << 20;

// Heap bytes the load holds once it is done, or -1 when it failed.
long LoadHeapBytes(const std::vector<uint8_t> &file)
{
    TempDir dir;
    std::string path = dir.Write("f", file);
    size_t before = mallinfo2().uordblks;
    CExifDoc *doc = zExifLoadFile(path.c_str());
    long taken = doc == nullptr ? -1 : long(mallinfo2().uordblks - before);
    zExifDestroy(doc);
    return taken;
}

// A file of nothing but the smallest segments makes the most nodes per byte.
std::vector<uint8_t> EmptySegments(int count)
{
    ByteBuilder jpeg;
    jpeg.U16BE(0xFFD8);
    for (int i = 0; i < count; i++) jpeg.U16BE(0xFFE3).U16BE(2);
    return jpeg.U16BE(0xFFD9).Data();
}

// A chain of full IFDs whose entries all point at the same large value.
std::vector<uint8_t> SharedValues(uint32_t ifds, uint32_t valueSize)
{
    const uint32_t entries = 100, ifdSize = 2 + 12 * entries + 4, data = 8 + ifds * ifdSize;
    ByteBuilder tiff;
    tiff.TiffHeader();
    for (uint32_t k = 0; k < ifds; k++) {
        tiff.U16(uint16_t(entries));
        for (uint32_t e = 0; e < entries; e++) tiff.Entry(uint16_t(1000 + e), 7, valueSize, data);
        tiff.U32(k + 1 < ifds ? 8 + (k + 1) * ifdSize : 0);
    }
    return tiff.Fill(valueSize, 0x55).Data();
}

TEST(LoadBounds, MemoryGrowsWithTheFileAndNoFaster)
{
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the sanitizer's allocator keeps its own books";
#endif
    // So does valgrind's, and mallinfo2 then reads nothing.
    if (mallinfo2().uordblks == 0) GTEST_SKIP() << "the allocator keeps no books mallinfo2 can read";
    for (const auto &file : {EmptySegments(200000), SharedValues(1024, 40)}) {
        long taken = LoadHeapBytes(file);
        EXPECT_GT(taken, 0);
        EXPECT_LT(taken, long(BYTES_PER_FILE_BYTE * file.size() + EXTRA_BYTES)) << file.size();
    }
}

// Values that would take more than four times the file plus 1 MiB fail the
// load instead of being copied again and again.
TEST(LoadBounds, OverlappingValuesBeyondTheBudgetFailTheLoad)
{
    EXPECT_EQ(-1, LoadHeapBytes(SharedValues(1024, 4096)));
    EXPECT_GE(LoadHeapBytes(SharedValues(2, 4096)), 0);
}

}  // namespace
