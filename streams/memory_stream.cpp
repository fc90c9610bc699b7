#include "streams/memory_stream.h"

#include <algorithm>
#include <cstring>

uint32_t CStreamObj::Read(void *buffer, uint32_t size)
{
    uint32_t left = static_cast<uint32_t>(m_end - m_pos);
    uint32_t n = std::min(size, left);
    if (n == 0) return 0;
    std::memcpy(buffer, m_pos, n);
    m_pos += n;
    return n;
}

uint32_t CStreamObj::Write(const void *buffer, uint32_t size)
{
    uint32_t left = static_cast<uint32_t>(m_end - m_pos);
    uint32_t n = std::min(size, left);
    if (n == 0) return 0;
    std::memcpy(m_pos, buffer, n);
    m_pos += n;
    return n;
}

// Offsets from image files arrive here unchecked, so the position is held
// inside the block at both ends. A seek that would go before the start stops
// on it and reports how far it really went: the position reached for
// whence 0, the (negative) distance moved for whence 1.
int32_t CStreamObj::Seek(int whence, int32_t offset)
{
    switch (whence) {
    case 0:
        offset = std::clamp(offset, 0, m_size);
        m_pos = m_begin + offset;
        return offset;
    case 1: {
        int32_t ahead = static_cast<int32_t>(m_end - m_pos);
        int32_t behind = static_cast<int32_t>(m_begin - m_pos);
        int32_t distance = std::clamp(offset, behind, ahead);
        m_pos += distance;
        return distance;
    }
    case 2:
        offset = std::clamp(offset, -m_size, 0);
        m_pos = m_end + offset;
        return offset;
    default:
        return offset;
    }
}

int32_t CStreamObj::Tell()
{
    return static_cast<int32_t>(m_pos - m_begin);
}

uint32_t CStreamObj::Buffered(const unsigned char **bytes)
{
    *bytes = m_pos;
    return static_cast<uint32_t>(m_end - m_pos);
}

int CStreamObj::IsEof()
{
    return m_pos >= m_end;
}
