#ifndef ZEXIF_PLATFORM_FAULT_POINT_H
#define ZEXIF_PLATFORM_FAULT_POINT_H

#include <cerrno>
#include <cstdint>

// The places where the library deals with the system: each can be made to
// fail at its n-th call, so that tests prove a failure anywhere gives a
// clear result and loses nothing. Allocations are counted by the tests' own
// operator new. Shipped code pays the test of one flag per call.
enum FaultSite : unsigned {
    FAULT_OPEN = 1u << 0,
    FAULT_READ = 1u << 1,
    FAULT_WRITE = 1u << 2,
    FAULT_SEEK = 1u << 3,
    FAULT_CLOSE = 1u << 4,
    FAULT_SYNC = 1u << 5,
    FAULT_RENAME = 1u << 6,
    FAULT_COPY = 1u << 7,
    FAULT_ALLOC = 1u << 8,
    FAULT_STAT = 1u << 9,
    FAULT_OWNER = 1u << 10,
    FAULT_ANY = (1u << 11) - 1,
};

extern int g_faultsListening;

// Counts a call at site; 1 when it is the call a test chose to fail.
int CountFaultCall(FaultSite site);

inline int FaultStrikes(FaultSite site)
{
    return g_faultsListening && CountFaultCall(site);
}

// FaultStrikes in front of a system call: a struck call fails as the system
// would, with errno set, so that no caller takes it for "no such file".
inline int SystemCallFails(FaultSite site)
{
    if (!FaultStrikes(site)) return 0;
    errno = EIO;
    return 1;
}

// From now on, counts the calls at the sites of mask and fails the one with
// number failAt (from 1; 0 fails none).
void ListenForFaults(unsigned mask, uint64_t failAt);

// Stops counting; returns how many calls were counted, and sets *struck to
// the site of the call that failed, or 0 when the chosen call never came.
uint64_t StopListening(unsigned *struck);

#endif
