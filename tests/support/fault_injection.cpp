#include "support/fault_injection.h"

#include <new>

namespace {

constexpr uint64_t EVERY_CALL_UP_TO = 64;

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

const char *FaultWindow::Site() const
{
    switch (m_struck) {
    case FAULT_OPEN: return "open";
    case FAULT_READ: return "read";
    case FAULT_WRITE: return "write";
    case FAULT_SEEK: return "seek";
    case FAULT_CLOSE: return "close";
    case FAULT_SYNC: return "sync";
    case FAULT_RENAME: return "rename";
    case FAULT_COPY: return "copy";
    case FAULT_ALLOC: return "allocation";
    default: return "";
    }
}

uint64_t ForEachFailingCall(const std::function<bool(uint64_t failAt)> &attempt)
{
    uint64_t struck = 0;
    for (uint64_t failAt = 1; attempt(failAt); failAt += failAt < EVERY_CALL_UP_TO ? 1 : failAt / 16) struck++;
    return struck;
}
