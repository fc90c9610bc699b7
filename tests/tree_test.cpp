#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <vector>

#include "streams/stream.h"
#include "tree/document.h"
#include "tree/walk.h"

namespace {

CNode *Plain(int32_t id, uint32_t value = 0)
{
    CNode *node = new CNode;
    node->m_id = id;
    node->m_value = value;
    return node;
}

CTag *Tag(int32_t id, uint32_t type, int32_t count, uint32_t value)
{
    CTag *tag = new CTag;
    tag->m_id = id;
    tag->m_type = type;
    tag->m_count = count;
    tag->m_value = value;
    return tag;
}

// A TIFF-shaped document: header, IFD 0 with tags 271 and 34853 (a GPS IFD
// holding tags 1, 2, 3), IFD 1 with tag 513.
struct TiffShape : ::testing::Test {
    CExifDoc doc;
    CNode *ifd0 = nullptr;
    CNode *ifd1 = nullptr;
    CTag *gpsPointer = nullptr;
    CTag *gpsTag3 = nullptr;

    void SetUp() override
    {
        doc.AddChild(Plain(NODE_TIFF_HEADER));
        doc.AddSibling(ifd0 = Plain(NODE_IFD, 0));
        doc.AddChild(Plain(NODE_ENTRY_COUNT, 2));
        doc.AddSibling(Tag(271, 2, 4, 0));
        doc.AddSibling(gpsPointer = Tag(34853, 4, 1, 0));
        doc.AddChild(Plain(NODE_ENTRY_COUNT, 3));
        doc.AddSibling(Tag(1, 2, 2, 'N'));
        doc.AddSibling(Tag(2, 5, 3, 0));
        doc.AddSibling(gpsTag3 = Tag(3, 2, 2, 'E'));
        doc.AddSibling(Plain(NODE_NEXT_IFD));
        doc.MoveTo(gpsPointer);
        doc.AddSibling(Plain(NODE_NEXT_IFD));
        doc.MoveTo(ifd0);
        doc.AddSibling(ifd1 = Plain(NODE_IFD, 1));
        doc.AddChild(Plain(NODE_ENTRY_COUNT, 1));
        doc.AddSibling(Tag(513, 4, 1, 0));
        doc.AddSibling(Plain(NODE_NEXT_IFD));
    }
};

TEST_F(TiffShape, FindNodeWalksSubtreeThenLaterSiblingsInFileOrder)
{
    EXPECT_EQ(ifd0, FindNode(ifd0, NODE_IFD));
    EXPECT_EQ(gpsPointer->m_child, FindNode(gpsPointer->m_child, 3));
    EXPECT_EQ(gpsTag3, AsTag(FindNode(gpsPointer->m_child->m_next, 3)));
    EXPECT_EQ(NODE_ENTRY_COUNT, FindNode(ifd0, 3)->m_id);
    EXPECT_EQ(nullptr, AsTag(FindNode(ifd0, 3)));
    EXPECT_EQ(513, FindNode(ifd0, 513)->m_id);
    EXPECT_EQ(nullptr, FindNode(ifd1, 271));
    EXPECT_EQ(nullptr, FindNode(gpsTag3, 271));
    EXPECT_EQ(nullptr, FindNode(nullptr, 1));
}

TEST_F(TiffShape, IfdsAreFoundByIndexAndCounted)
{
    EXPECT_EQ(ifd0, doc.FindIfd(0));
    EXPECT_EQ(ifd1, doc.FindIfd(1));
    EXPECT_EQ(nullptr, doc.FindIfd(2));
    EXPECT_EQ(2, doc.CountIfds());
    EXPECT_EQ(nullptr, doc.FindExifTag(36867));
}

TEST_F(TiffShape, ChainSearchStaysOnOneLevel)
{
    EXPECT_EQ(nullptr, FindInChain(nullptr, 226));
    EXPECT_EQ(ifd1, FindInChain(doc.m_root, NODE_IFD)->m_next);
    EXPECT_EQ(nullptr, FindInChain(doc.m_root, 271));
}

TEST_F(TiffShape, ParentsFollowTheCursorOperations)
{
    EXPECT_EQ(nullptr, doc.m_root->m_parent);
    EXPECT_EQ(nullptr, ifd1->m_parent);
    EXPECT_EQ(gpsPointer, gpsTag3->m_parent);
    EXPECT_EQ(1, gpsPointer->m_hasChild);
    CNode *link = FindInChain(ifd0->m_child, NODE_NEXT_IFD);
    EXPECT_EQ(ifd0, link->m_parent);
}

TEST(Cursor, AddChildWithoutCursorWritesTheRoot)
{
    CExifDoc doc;
    CNode *root = Plain(216);
    doc.AddChild(root);
    EXPECT_EQ(root, doc.m_root);
    EXPECT_EQ(0, root->m_hasChild);
    doc.MoveUp();
    EXPECT_EQ(nullptr, doc.m_cur);
    EXPECT_EQ(&doc.m_root, doc.m_nextSlot);
}

TEST(InsertAfterNode, KeepsTheChainAndTheParent)
{
    CNode parent;
    CNode *first = Plain(10);
    parent.m_child = first;
    first->m_parent = &parent;
    CNode *last = Plain(30);
    InsertAfter(first, last);
    CNode *middle = Plain(20);
    InsertAfter(first, middle);
    EXPECT_EQ(middle, first->m_next);
    EXPECT_EQ(last, middle->m_next);
    EXPECT_EQ(nullptr, last->m_next);
    EXPECT_EQ(&parent, last->m_parent);
}

// Chains this long would exhaust the stack in a recursive walk or destructor.
TEST(LongChains, WalksAndDestructionNeedNoStack)
{
    const int n = 200000;
    CExifDoc doc;
    doc.AddChild(Plain(216));
    for (int i = 0; i < n; i++) doc.AddSibling(new CMarker(254, 1, i));
    EXPECT_EQ(nullptr, FindNode(doc.m_root, 12345));

    CNode *deep = Plain(1);
    CNode *at = deep;
    for (int i = 0; i < n; i++) {
        at->m_child = Plain(2);
        at->m_child->m_parent = at;
        at = at->m_child;
    }
    at->m_id = 3;
    EXPECT_EQ(nullptr, FindNode(deep, 12345));
    EXPECT_EQ(at, FindNode(deep, 3));
    delete deep;
}

struct MarkerData : ::testing::Test {
    std::vector<uint8_t> file = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
    CStreamIO *stream = nullptr;
    void SetUp() override { ASSERT_EQ(1, CreateMemoryStream(&stream, file.data(), int32_t(file.size()))); }
    void TearDown() override { DeleteStream(stream); }
};

TEST_F(MarkerData, LoadReadsOnceUntilUnloaded)
{
    CMarker marker(225, 3, 4);
    unsigned char *data = nullptr;
    int32_t size = 0;
    ASSERT_EQ(1, marker.Load(stream, &data, &size));
    EXPECT_EQ(3, size);
    EXPECT_EQ(4, data[0]);
    file[4] = 99;
    marker.Load(stream, &data, &size);
    EXPECT_EQ(4, data[0]);
    marker.Unload();
    EXPECT_EQ(BLOCK_ON_FILE, marker.m_state);
    marker.Load(stream, &data, &size);
    EXPECT_EQ(99, data[0]);
}

TEST_F(MarkerData, LoadRefusesWhatCantBeRead)
{
    unsigned char *data = reinterpret_cast<unsigned char *>(0x1);
    int32_t size = -7;
    CMarker soi(216, 0, 0);
    EXPECT_EQ(1, soi.Load(stream, &data, &size));
    EXPECT_EQ(-7, size);

    CMarker empty(254, 0, 2);
    EXPECT_EQ(0, empty.Load(stream, &data, &size));
    EXPECT_EQ(BLOCK_ON_FILE, empty.m_state);

    CMarker sourceGone(254, 4, 2);
    EXPECT_EQ(0, sourceGone.Load(nullptr, &data, &size));
}

TEST_F(MarkerData, ShortReadLeavesZerosNotGarbage)
{
    CMarker marker(254, 6, 8);
    unsigned char *data = nullptr;
    int32_t size = 0;
    ASSERT_EQ(1, marker.Load(stream, &data, &size));
    EXPECT_EQ((std::vector<uint8_t>{8, 9, 0, 0, 0, 0}), std::vector<uint8_t>(data, data + size));
}

TEST(BlockData, SetReplaceAndAdopt)
{
    CTag tag;
    const char text[] = "abcdef";
    EXPECT_EQ(0, tag.ReplaceData(text, 6));
    EXPECT_EQ(nullptr, tag.m_data);
    EXPECT_EQ(0, tag.SetData(text, 0));
    ASSERT_EQ(1, tag.SetData(text, 6));
    ASSERT_EQ(1, tag.SetData(text, 3));
    EXPECT_EQ(3, tag.m_size);
    ASSERT_EQ(1, tag.ReplaceData(text + 1, 2));
    EXPECT_EQ('b', tag.m_data[0]);

    CMarker marker(225, 0, 0);
    marker.AdoptData(new unsigned char[4]{1, 2, 3, 4}, 4);
    EXPECT_EQ(BLOCK_IN_MEMORY, marker.m_state);
    EXPECT_EQ(4, marker.m_size);
}

TEST(TagValue, CopyFollowsTheTypeClasses)
{
    CTag bytes;
    bytes.m_type = 1;
    bytes.m_count = 4;
    std::memcpy(&bytes.m_value, "\x01\x02\x03\x04", 4);
    void *copy = nullptr;
    ASSERT_EQ(1, bytes.CopyValue(&copy));
    EXPECT_EQ(0, std::memcmp(copy, "\x01\x02\x03\x04", 4));
    std::free(copy);

    CTag rational;
    rational.m_type = 5;
    rational.m_count = 1;
    const uint32_t half[2] = {1, 2};
    rational.SetData(half, 8);
    ASSERT_EQ(1, rational.CopyValue(&copy));
    EXPECT_EQ(0, std::memcmp(copy, half, 8));
    std::free(copy);

    CTag unknown;
    unknown.m_type = 13;
    unknown.m_count = 2;
    void *untouched = &unknown;
    EXPECT_EQ(1, unknown.CopyValue(&untouched));
    EXPECT_EQ(&unknown, untouched);

    CTag none;
    none.m_type = 4;
    none.m_count = 0;
    EXPECT_EQ(1, none.CopyValue(&copy));
    EXPECT_EQ(nullptr, copy);
}

}  // namespace
