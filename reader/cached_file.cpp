#include "reader/cached_file.h"

#include <algorithm>
#include <cstring>

#include "platform/failure_reason.h"
#include "platform/path_open.h"
#include "platform/read_only_file.h"
#include "zexif.h"

CCachedFileObj::~CCachedFileObj()
{
    CloseDescriptor(m_file);
}

int CCachedFileObj::Open(const void *path)
{
    if (m_file >= 0) return 0;
    m_file = OpenReadOnlyFile(path);
    return m_file >= 0;
}

void CCachedFileObj::OpenMemory(const unsigned char *data, uint32_t size)
{
    m_memory = data;
    m_memorySize = size;
    m_size = size;
}

int64_t CCachedFileObj::ReadMemory(int64_t position, unsigned char *buffer, uint32_t size) const
{
    if (position >= m_memorySize) return 0;
    uint32_t left = m_memorySize - static_cast<uint32_t>(position);
    uint32_t got = std::min(size, left);
    std::memcpy(buffer, m_memory + position, got);
    return got;
}

// A short read ends the file there; one that gave nothing only says the file
// ends at position or before.
uint32_t CCachedFileObj::ReadFile(int64_t position, unsigned char *buffer, uint32_t size)
{
    int64_t got = m_memory != nullptr ? ReadMemory(position, buffer, size) : ReadFileAt(m_file, position, buffer, size);
    if (got < 0) {
        m_failed = 1;
        NoteFailure(ZEXIF_ERROR_READ);
        return 0;
    }
    if (got > 0 && got < size) m_size = position + got;
    return static_cast<uint32_t>(got);
}

// The head grows a step at a time, at least to end and at most to its limit.
// A short read is the end of the file: the head holds all of it then.
int CCachedFileObj::ExtendHead(int64_t end)
{
    if (end > FILE_HEAD_LIMIT) return 0;
    if (end <= m_headSize || m_headComplete) return 1;
    auto target = static_cast<uint32_t>(std::clamp<int64_t>(m_headSize + FILE_HEAD_STEP, end, FILE_HEAD_LIMIT));
    uint32_t asked = target - m_headSize;
    uint32_t got = ReadFile(m_headSize, m_head + m_headSize, asked);
    m_headSize += got;
    if (got < asked) {
        m_headComplete = 1;
        m_size = m_headSize;
    }
    return 1;
}

uint32_t CCachedFileObj::HeadView(int64_t position, uint32_t size, unsigned char **bytes)
{
    if (position < 0 || !ExtendHead(position + size) || position >= m_headSize) return 0;
    *bytes = m_head + position;
    uint32_t available = m_headSize - static_cast<uint32_t>(position);
    return std::min(available, size);
}

// The window starts on a multiple of its size, or at the read when that would
// cut the read off. A window the file's end cut short still stands for all its
// span: what lies behind the end is known to be nothing.
uint32_t CCachedFileObj::ReadThroughWindow(unsigned char *buffer, uint32_t size)
{
    if (m_windowStart < 0 || m_pos < m_windowStart || m_pos + size > m_windowStart + FILE_WINDOW_SIZE) {
        m_windowStart = m_pos - m_pos % FILE_WINDOW_SIZE;
        if (m_pos + size > m_windowStart + FILE_WINDOW_SIZE) m_windowStart = m_pos;
        m_windowSize = ReadFile(m_windowStart, m_window, FILE_WINDOW_SIZE);
    }
    uint32_t skip = static_cast<uint32_t>(m_pos - m_windowStart);
    if (skip >= m_windowSize) return 0;
    uint32_t got = m_windowSize - skip < size ? m_windowSize - skip : size;
    std::memcpy(buffer, m_window + skip, got);
    return got;
}

uint32_t CCachedFileObj::ReadOutsideHead(unsigned char *bytes, uint32_t size)
{
    if (size == 0) return 0;
    uint32_t got = 0;
    if (m_pos + size <= FILE_HEAD_LIMIT) {
        unsigned char *head = nullptr;
        got = HeadView(m_pos, size, &head);
        std::copy_n(head, got, bytes);
    } else if (size <= FILE_WINDOW_SIZE) {
        got = ReadThroughWindow(bytes, size);
    } else {
        got = ReadFile(m_pos, bytes, size);
    }
    m_pos += got;
    if (got < size) m_eof = 1;
    return got;
}

uint32_t CCachedFileObj::Write(const void *, uint32_t)
{
    return 0;
}

int64_t CCachedFileObj::Size()
{
    if (m_size >= 0) return m_size;
    int64_t size = ReadOnlyFileSize(m_file);
    if (size < 0) return 0;
    m_size = size;
    return m_size;
}

int32_t CCachedFileObj::Seek(int whence, int32_t offset)
{
    int64_t target;
    switch (whence) {
    case 0: target = offset; break;
    case 1: target = m_pos + offset; break;
    case 2: target = Size() + offset; break;
    default: return -1;
    }
    if (target < 0 || target > INT32_MAX) return -1;
    m_pos = target;
    m_eof = 0;
    return 0;
}

int32_t CCachedFileObj::Tell()
{
    return static_cast<int32_t>(m_pos);
}

int CCachedFileObj::IsEof()
{
    return m_eof;
}
