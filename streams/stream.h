#ifndef ZEXIF_STREAMS_STREAM_H
#define ZEXIF_STREAMS_STREAM_H

#include <cstdint>

// One byte stream over files, memory blocks and views on other streams.
// The concrete classes differ on purpose in what Seek returns and when IsEof
// turns true; callers rely on those differences.
class CStreamIO {
public:
    virtual uint32_t Read(void *buffer, uint32_t size) = 0;
    virtual uint32_t Write(const void *buffer, uint32_t size) = 0;
    // whence: 0 from the start, 1 from the current position, 2 from the end.
    virtual int32_t Seek(int whence, int32_t offset) = 0;
    virtual int32_t Tell() = 0;
    virtual int IsEof() = 0;
    // 1 once a read, write or seek went wrong for another reason than the end
    // of the data: what was read since can't be trusted to be the file.
    virtual int HasFailed() { return 0; }
    // The bytes from the position on that the stream holds in memory, for a
    // scan that looks at many at once: points *bytes at them and gives their
    // count, 0 where it holds none. Reads nothing and moves nothing; the
    // bytes stay valid until the next call on the stream.
    virtual uint32_t Buffered(const unsigned char **) { return 0; }
    virtual ~CStreamIO() = default;
};

enum StreamMode { STREAM_READ = 1, STREAM_WRITE = 2 };

// Factories return 1 and set *stream, or return 0 and leave *stream as it was.
int CreateFileStream(CStreamIO **stream, const void *path, int mode);
int CreateMemoryStream(CStreamIO **stream, void *data, int32_t size);
// A memory stream over a copy of the bytes, which the stream owns.
int CreateMemoryCopyStream(CStreamIO **stream, const void *data, int32_t size);
int CreateHookStream(CStreamIO **stream, CStreamIO *parent, uint32_t size);
void DeleteStream(CStreamIO *stream);

#endif
