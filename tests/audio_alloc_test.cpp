#include <gtest/gtest.h>

#include <string>

#include "support/fault_injection.h"
#include "support/fpxr_builder.h"
#include "support/memory_jpeg.h"
#include "support/temp_dir.h"
#include "zexif.h"

namespace {

// A 130,000-byte file needs three nodes; whichever allocation fails, the old
// audio and the tree stay as they were, and a later call succeeds.
TEST(AudioAllocation, FailureLeavesNoHalfPlan)
{
    TempDir dir;
    std::string audio = dir.Write("a.wav", RiffWave(130000));
    for (uint64_t refuse = 1;; refuse++) {
        MemoryJpeg jpeg;
        jpeg.Segment(0xE0, {'J', 'F', 'I', 'F', 0}).Segments(0xE2, FpxrPayloads(RiffWave(3000), 4, {1000}));
        auto doc = jpeg.Load();
        auto before = ChainOf(*doc);
        FaultWindow window(FAULT_ALLOC, refuse);
        int result = zExifSetAudioFile(doc.get(), audio.c_str());
        if (!window.Close()) {
            EXPECT_EQ(0, result);
            EXPECT_EQ(6u, ChainOf(*doc).size());
            EXPECT_GT(refuse, 3u);
            break;
        }
        EXPECT_EQ(-1, result) << refuse;
        EXPECT_EQ(before, ChainOf(*doc)) << refuse;
        EXPECT_EQ(nullptr, doc->m_audioPath) << refuse;
    }
}

}  // namespace
