#ifndef ZEXIF_READER_CACHED_FILE_H
#define ZEXIF_READER_CACHED_FILE_H

#include <cstdint>

#include "streams/stream.h"

// Bytes at the start of a file that a reader keeps in memory, and the least
// by which that head grows once it has to.
constexpr uint32_t FILE_HEAD_LIMIT = 65536;
constexpr uint32_t FILE_HEAD_STEP = 16384;

// A read-only file stream that keeps the head of the file in memory, where a
// JPEG's segments and Exif block lie as a rule. A reader seeks for almost
// every field it reads, and a seek on a stdio file costs a system call even
// inside its buffer; here a seek only moves a number, and the head is read in
// a few large steps. What lies behind the head is read from the file. Seek
// and IsEof answer as the file stream does: 0 for a seek that worked, -1 for
// one outside 31 bits, end-of-file only after a short read.
class CCachedFileObj : public CStreamIO {
public:
    // Takes over the file stream.
    explicit CCachedFileObj(CStreamIO *file) : m_file(file) {}
    ~CCachedFileObj() override;
    CCachedFileObj(const CCachedFileObj &) = delete;
    CCachedFileObj &operator=(const CCachedFileObj &) = delete;

    uint32_t Read(void *buffer, uint32_t size) override;
    // The reader never writes: nothing is written.
    uint32_t Write(const void *buffer, uint32_t size) override;
    int32_t Seek(int whence, int32_t offset) override;
    int32_t Tell() override;
    int IsEof() override;

    // Points *bytes at the file's bytes from position on, when the range up to
    // position + size lies within the head, and gives how many of them the
    // file holds; 0 otherwise. The bytes stay where they are while the stream
    // lives, and are not to be written.
    uint32_t HeadView(int64_t position, uint32_t size, unsigned char **bytes);

private:
    // Reads the head up to end at least; 0 when end lies beyond the head.
    int ExtendHead(int64_t end);
    uint32_t ReadDirect(unsigned char *buffer, uint32_t size);
    // Puts the file on position; 0 when it can't go there.
    int PlaceFile(int64_t position);
    int64_t Size();

    CStreamIO *m_file;
    int64_t m_filePos = 0;  // where m_file stands, -1 when unknown
    int64_t m_pos = 0;
    int64_t m_size = -1;    // known after a read came short or the end was sought
    int m_eof = 0;
    uint32_t m_headSize = 0;
    int m_headComplete = 0;  // the head holds the whole file
    unsigned char m_head[FILE_HEAD_LIMIT];
};

#endif
