#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "streams/stream.h"
#include "tree/document.h"
#include "tree/walk.h"

namespace {

// A chain this deep would exhaust the stack in a recursive walk or
// destructor.
TEST(LongChains, WalksAndDestructionNeedNoStack)
{
    CNode *deep = NewStructuralNode(1, KIND_PLAIN, 0);
    CNode *at = deep;
    for (int i = 0; i < 200000; i++) {
        at->m_child = NewStructuralNode(2, KIND_PLAIN, 0);
        at->m_child->m_parent = at;
        at = at->m_child;
    }
    at->m_id = 3;
    EXPECT_EQ(nullptr, FindNode(deep, 12345));
    EXPECT_EQ(at, FindNode(deep, 3));
    delete deep;
}

// A payload is read once and kept until it is unloaded; what the file can't
// give reads as zeros, and nothing is read for an empty segment or without a
// source.
TEST(MarkerData, LoadsOnceWithinTheFile)
{
    std::vector<uint8_t> file = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
    CStreamIO *stream = nullptr;
    ASSERT_EQ(1, CreateMemoryStream(&stream, file.data(), int32_t(file.size())));
    unsigned char *data = nullptr;
    int32_t size = 0;
    CMarker marker(225, 3, 4);
    ASSERT_EQ(1, marker.Load(stream, &data, &size));
    EXPECT_EQ((std::vector<uint8_t>{4, 5, 6}), std::vector<uint8_t>(data, data + size));
    file[4] = 99;
    marker.Load(stream, &data, &size);
    EXPECT_EQ(4, data[0]);
    marker.Unload();
    marker.Load(stream, &data, &size);
    EXPECT_EQ(99, data[0]);

    CMarker cut(254, 6, 8);
    ASSERT_EQ(1, cut.Load(stream, &data, &size));
    EXPECT_EQ((std::vector<uint8_t>{8, 9, 0, 0, 0, 0}), std::vector<uint8_t>(data, data + size));

    CMarker empty(254, 0, 2);
    EXPECT_EQ(0, empty.Load(stream, &data, &size));
    EXPECT_EQ(BLOCK_ON_FILE, empty.m_state);
    CMarker sourceGone(254, 4, 2);
    EXPECT_EQ(0, sourceGone.Load(nullptr, &data, &size));
    DeleteStream(stream);
}

// A replacement may come from the block's own bytes; an empty block has
// nothing to replace.
TEST(BlockData, ReplacingCopiesBeforeItReleases)
{
    CMarker block(254, 0, 0);
    unsigned char *data = nullptr;
    int32_t size = 0;
    EXPECT_EQ(0, block.ReplaceData("ab", 2));
    ASSERT_EQ(1, block.SetData("abcdef", 6));
    block.GetData(&data, &size);
    ASSERT_EQ(1, block.ReplaceData(data + 2, 3));
    block.GetData(&data, &size);
    EXPECT_EQ("cde", std::string(reinterpret_cast<char *>(data), size));
    EXPECT_EQ(0, block.SetData("x", 0));
    block.GetData(&data, &size);
    EXPECT_EQ("cde", std::string(reinterpret_cast<char *>(data), size));
}

}  // namespace
