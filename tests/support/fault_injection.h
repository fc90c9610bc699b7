#ifndef ZEXIF_TESTS_FAULT_INJECTION_H
#define ZEXIF_TESTS_FAULT_INJECTION_H

#include <cstdint>
#include <functional>

#include "platform/fault_point.h"

// While alive, counts the library's calls at the sites of mask (FAULT_ALLOC
// counts its non-throwing allocations) and fails call number failAt.
class FaultWindow {
public:
    FaultWindow(unsigned mask, uint64_t failAt) { ListenForFaults(mask, failAt); }
    ~FaultWindow() { Close(); }
    FaultWindow(const FaultWindow &) = delete;
    FaultWindow &operator=(const FaultWindow &) = delete;

    // Stops listening; true when the chosen call came and failed.
    bool Close();
    // What the failed call was: "read", "write", ...; "" when none failed.
    const char *Site() const;

private:
    bool m_open = true;
    unsigned m_struck = 0;
};

// Runs attempt(failAt) for failAt = 1, 2, ... until a run in which the chosen
// call never came: attempt opens a FaultWindow around the operation under
// test and returns FaultWindow::Close's answer. Every call up to the 64th
// fails once; beyond, the steps grow by a sixteenth, so that a load that
// reads a large file byte by byte is still done in a few hundred runs.
// Returns the number of runs that failed a call.
uint64_t ForEachFailingCall(const std::function<bool(uint64_t failAt)> &attempt);

#endif
