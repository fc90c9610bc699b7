#include <gtest/gtest.h>

#include <new>

#include "support/byte_builder.h"
#include "support/samples.h"
#include "support/temp_dir.h"
#include "zexif.h"

namespace {

// Counts down the library's non-throwing allocations and refuses the one at
// zero; -1 lets every allocation pass.
int g_allocationsBeforeRefusal = -1;
bool g_refused = false;

void *Allocate(std::size_t size, bool array)
{
    if (g_allocationsBeforeRefusal == 0) {
        g_refused = true;
        return nullptr;
    }
    if (g_allocationsBeforeRefusal > 0) g_allocationsBeforeRefusal--;
    try {
        return array ? ::operator new[](size) : ::operator new(size);
    } catch (...) {
        return nullptr;
    }
}

}  // namespace

void *operator new(std::size_t size, const std::nothrow_t &) noexcept
{
    return Allocate(size, false);
}

void *operator new[](std::size_t size, const std::nothrow_t &) noexcept
{
    return Allocate(size, true);
}

namespace {

// Refuses each allocation of a load in turn: every refusal gives null, and
// leak checking of the sanitizer build shows that nothing made before it
// survives.
void LoadWithEachAllocationRefused(const std::string &path)
{
    int refusals = 0;
    for (int n = 0;; n++) {
        g_allocationsBeforeRefusal = n;
        g_refused = false;
        CExifDoc *doc = zExifLoadFile(path.c_str());
        bool refused = g_refused;
        g_allocationsBeforeRefusal = -1;
        if (!refused) {
            ASSERT_NE(nullptr, doc) << path;
            zExifDestroy(doc);
            break;
        }
        EXPECT_EQ(nullptr, doc) << "allocation " << n;
        if (doc != nullptr) zExifDestroy(doc);
        refusals++;
    }
    EXPECT_GT(refusals, 10);
}

TEST(LoadAllocation, EveryRefusalFailsTheLoadCleanly)
{
    TempDir dir;
    LoadWithEachAllocationRefused(dir.Copy(Sample("jpg/gps/DSCN0010.jpg"), "gps.jpg"));
    LoadWithEachAllocationRefused(dir.Copy(Sample("tiff/Arbitro.tiff"), "a.tiff"));
}

}  // namespace
