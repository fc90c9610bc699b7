#include <gtest/gtest.h>

#include <cstring>

#include "reader/tif_tag_list.h"
#include "support/thumb_tree.h"
#include "tree/walk.h"
#include "zexif.h"

namespace {

// A list as the reader makes it: malloc'd list, items and data.
struct ListItem {
    uint32_t tag;
    uint32_t type;
    uint32_t count;
    std::vector<uint8_t> data;  // empty: null data
};

TifTagList *MakeList(const std::vector<ListItem> &items)
{
    TifTagList *list = AllocTifTagList(int32_t(items.size()));
    for (const ListItem &def : items) {
        TifTagItem *item = AllocTifTagItem(uint32_t(def.data.size()));
        item->tag = def.tag;
        item->type = def.type;
        item->count = def.count;
        if (!def.data.empty()) std::memcpy(item->data, def.data.data(), def.data.size());
        AddTifTagItem(list, item);
    }
    return list;
}

const std::vector<uint8_t> kDate = {'2', '0', '2', '0', ':', '0', '1', ':', '0', '2', ' ', '0',
                                    '3', ':', '0', '4', ':', '0', '5', 0};

struct TiffDoc : ::testing::Test {
    void SetUp() override
    {
        doc.m_format = FORMAT_TIFF;
        HangTiffBlock(doc, nullptr, {{{256, 3, 1, 64}, {271, 2, 4, 0x6D6143}}});
    }
    CExifDoc doc;
};

// Only tags of the Exif IFD are taken, orientation among them; the list is
// released on success.
TEST_F(TiffDoc, PoursTableTagsIntoANewExifIfd)
{
    TifTagList *list = MakeList({{271, 2, 4, {'N', 'e', 'w', 0}}, {36867, 2, 20, kDate}, {274, 3, 1, {6, 0}}});
    ASSERT_EQ(0, zExifSetTIFExifData(&doc, list));
    EXPECT_EQ("1 2:0[3:3 256 271 34665[3:2 274 36867 60] 60]", TreeShape(doc));
    EXPECT_EQ(0x6D6143u, AsTag(FindNode(doc.m_root, 271))->m_value);
    EXPECT_EQ(1, zExifIsExifExist(&doc));
    ExifTagValue value{0, 0, nullptr};
    ASSERT_EQ(0, zExifGetTag(&doc, 36867, &value, 0));
    EXPECT_EQ(0, std::memcmp(kDate.data(), value.data, kDate.size()));
    std::free(value.data);
}

TEST_F(TiffDoc, ReplacesWhatTheExifIfdHolds)
{
    ASSERT_EQ(0, zExifSetTIFExifData(&doc, MakeList({{41986, 3, 1, {0, 0}}})));
    ASSERT_EQ(0, zExifSetTIFExifData(&doc, MakeList({{41986, 3, 1, {1, 0}}})));
    EXPECT_EQ("1 2:0[3:3 256 271 34665[3:1 41986 60] 60]", TreeShape(doc));
    EXPECT_EQ(1u, AsTag(FindNode(doc.m_exifIfdTag, 41986))->m_value);
}

// Items without the bytes that their type and count need are passed over, and
// so are missing items.
TEST_F(TiffDoc, PassesOverItemsWithoutTheirBytes)
{
    TifTagList *list = MakeList({{36867, 2, 20, {}}, {41987, 99, 3, {}}, {41986, 3, 0, {}}, {41988, 5, 1, {}}});
    TifTagItem *missing = list->items[3];
    list->items[3] = nullptr;
    std::free(missing);
    ASSERT_EQ(0, zExifSetTIFExifData(&doc, list));
    EXPECT_EQ("1 2:0[3:3 256 271 34665[3:2 41986 41987 60] 60]", TreeShape(doc));
}

TEST(SetTIFExifData, RefusesOtherDocumentsAndKeepsTheList)
{
    CExifDoc jpeg;
    jpeg.m_format = FORMAT_JPEG;
    TifTagList *list = MakeList({{36867, 2, 20, kDate}});
    EXPECT_EQ(-1, zExifSetTIFExifData(&jpeg, list));
    EXPECT_EQ(36867u, list->items[0]->tag);
    FreeTifTagList(list);

    CExifDoc tiff;
    tiff.m_format = FORMAT_TIFF;
    EXPECT_EQ(-1, zExifSetTIFExifData(&tiff, nullptr));
}

}  // namespace
