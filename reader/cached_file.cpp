#include "reader/cached_file.h"

#include <cstring>

CCachedFileObj::~CCachedFileObj()
{
    DeleteStream(m_file);
}

int CCachedFileObj::PlaceFile(int64_t position)
{
    if (m_filePos == position) return 1;
    if (position > INT32_MAX || m_file->Seek(0, static_cast<int32_t>(position)) != 0) {
        m_filePos = -1;
        return 0;
    }
    m_filePos = position;
    return 1;
}

// A short read is the end of the file: the head holds all of it then.
int CCachedFileObj::ExtendHead(int64_t end)
{
    if (end > FILE_HEAD_LIMIT) return 0;
    if (end <= m_headSize || m_headComplete || !PlaceFile(m_headSize)) return 1;
    uint32_t target = m_headSize + FILE_HEAD_STEP;
    if (target < end) target = static_cast<uint32_t>(end);
    if (target > FILE_HEAD_LIMIT) target = FILE_HEAD_LIMIT;
    uint32_t asked = target - m_headSize;
    uint32_t got = m_file->Read(m_head + m_headSize, asked);
    m_headSize += got;
    m_filePos = m_headSize;
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
    return available < size ? available : size;
}

// Behind the head the file's own buffer serves reads that follow each other.
uint32_t CCachedFileObj::ReadDirect(unsigned char *buffer, uint32_t size)
{
    if (!PlaceFile(m_pos)) return 0;
    uint32_t got = m_file->Read(buffer, size);
    m_filePos = m_pos + got;
    if (got > 0 && got < size) m_size = m_filePos;
    return got;
}

uint32_t CCachedFileObj::Read(void *buffer, uint32_t size)
{
    unsigned char *bytes = static_cast<unsigned char *>(buffer);
    uint32_t got = 0;
    if (m_pos + size <= FILE_HEAD_LIMIT) {
        unsigned char *head = nullptr;
        got = HeadView(m_pos, size, &head);
        if (got > 0) std::memcpy(bytes, head, got);
    } else {
        got = ReadDirect(bytes, size);
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
    m_filePos = -1;
    if (m_file->Seek(2, 0) != 0) return 0;
    int32_t end = m_file->Tell();
    m_filePos = end;
    m_size = end < 0 ? 0 : end;
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
