#include <gtest/gtest.h>

#include <cstring>

#include "reader/tif_tag_list.h"
#include "support/tag_steps.h"
#include "support/thumb_tree.h"
#include "support/tree_check.h"
#include "tree/walk.h"

namespace {

// A list as the reader makes it, malloc'd list, items and data, of the tags
// of these entries; an entry of no bytes gets null data.
TifTagList *MakeList(const std::vector<EntryDef> &entries)
{
    TifTagList *list = AllocTifTagList(int32_t(entries.size()));
    for (const EntryDef &entry : entries) {
        TifTagItem *item = AllocTifTagItem(uint32_t(entry.bytes.size()));
        item->tag = uint32_t(entry.tag);
        item->type = entry.type;
        item->count = entry.count;
        if (!entry.bytes.empty()) std::memcpy(item->data, entry.bytes.data(), entry.bytes.size());
        AddTifTagItem(list, item);
    }
    return list;
}

const EntryDef kDate = Ascii(36867, "2020:01:02 03:04:05");

struct TiffDoc : ::testing::Test {
    void SetUp() override
    {
        doc.m_format = FORMAT_TIFF;
        HangTiffBlock(doc, nullptr, {{{256, 3, 1, 64}, {271, 2, 4, 0x6D6143}}});
    }
    CExifDoc doc;
};

// Only tags of the Exif IFD are taken, orientation among them, into a new
// Exif IFD or over what it holds. Items without the bytes that their type
// and count need are passed over, and so are missing items. The list is
// released on success.
TEST_F(TiffDoc, PoursTableTagsIntoTheExifIfd)
{
    ASSERT_EQ(0, zExifSetTIFExifData(&doc, MakeList({Ascii(271, "New"), kDate, Short(274, 6), Short(41986, 0)})));
    EXPECT_EQ("1 2:0[3:3 256 271 34665[3:3 274 36867 41986 60] 60]", Outline(doc));
    EXPECT_EQ("", RunSteps(doc, {Get(Ascii(271, "Cam"), 0), Get(kDate, 0), Get(Short(274, 6), 0)}));
    EXPECT_EQ(1, zExifIsExifExist(&doc));

    TifTagList *list = MakeList({Short(41986, 1), EntryDef{36868, 2, 20, {}, {}}, EntryDef{41987, 99, 3, {}, {}},
                                 EntryDef{41990, 3, 0, {}, {}}, EntryDef{41989, 3, 1, {}, {}}});
    std::free(list->items[4]);
    list->items[4] = nullptr;
    ASSERT_EQ(0, zExifSetTIFExifData(&doc, list));
    EXPECT_EQ("1 2:0[3:3 256 271 34665[3:5 274 36867 41986 41987 41990 60] 60]", Outline(doc));
    EXPECT_EQ("", RunSteps(doc, {Get(Short(41986, 1), 0)}));
}

TEST(SetTIFExifData, RefusesOtherDocumentsAndKeepsTheList)
{
    CExifDoc jpeg;
    jpeg.m_format = FORMAT_JPEG;
    TifTagList *list = MakeList({kDate});
    EXPECT_EQ(-1, zExifSetTIFExifData(&jpeg, list));
    EXPECT_EQ(36867u, list->items[0]->tag);
    FreeTifTagList(list);

    CExifDoc tiff;
    tiff.m_format = FORMAT_TIFF;
    EXPECT_EQ(-1, zExifSetTIFExifData(&tiff, nullptr));
}

}  // namespace
