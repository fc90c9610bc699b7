#ifndef ZEXIF_READER_CACHED_FILE_H
#define ZEXIF_READER_CACHED_FILE_H

#include <cstdint>
#include <cstring>

#include "streams/stream.h"

// Bytes at the start of a file that a reader keeps in memory, and the least
// by which that head grows. The first step covers a JPEG's Exif segment as a
// rule; a larger one would cost every file more than it saves a few.
constexpr uint32_t FILE_HEAD_LIMIT = 65536;
constexpr uint32_t FILE_HEAD_STEP = 16384;

// Bytes read at once for a small read behind the head: an IFD and the values
// near it, at the end of a TIFF file say.
constexpr uint32_t FILE_WINDOW_SIZE = 4096;

// A read-only file that keeps its head in memory, where a JPEG's segments and
// Exif block lie as a rule. A reader seeks for almost every field it reads;
// here a seek only moves a number, and the file is read with one system call
// per step of the head or per window, at the position wanted. Larger reads
// behind the head go to the file directly. Seek and IsEof answer as the file
// stream does: 0 for a seek that worked, -1 for one outside 31 bits,
// end-of-file only after a short read.
class CCachedFileObj final : public CStreamIO {
public:
    CCachedFileObj() = default;
    ~CCachedFileObj() override;
    CCachedFileObj(const CCachedFileObj &) = delete;
    CCachedFileObj &operator=(const CCachedFileObj &) = delete;

    // Opens the file once; 0 when no file opens at path.
    int Open(const void *path);
    // Reads a caller's bytes as the file instead, where they lie; they must
    // outlive the stream.
    void OpenMemory(const unsigned char *data, uint32_t size);

    // The scans read a byte or a field at a time, mostly from what the head
    // holds already: that case is answered inline, where the stream's type
    // is known.
    uint32_t Read(void *buffer, uint32_t size) override
    {
        if (m_pos + size > m_headSize) return ReadOutsideHead(static_cast<unsigned char *>(buffer), size);
        if (size > 0) std::memcpy(buffer, m_head + m_pos, size);
        m_pos += size;
        return size;
    }
    // Once a read of the file failed, bytes it gave may be short of what the
    // file holds: nothing read since can be handed out as the file's.
    int HasFailed() override { return m_failed; }
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
    uint32_t ReadOutsideHead(unsigned char *buffer, uint32_t size);
    // Reads the head up to end at least; 0 when end lies beyond the head.
    int ExtendHead(int64_t end);
    uint32_t ReadThroughWindow(unsigned char *buffer, uint32_t size);
    // All reads of the file pass here; a failed read gives nothing.
    uint32_t ReadFile(int64_t position, unsigned char *buffer, uint32_t size);
    int64_t ReadMemory(int64_t position, unsigned char *buffer, uint32_t size) const;
    int64_t Size();

    int m_file = -1;
    const unsigned char *m_memory = nullptr;
    uint32_t m_memorySize = 0;
    int64_t m_pos = 0;
    int64_t m_size = -1;  // known after a read came short or the end was sought
    int m_eof = 0;
    int m_failed = 0;
    uint32_t m_headSize = 0;
    int m_headComplete = 0;    // the head holds the whole file
    int64_t m_windowStart = -1;  // the window stands for the file from here on
    uint32_t m_windowSize = 0;   // bytes the file held there, FILE_WINDOW_SIZE at most
    unsigned char m_window[FILE_WINDOW_SIZE];
    unsigned char m_head[FILE_HEAD_LIMIT];
};

#endif
