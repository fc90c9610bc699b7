#include "streams/file_stream.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>

#include "platform/fault_point.h"
#include "platform/file_replace.h"
#include "platform/read_only_file.h"

CFileObj::~CFileObj()
{
    delete[] m_buffer;
    if (m_file != nullptr) std::fclose(m_file);
}

int CFileObj::MakeReadBuffer()
{
    m_buffer = new (std::nothrow) unsigned char[FILE_BUFFER_SIZE];
    return m_buffer != nullptr;
}

uint32_t CFileObj::Buffered(const unsigned char **bytes)
{
    int64_t skip = m_pos - m_bufferStart;
    if (skip < 0 || skip >= m_bufferSize) return 0;
    *bytes = m_buffer + skip;
    return m_bufferSize - static_cast<uint32_t>(skip);
}

// The part of a read that the buffer doesn't hold. A read of a buffer's size
// or more goes to the caller's memory directly: a save copies the scan data
// in such chunks, and a second copy would gain nothing.
uint32_t CFileObj::ReadBehindBuffer(unsigned char *buffer, uint32_t size)
{
    if (m_buffer == nullptr) return Fail();
    const int file = fileno(m_file);
    if (size >= FILE_BUFFER_SIZE) {
        int64_t got = ReadFileAt(file, m_pos, buffer, size);
        if (got < 0) return Fail();
        m_pos += got;
        return static_cast<uint32_t>(got);
    }
    int64_t got = ReadFileAt(file, m_pos, m_buffer, FILE_BUFFER_SIZE);
    m_bufferStart = m_pos;
    m_bufferSize = static_cast<uint32_t>(std::max<int64_t>(got, 0));
    if (got < 0) return Fail();
    uint32_t taken = std::min(size, m_bufferSize);
    std::memcpy(buffer, m_buffer, taken);
    m_pos += taken;
    return taken;
}

uint32_t CFileObj::Read(void *buffer, uint32_t size)
{
    unsigned char *out = static_cast<unsigned char *>(buffer);
    const unsigned char *held = nullptr;
    uint32_t got = Buffered(&held);
    got = std::min(got, size);
    std::copy_n(held, got, out);
    m_pos += got;
    if (got < size) got += ReadBehindBuffer(out + got, size - got);
    if (got < size) m_eof = 1;
    return got;
}

uint32_t CFileObj::Write(const void *buffer, uint32_t size)
{
    if (FaultStrikes(FAULT_WRITE)) return Fail();
    size_t put = std::fwrite(buffer, 1, size, m_file);
    if (put < size) m_failed = 1;
    m_notWrittenBack += static_cast<uint32_t>(put);
    if (m_notWrittenBack >= FILE_WRITEBACK_STEP) {
        StartWriteback(m_file);
        m_notWrittenBack = 0;
    }
    return static_cast<uint32_t>(put);
}

// A seek in front of the file's start (EINVAL) comes from a damaged offset and
// is left to the caller; any other failure leaves the position unknown.
int32_t CFileObj::SeekThroughStdio(int whence, int32_t offset)
{
    if (FaultStrikes(FAULT_SEEK)) {
        Fail();
        return -1;
    }
    int result = std::fseek(m_file, offset, whence);
    if (result != 0 && errno != EINVAL) m_failed = 1;
    return result;
}

int32_t CFileObj::Seek(int whence, int32_t offset)
{
    if (m_buffer == nullptr) return SeekThroughStdio(whence, offset);
    int64_t target;
    switch (whence) {
    case 0: target = offset; break;
    case 1: target = m_pos + offset; break;
    case 2: {
        int64_t size = ReadOnlyFileSize(fileno(m_file));
        if (size < 0) {
            Fail();
            return -1;
        }
        target = size + offset;
        break;
    }
    default: return -1;
    }
    if (target < 0 || target > INT32_MAX) return -1;
    m_pos = target;
    m_eof = 0;
    return 0;
}

int32_t CFileObj::Tell()
{
    if (m_buffer == nullptr) return static_cast<int32_t>(std::ftell(m_file));
    return static_cast<int32_t>(m_pos);
}

int CFileObj::Close()
{
    if (m_file == nullptr) return 0;
    int ok = std::ferror(m_file) == 0 && !m_failed && !FaultStrikes(FAULT_CLOSE);
    if (std::fclose(m_file) != 0) ok = 0;
    m_file = nullptr;
    return ok;
}

uint32_t CFileObj::Fail()
{
    m_failed = 1;
    return 0;
}
