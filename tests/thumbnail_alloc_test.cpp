#include <gtest/gtest.h>

#include <cstring>
#include <functional>

#include "support/fault_injection.h"
#include "support/exif_block.h"
#include "support/thumb_jpeg.h"

namespace {

struct Snapshot {
    explicit Snapshot(const CExifDoc &doc)
        : shape(TreeShape(doc)), thumbTag(doc.m_thumbTag), exifMarker(doc.m_exifMarker),
          flags{doc.m_hasThumb, doc.m_thumbLoaded, int32_t(doc.m_thumbType)} {}
    bool operator==(const Snapshot &o) const
    {
        return shape == o.shape && thumbTag == o.thumbTag && exifMarker == o.exifMarker && flags == o.flags;
    }

    std::string shape;
    CTag *thumbTag;
    CMarker *exifMarker;
    std::vector<int32_t> flags;
};

struct AllocCase {
    const char *name;
    std::function<std::unique_ptr<InMemoryExifJpeg>()> make;
    int format;
};

class RefusedAllocation : public ::testing::TestWithParam<AllocCase> {};

// Each allocation of a set is refused in turn: the call fails and the
// document stays as it was, until enough memory lets it through.
TEST_P(RefusedAllocation, LeavesTheDocumentAsItWas)
{
    std::vector<uint8_t> thumb = FakeThumbnail(300);
    ExifBuffer buffer = BufferOf(thumb);
    for (int refuse = 0;; refuse++) {
        auto file = GetParam().make();
        file->doc->m_format = GetParam().format;
        Snapshot before(*file->doc);
        FaultWindow window(FAULT_ALLOC, uint64_t(refuse) + 1);
        int result = zExifSetThumbnailData(file->doc.get(), &buffer);
        bool refused = window.Close();
        if (!refused) {
            ASSERT_EQ(0, result);
            EXPECT_EQ(thumb, GetThumbnail(file->doc.get()));
            EXPECT_GT(refuse, 0);
            break;
        }
        EXPECT_EQ(-1, result) << refuse;
        EXPECT_TRUE(before == Snapshot(*file->doc)) << refuse;
    }
}

std::unique_ptr<InMemoryExifJpeg> Make(size_t payload, const std::vector<std::vector<HandTag>> &ifds)
{
    return std::make_unique<InMemoryExifJpeg>(payload, std::vector<uint8_t>{}, ifds);
}

std::unique_ptr<InMemoryExifJpeg> WithoutApp1(std::unique_ptr<InMemoryExifJpeg> file)
{
    CNode *app0 = file->doc->m_root->m_next;
    app0->m_next = file->app1->m_next;
    file->app1->m_next = nullptr;
    DeleteTree(file->app1);
    file->app1 = nullptr;
    return file;
}

std::unique_ptr<InMemoryExifJpeg> WithoutIfd0(std::unique_ptr<InMemoryExifJpeg> file)
{
    CNode *header = file->app1->m_child;
    CNode *ifd0 = header->m_next;
    header->m_next = ifd0->m_next;
    ifd0->m_next = nullptr;
    DeleteTree(ifd0);
    return file;
}

const std::vector<HandTag> kIfd0 = {{271, 2, 4, 0}};
const std::vector<HandTag> kPage = {{254, 4, 1, 0}, {256, 3, 1, 9}};
const std::vector<HandTag> kReduced = {{254, 4, 1, 1}, {256, 3, 1, 9}};

INSTANTIATE_TEST_SUITE_P(
    Paths, RefusedAllocation,
    ::testing::Values(
        AllocCase{"NewApp1", [] { return WithoutApp1(Make(100, {})); }, FORMAT_JPEG},
        AllocCase{"Ifd1IntoApp1", [] { return Make(100, {kIfd0, kPage}); }, FORMAT_JPEG},
        AllocCase{"Ifd0AndIfd1IntoApp1", [] { return WithoutIfd0(Make(100, {kIfd0, kPage})); }, FORMAT_JPEG},
        AllocCase{"Replacement", [] { return Make(400, {kIfd0, OldThumbIfd(20)}); }, FORMAT_JPEG},
        AllocCase{"TiffInsert", [] { return Make(100, {kIfd0, kPage}); }, FORMAT_TIFF},
        AllocCase{"TiffRebuild", [] { return Make(100, {kIfd0, kReduced}); }, FORMAT_TIFF}),
    [](const ::testing::TestParamInfo<AllocCase> &param) { return std::string(param.param.name); });

// The marker, its stream and the thumbnail's copy are all or nothing, and a
// refused call leaves the buffer to its caller. What the parse can't make is
// left out, as of a block that doesn't parse.
TEST(InsertAllocation, FailsWholeOrTakesTheBuffer)
{
    std::vector<uint8_t> thumb = FakeThumbnail(300);
    std::vector<uint8_t> bytes = ExifPayload(ExifBlock({false, thumb}));
    for (int refuse = 0;; refuse++) {
        MemoryJpeg jpeg;
        jpeg.Segment(0xE0, JfifPayload());
        auto doc = jpeg.Load();
        Snapshot before(*doc);
        ExifBuffer buffer{new unsigned char[bytes.size()], uint32_t(bytes.size())};
        std::memcpy(buffer.data, bytes.data(), bytes.size());
        FaultWindow window(FAULT_ALLOC, uint64_t(refuse) + 1);
        int result = zExifInsertExifMarker(doc.get(), &buffer);
        bool refused = window.Close();
        if (result != 0) {
            EXPECT_TRUE(before == Snapshot(*doc)) << refuse;
            delete[] buffer.data;
        }
        if (!refused) {
            ASSERT_EQ(0, result);
            EXPECT_EQ(thumb, GetThumbnail(doc.get()));
            break;
        }
    }
}

}  // namespace
