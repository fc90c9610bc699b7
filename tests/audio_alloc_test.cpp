#include <gtest/gtest.h>

#include <new>
#include <string>

#include "support/fpxr_builder.h"
#include "support/memory_jpeg.h"
#include "support/temp_dir.h"
#include "zexif.h"

namespace {

// Counts down the non-throwing single-object allocations, which is how nodes
// are made, and refuses the one that reaches zero. Negative: no refusal.
int g_refuseIn = -1;

}  // namespace

void *operator new(std::size_t size, const std::nothrow_t &) noexcept
{
    if (g_refuseIn >= 0 && g_refuseIn-- == 0) return nullptr;
    try {
        return ::operator new(size);
    } catch (...) {
        return nullptr;
    }
}

namespace {

class NodeAllocation : public ::testing::TestWithParam<int> {};

// A 130,000-byte file needs three nodes; whichever can't be made, the old
// audio and the tree stay as they were.
TEST_P(NodeAllocation, FailureLeavesNoHalfPlan)
{
    TempDir dir;
    std::string audio = dir.Write("a.wav", RiffWave(130000));
    MemoryJpeg jpeg;
    jpeg.Segment(0xE0, {'J', 'F', 'I', 'F', 0}).Segments(0xE2, FpxrPayloads(RiffWave(3000), 4, {1000}));
    auto doc = jpeg.Load();
    auto before = ChainOf(*doc);

    g_refuseIn = GetParam();
    int result = zExifSetAudioFile(doc.get(), audio.c_str());
    g_refuseIn = -1;

    EXPECT_EQ(-1, result);
    EXPECT_EQ(before, ChainOf(*doc));
    EXPECT_EQ(nullptr, doc->m_audioPath);
    EXPECT_EQ(0, zExifSetAudioFile(doc.get(), audio.c_str()));
    EXPECT_EQ(6u, ChainOf(*doc).size());
}

INSTANTIATE_TEST_SUITE_P(EachNode, NodeAllocation, ::testing::Values(0, 1, 2));

}  // namespace
