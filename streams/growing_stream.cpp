#include "streams/growing_stream.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "platform/failure_reason.h"
#include "zexif.h"

namespace {

constexpr size_t FIRST_CAPACITY = 65536;
constexpr size_t MAX_SIZE = INT32_MAX;

}  // namespace

CGrowingStreamObj::~CGrowingStreamObj()
{
    std::free(m_data);
}

// The block doubles, so that a file written a field at a time costs few
// copies.
int CGrowingStreamObj::Reserve(size_t end)
{
    if (end > MAX_SIZE) return NoteFailure(ZEXIF_ERROR_LIMIT);
    if (end <= m_capacity) return 1;
    size_t capacity = m_capacity == 0 ? FIRST_CAPACITY : m_capacity;
    while (capacity < end) capacity *= 2;
    capacity = std::min(capacity, MAX_SIZE);
    void *grown = std::realloc(m_data, capacity);
    if (grown == nullptr) return NoteFailure(ZEXIF_ERROR_MEMORY);
    m_data = static_cast<unsigned char *>(grown);
    m_capacity = capacity;
    return 1;
}

uint32_t CGrowingStreamObj::Read(void *buffer, uint32_t size)
{
    size_t left = m_size - std::min(m_pos, m_size);
    size_t count = std::min<size_t>(size, left);
    if (count > 0) std::memcpy(buffer, m_data + m_pos, count);
    m_pos += count;
    return static_cast<uint32_t>(count);
}

uint32_t CGrowingStreamObj::Write(const void *buffer, uint32_t size)
{
    if (size == 0 || !Reserve(m_pos + size)) return 0;
    if (m_pos > m_size) std::memset(m_data + m_size, 0, m_pos - m_size);
    std::memcpy(m_data + m_pos, buffer, size);
    m_pos += size;
    m_size = std::max(m_size, m_pos);
    return size;
}

int32_t CGrowingStreamObj::Seek(int whence, int32_t offset)
{
    int64_t base = whence == 0 ? 0 : whence == 1 ? int64_t(m_pos) : int64_t(m_size);
    int64_t target = base + offset;
    if (whence < 0 || whence > 2 || target < 0 || target > int64_t(MAX_SIZE)) return -1;
    m_pos = static_cast<size_t>(target);
    return 0;
}

int32_t CGrowingStreamObj::Tell()
{
    return static_cast<int32_t>(m_pos);
}

int CGrowingStreamObj::IsEof()
{
    return m_pos >= m_size;
}

unsigned char *CGrowingStreamObj::Release(uint32_t *size)
{
    unsigned char *data = m_data;
    *size = static_cast<uint32_t>(m_size);
    m_data = nullptr;
    m_size = m_capacity = m_pos = 0;
    return data;
}
