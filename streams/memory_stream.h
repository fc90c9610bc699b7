#ifndef ZEXIF_STREAMS_MEMORY_STREAM_H
#define ZEXIF_STREAMS_MEMORY_STREAM_H

#include "streams/stream.h"

// A stream over a memory block that somebody else owns. The block never grows:
// writes past its end are cut short, and seeks stop at either end.
class CStreamObj : public CStreamIO {
public:
    CStreamObj(unsigned char *data, int32_t size)
        : m_size(size), m_begin(data), m_pos(data), m_end(data + size) {}

    uint32_t Read(void *buffer, uint32_t size) override;
    uint32_t Write(const void *buffer, uint32_t size) override;
    int32_t Seek(int whence, int32_t offset) override;
    int32_t Tell() override;
    int IsEof() override;
    // All of the block from the position on is in memory.
    uint32_t Buffered(const unsigned char **bytes) override;

    int32_t m_size;
    unsigned char *m_begin;
    unsigned char *m_pos;
    unsigned char *m_end;
};

// A memory stream over a copy of the bytes that it owns.
class COwnedStreamObj final : public CStreamObj {
public:
    using CStreamObj::CStreamObj;
    ~COwnedStreamObj() override { delete[] m_begin; }
};

#endif
