#include <gtest/gtest.h>

#include <new>
#include <string>
#include <vector>

#include "reader/reader.h"
#include "support/byte_builder.h"
#include "support/reader_file.h"
#include "support/tiff_layout.h"

namespace {

// Refuses non-throwing array allocations of one size, after letting the
// given number of them pass. The reader makes its buffers that way.
size_t g_refusedSize = 0;
int g_passBeforeRefusal = 0;

void Refuse(size_t size, int passFirst)
{
    g_refusedSize = size;
    g_passBeforeRefusal = passFirst;
}

}  // namespace

void *operator new[](std::size_t size, const std::nothrow_t &) noexcept
{
    if (size == g_refusedSize && g_passBeforeRefusal-- <= 0) return nullptr;
    try {
        return ::operator new[](size);
    } catch (...) {
        return nullptr;
    }
}

namespace {

constexpr uint32_t kOddSize = 777;

class RefusedAllocation : public ::testing::Test {
protected:
    void SetUp() override
    {
        TiffLayout layout;
        layout.AddIfd({Raw(271, 7, kOddSize, std::vector<uint8_t>(kOddSize, 'm')), PointerTo(34665, 2)});
        layout.AddIfd({OffsetOf(513, layout.AddBlob(ThumbnailJpeg(kOddSize))), Long(514, kOddSize)});
        layout.AddIfd({Raw(37510, 7, kOddSize, std::vector<uint8_t>(kOddSize, 'u')), Ascii(36867, "date")},
                      false);
        file = std::make_unique<ReaderFile>(JpegFile({ExifApp1(layout.Build())}));
        ASSERT_NE(nullptr, file->get());
    }
    void TearDown() override { Refuse(0, 0); }

    CExifReader *reader() const { return file->get(); }

    std::unique_ptr<ReaderFile> file;
    ExifTagValue value = {};
};

// The value is fetched, its copy into the slot refused: the slot that held
// another wanted tag keeps it, whole.
TEST_F(RefusedAllocation, AWantedSlotKeepsItsValueWhenTheCopyFails)
{
    ASSERT_EQ(0, zRExifGetTag(reader(), 36867, &value));
    const char *date = static_cast<const char *>(value.data);
    Refuse(kOddSize, 1);
    EXPECT_EQ(-1, zRExifGetTag(reader(), 37510, &value));
    EXPECT_EQ(36867u, reader()->m_wantedTags->tag);
    EXPECT_EQ(std::string("date", 5), std::string(date, 5));
}

TEST_F(RefusedAllocation, ACachedTagWithoutMemoryIsNotCached)
{
    Refuse(kOddSize, 0);
    EXPECT_EQ(-1, zRExifGetTag(reader(), 271, &value));
    EXPECT_EQ(0, reader()->m_hasMake);
    EXPECT_EQ(1, reader()->m_tagFound);
}

// Either the read buffer or the copy of the thumbnail refused: nothing is
// loaded, and a later call with memory delivers.
class RefusedThumbnail : public RefusedAllocation, public ::testing::WithParamInterface<int> {};

TEST_P(RefusedThumbnail, LeavesNothingLoaded)
{
    Refuse(kOddSize, GetParam());
    ExifBuffer out = {};
    EXPECT_EQ(-1, zRExifGetThumbnailData(reader(), &out));
    EXPECT_EQ(0, reader()->m_thumbLoaded);
    EXPECT_EQ(1, zRExifIsThumbnailExist(reader()));
    Refuse(0, 0);
    ASSERT_EQ(0, zRExifGetThumbnailData(reader(), &out));
    EXPECT_EQ(kOddSize, out.size);
}

INSTANTIATE_TEST_SUITE_P(Reader, RefusedThumbnail, ::testing::Values(0, 1));

}  // namespace
