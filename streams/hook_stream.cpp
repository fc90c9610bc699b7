#include "streams/hook_stream.h"

#include <algorithm>
#include <cstdint>

uint32_t CHookStreamObj::Read(void *buffer, uint32_t size)
{
    return m_parent->Read(buffer, size);
}

uint32_t CHookStreamObj::Write(const void *buffer, uint32_t size)
{
    return m_parent->Write(buffer, size);
}

// A negative view offset would reach in front of the view; it is held at the
// view's first byte. Sums are formed in 64 bits so that offsets from a file
// can't overflow them.
int32_t CHookStreamObj::Seek(int whence, int32_t offset)
{
    if (whence != 0) return m_parent->Seek(whence, offset);
    int64_t target = int64_t(m_start) + std::max(offset, 0);
    target = std::min<int64_t>(target, INT32_MAX);
    return m_parent->Seek(0, static_cast<int32_t>(target)) - m_start;
}

int32_t CHookStreamObj::Tell()
{
    return m_parent->Tell() - m_start;
}

int CHookStreamObj::IsEof()
{
    return int64_t(m_parent->Tell()) >= int64_t(m_start) + int64_t(m_size);
}
