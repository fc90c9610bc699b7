#ifndef ZEXIF_STREAMS_GROWING_STREAM_H
#define ZEXIF_STREAMS_GROWING_STREAM_H

#include <cstddef>
#include <cstdint>

#include "streams/stream.h"

// A stream that writes into a malloc block of its own, which grows as writes
// reach past its end, up to 31 bits. A seek may go past the end: the bytes it
// passes over read as zeros once a write behind them has grown the block.
class CGrowingStreamObj final : public CStreamIO {
public:
    CGrowingStreamObj() = default;
    ~CGrowingStreamObj() override;
    CGrowingStreamObj(const CGrowingStreamObj &) = delete;
    CGrowingStreamObj &operator=(const CGrowingStreamObj &) = delete;

    uint32_t Read(void *buffer, uint32_t size) override;
    // Writes all of size or nothing: a block that can't grow takes no bytes.
    uint32_t Write(const void *buffer, uint32_t size) override;
    int32_t Seek(int whence, int32_t offset) override;
    int32_t Tell() override;
    int IsEof() override;

    // Hands the block over, the caller's now: a malloc block of *size bytes,
    // null for none. The stream is empty after.
    unsigned char *Release(uint32_t *size);

private:
    int Reserve(size_t end);

    unsigned char *m_data = nullptr;
    size_t m_size = 0;
    size_t m_capacity = 0;
    size_t m_pos = 0;
};

#endif
