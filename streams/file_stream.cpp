#include "streams/file_stream.h"

CFileObj::~CFileObj()
{
    if (m_file != nullptr) std::fclose(m_file);
}

uint32_t CFileObj::Read(void *buffer, uint32_t size)
{
    // The JPEG scanners read one byte per call; spare them fread's overhead.
    if (size == 1) {
        int c = getc_unlocked(m_file);
        if (c == EOF) return 0;
        *static_cast<unsigned char *>(buffer) = static_cast<unsigned char>(c);
        return 1;
    }
    return static_cast<uint32_t>(std::fread(buffer, 1, size, m_file));
}

uint32_t CFileObj::Write(const void *buffer, uint32_t size)
{
    return static_cast<uint32_t>(std::fwrite(buffer, 1, size, m_file));
}

int32_t CFileObj::Seek(int whence, int32_t offset)
{
    return std::fseek(m_file, offset, whence);
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
    int ok = std::ferror(m_file) == 0;
    if (std::fclose(m_file) != 0) ok = 0;
    m_file = nullptr;
    return ok;
}
