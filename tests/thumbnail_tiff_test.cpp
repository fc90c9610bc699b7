#include <gtest/gtest.h>

#include "support/thumb_jpeg.h"
#include "tree/walk.h"

namespace {

const char *const kThumbIfd = "3:7 254 259 282 283 296 513 514 60";

struct TiffDoc {
    explicit TiffDoc(const std::vector<std::vector<HandTag>> &ifds)
    {
        doc.m_format = FORMAT_TIFF;
        HangTiffBlock(doc, nullptr, ifds);
    }

    int Set(std::vector<uint8_t> &thumb)
    {
        ExifBuffer buffer = BufferOf(thumb);
        return zExifSetThumbnailData(&doc, &buffer);
    }

    CExifDoc doc;
};

const std::vector<HandTag> kPage = {{256, 3, 1, 640}, {257, 3, 1, 480}};

TEST(TiffThumbnail, ReplacesTheEntriesOfAReducedIfd1)
{
    TiffDoc tiff({kPage, {{254, 4, 1, 1}, {256, 3, 1, 160}}});
    std::vector<uint8_t> thumb = FakeThumbnail(700);
    ASSERT_EQ(0, tiff.Set(thumb));
    EXPECT_EQ(kThumbIfd, IfdShape(tiff.doc.FindIfd(1)));
    EXPECT_EQ((std::vector<uint32_t>{0, 1}), IfdIndices(tiff.doc));
    EXPECT_EQ(1u, AsTag(FindInChain(tiff.doc.FindIfd(1)->m_child, 254))->m_value);
    EXPECT_EQ(700u, AsTag(FindNode(tiff.doc.m_thumbTag, 514))->m_value);
}

// Another page in IFD 1 stays and moves up, and so does everything behind it:
// the writer reaches each IFD by its index.
TEST(TiffThumbnail, PutsANewIfdInFrontOfAnotherPage)
{
    TiffDoc tiff({kPage, {{254, 4, 1, 0}, {256, 3, 1, 320}}, {{256, 3, 1, 200}}});
    std::vector<uint8_t> thumb = FakeThumbnail(700);
    ASSERT_EQ(0, tiff.Set(thumb));
    EXPECT_EQ((std::vector<uint32_t>{0, 1, 2, 3}), IfdIndices(tiff.doc));
    ASSERT_EQ(4, tiff.doc.CountIfds());
    EXPECT_EQ(kThumbIfd, IfdShape(tiff.doc.FindIfd(1)));
    EXPECT_EQ(320u, AsTag(FindInChain(tiff.doc.FindIfd(2)->m_child, 256))->m_value);
    EXPECT_EQ(200u, AsTag(FindInChain(tiff.doc.FindIfd(3)->m_child, 256))->m_value);
}

TEST(TiffThumbnail, AddsIfd1BehindASingleIfd)
{
    TiffDoc tiff({kPage});
    std::vector<uint8_t> thumb = FakeThumbnail(700);
    ASSERT_EQ(0, tiff.Set(thumb));
    EXPECT_EQ(std::string("1 2:0[3:2 256 257 60] 2:1[") + kThumbIfd + "]", TreeShape(tiff.doc));
}

// The flags say what the tree holds, so the getters hand out the new bytes and
// a second set replaces them in place.
TEST(TiffThumbnail, KeepsTheFlagsTrue)
{
    TiffDoc tiff({kPage});
    std::vector<uint8_t> first = FakeThumbnail(700, 1);
    ASSERT_EQ(0, tiff.Set(first));
    EXPECT_EQ(1, zExifIsThumbnailExist(&tiff.doc));
    EXPECT_EQ(1, tiff.doc.m_thumbLoaded);
    EXPECT_EQ(uint32_t(THUMB_TYPE_JPEG), zExifGetThumbType(&tiff.doc));
    EXPECT_EQ(first, GetThumbnail(&tiff.doc));

    std::string shape = TreeShape(tiff.doc);
    std::vector<uint8_t> second = FakeThumbnail(90, 2);
    ASSERT_EQ(0, tiff.Set(second));
    EXPECT_EQ(shape, TreeShape(tiff.doc));
    EXPECT_EQ(second, GetThumbnail(&tiff.doc));
    EXPECT_EQ(90u, AsTag(FindNode(tiff.doc.m_thumbTag, 514))->m_value);

    std::vector<uint8_t> none;
    EXPECT_EQ(-1, tiff.Set(none));
    EXPECT_EQ(second, GetThumbnail(&tiff.doc));
}

// Without an IFD 0 there is no chain for a new IFD to join.
TEST(TiffThumbnail, RefusesWhereNoIfdCanGo)
{
    TiffDoc headerOnly({});
    std::vector<uint8_t> thumb = FakeThumbnail(70);
    EXPECT_EQ(-1, headerOnly.Set(thumb));
    EXPECT_EQ("1", TreeShape(headerOnly.doc));
    EXPECT_EQ(0, zExifIsThumbnailExist(&headerOnly.doc));

    TiffDoc pageWithoutIfd0({kPage, {{254, 4, 1, 0}}});
    CNode *ifd0 = pageWithoutIfd0.doc.FindIfd(0);
    pageWithoutIfd0.doc.m_root->m_next = ifd0->m_next;
    ifd0->m_next = nullptr;
    DeleteTree(ifd0);
    std::string before = TreeShape(pageWithoutIfd0.doc);
    EXPECT_EQ(-1, pageWithoutIfd0.Set(thumb));
    EXPECT_EQ(before, TreeShape(pageWithoutIfd0.doc));
}

// An IFD 1 that held the Exif IFD's pointer takes it along; the shortcut goes.
TEST(TiffThumbnail, ForgetsShortcutsIntoReplacedEntries)
{
    TiffDoc tiff({kPage, {{254, 4, 1, 1}, {34665, 4, 1, 0}}});
    ASSERT_NE(nullptr, tiff.doc.m_exifIfdTag);
    std::vector<uint8_t> thumb = FakeThumbnail(70);
    ASSERT_EQ(0, tiff.Set(thumb));
    EXPECT_EQ(nullptr, tiff.doc.m_exifIfdTag);
}

}  // namespace
