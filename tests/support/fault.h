#ifndef ZEXIF_TESTS_SUPPORT_FAULT_H
#define ZEXIF_TESTS_SUPPORT_FAULT_H

#include <cstdint>
#include <functional>
#include <string>

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
    // "call N (read)": which call failed, for messages.
    std::string Describe(uint64_t failAt) const;
    unsigned m_struck = 0;

private:
    bool m_open = true;
};

// Runs attempt(failAt) for failAt = 1, 2, ... until it returns false: attempt
// opens a FaultWindow around the operation under test and returns whether the
// chosen call came. Every call up to the 64th fails once; beyond, the steps
// grow by a sixteenth, so that a long load is done in a few hundred runs.
// Returns the number of runs in which a call failed.
uint64_t ForEachFailingCall(const std::function<bool(uint64_t failAt)> &attempt);

#endif
