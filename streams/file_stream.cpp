#include "streams/file_stream.h"

#include <cerrno>

#include "platform/fault_point.h"

CFileObj::~CFileObj()
{
    if (m_file != nullptr) std::fclose(m_file);
}

uint32_t CFileObj::Read(void *buffer, uint32_t size)
{
    // The JPEG scanners read one byte per call; spare them fread's overhead.
    if (FaultStrikes(FAULT_READ)) return Fail();
    if (size == 1) {
        int c = getc_unlocked(m_file);
        if (c == EOF) return std::ferror(m_file) ? Fail() : 0;
        *static_cast<unsigned char *>(buffer) = static_cast<unsigned char>(c);
        return 1;
    }
    size_t got = std::fread(buffer, 1, size, m_file);
    if (got < size && std::ferror(m_file)) m_failed = 1;
    return static_cast<uint32_t>(got);
}

uint32_t CFileObj::Write(const void *buffer, uint32_t size)
{
    if (FaultStrikes(FAULT_WRITE)) return Fail();
    size_t put = std::fwrite(buffer, 1, size, m_file);
    if (put < size) m_failed = 1;
    return static_cast<uint32_t>(put);
}

// A seek in front of the file's start (EINVAL) comes from a damaged offset and
// is left to the caller; any other failure leaves the position unknown.
int32_t CFileObj::Seek(int whence, int32_t offset)
{
    if (FaultStrikes(FAULT_SEEK)) {
        Fail();
        return -1;
    }
    int result = std::fseek(m_file, offset, whence);
    if (result != 0 && errno != EINVAL) m_failed = 1;
    return result;
}

int32_t CFileObj::Tell()
{
    return static_cast<int32_t>(std::ftell(m_file));
}

int CFileObj::IsEof()
{
    return std::feof(m_file);
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
