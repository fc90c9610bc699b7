#ifndef ZEXIF_STREAMS_HOOK_STREAM_H
#define ZEXIF_STREAMS_HOOK_STREAM_H

#include "streams/stream.h"

// A view on another stream whose position 0 is where the parent stood when
// the view was made. It shares the parent's cursor and owns nothing; reads
// and writes are not clipped to the view.
class CHookStreamObj : public CStreamIO {
public:
    CHookStreamObj(CStreamIO *parent, int32_t start, uint32_t size)
        : m_parent(parent), m_start(start), m_size(size) {}

    uint32_t Read(void *buffer, uint32_t size) override;
    uint32_t Write(const void *buffer, uint32_t size) override;
    int32_t Seek(int whence, int32_t offset) override;
    int32_t Tell() override;
    int IsEof() override;
    int HasFailed() override { return m_parent->HasFailed(); }

    CStreamIO *m_parent;
    int32_t m_start;
    uint32_t m_size;
};

#endif
