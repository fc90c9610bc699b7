#ifndef ZEXIF_STREAMS_FILE_STREAM_H
#define ZEXIF_STREAMS_FILE_STREAM_H

#include <cstdint>
#include <cstdio>

#include "streams/stream.h"

// Bytes a reading file stream asks the system for at once and keeps for the
// reads that follow.
constexpr uint32_t FILE_BUFFER_SIZE = 65536;

// Bytes a writing file stream writes before it has the system start putting
// them on the disk.
constexpr uint32_t FILE_WRITEBACK_STEP = 1 << 20;

// A stream over an open stdio file, which it owns and closes. Once it has a
// read buffer it reads the file at a position of its own, a buffer at a
// time: a seek only moves a number, and a scan looks into the buffer rather
// than reading byte by byte. Without one it goes through stdio, whose buffer
// gathers the small writes of a save and follows its seeks, and every
// FILE_WRITEBACK_STEP bytes it has the disk start on what was written, so
// that the sync at the end of a save finds little left to do.
class CFileObj : public CStreamIO {
public:
    explicit CFileObj(FILE *file) : m_file(file) {}
    ~CFileObj() override;
    CFileObj(const CFileObj &) = delete;
    CFileObj &operator=(const CFileObj &) = delete;

    // Gives the stream its read buffer; 0 when it can't be allocated.
    int MakeReadBuffer();

    uint32_t Read(void *buffer, uint32_t size) override;
    uint32_t Write(const void *buffer, uint32_t size) override;
    // A reading stream's seek outside 31 bits or in front of the start fails
    // with -1 and leaves the position; neither counts as a failure of the
    // stream, as both come from damaged offsets.
    int32_t Seek(int whence, int32_t offset) override;
    int32_t Tell() override;
    int IsEof() override { return m_eof; }
    int HasFailed() override { return m_failed; }
    uint32_t Buffered(const unsigned char **bytes) override;

    // Flushes and closes the file; 1 when every byte reached the file system.
    // The destructor closes an unclosed file without asking.
    int Close();

    FILE *m_file;
    int m_failed = 0;

private:
    // Marks the stream failed; 0, the count of bytes moved.
    uint32_t Fail();
    uint32_t ReadBehindBuffer(unsigned char *buffer, uint32_t size);
    int32_t SeekThroughStdio(int whence, int32_t offset);

    unsigned char *m_buffer = nullptr;  // new[] of FILE_BUFFER_SIZE
    int64_t m_bufferStart = 0;          // the file's position of m_buffer[0]
    uint32_t m_bufferSize = 0;          // bytes of the file the buffer holds
    int64_t m_pos = 0;
    int m_eof = 0;
    uint32_t m_notWrittenBack = 0;  // bytes written since the last writeback began
};

#endif
