#include "support/fault.h"

#include <new>

namespace {

template <void *(*allocate)(std::size_t)>
void *Allocate(std::size_t size) noexcept
{
    if (FaultStrikes(FAULT_ALLOC)) return nullptr;
    try {
        return allocate(size);
    } catch (...) {
        return nullptr;
    }
}

}  // namespace

// The library allocates with nothrow new only; these count and fail them.
void *operator new(std::size_t size, const std::nothrow_t &) noexcept
{
    return Allocate<::operator new>(size);
}

void *operator new[](std::size_t size, const std::nothrow_t &) noexcept
{
    return Allocate<::operator new[]>(size);
}

bool FaultWindow::Close()
{
    if (m_open) StopListening(&m_struck);
    m_open = false;
    return m_struck != 0;
}

std::string FaultWindow::Describe(uint64_t failAt) const
{
    static const char *const names[] = {"open", "read", "write", "seek", "close", "sync", "rename", "copy", "allocation", "stat", "owner"};
    for (int bit = 0; bit < 11; bit++) {
        if (m_struck == 1u << bit) return "call " + std::to_string(failAt) + " (" + names[bit] + ")";
    }
    return "call " + std::to_string(failAt);
}

uint64_t ForEachFailingCall(const std::function<bool(uint64_t failAt)> &attempt)
{
    uint64_t struck = 0;
    for (uint64_t failAt = 1; attempt(failAt); failAt += failAt < 64 ? 1 : failAt / 16) struck++;
    return struck;
}
