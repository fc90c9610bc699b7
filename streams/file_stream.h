#ifndef ZEXIF_STREAMS_FILE_STREAM_H
#define ZEXIF_STREAMS_FILE_STREAM_H

#include <cstdio>

#include "streams/stream.h"

// A stream over an open stdio file, which it owns and closes.
class CFileObj : public CStreamIO {
public:
    explicit CFileObj(FILE *file) : m_file(file) {}
    ~CFileObj() override;

    uint32_t Read(void *buffer, uint32_t size) override;
    uint32_t Write(const void *buffer, uint32_t size) override;
    int32_t Seek(int whence, int32_t offset) override;
    int32_t Tell() override;
    int IsEof() override;
    int HasFailed() override { return m_failed; }

    // Flushes and closes the file; 1 when every byte reached the file system.
    // The destructor closes an unclosed file without asking.
    int Close();

    FILE *m_file;
    int m_failed = 0;

private:
    // Marks the stream failed; 0, the count of bytes moved.
    uint32_t Fail();
};

#endif
