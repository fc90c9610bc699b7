#include "zexif/tiff_bytes.h"

#include <cstring>

namespace {

constexpr uint32_t ENTRY_SIZE = 12;

}  // namespace

TiffBytes::TiffBytes(std::vector<unsigned char> block) : m_block(std::move(block))
{
    m_bigEndian = !m_block.empty() && m_block[0] == 'M';
}

TiffBytes::TiffBytes(const std::string &path) : m_file(std::fopen(path.c_str(), "rb"))
{
    unsigned char mark = 0;
    m_bigEndian = ReadAt(0, &mark, 1) && mark == 'M';
}

TiffBytes::~TiffBytes()
{
    if (m_file != nullptr) std::fclose(m_file);
}

uint32_t TiffBytes::FirstIfd() const
{
    return NumberAt(4, 4);
}

uint32_t TiffBytes::LinkBehind(uint32_t offset) const
{
    const uint64_t link = uint64_t(offset) + 2 + ENTRY_SIZE * NumberAt(offset, 2);
    return link <= UINT32_MAX ? NumberAt(static_cast<uint32_t>(link), 4) : 0;
}

bool TiffBytes::ReadAt(uint32_t offset, unsigned char *bytes, size_t size) const
{
    if (m_file == nullptr) {
        if (uint64_t(offset) + size > m_block.size()) return false;
        std::memcpy(bytes, m_block.data() + offset, size);
        return true;
    }
    return offset <= INT32_MAX && std::fseek(m_file, static_cast<long>(offset), SEEK_SET) == 0 &&
           std::fread(bytes, 1, size, m_file) == size;
}

uint32_t TiffBytes::NumberAt(uint32_t offset, size_t size) const
{
    unsigned char bytes[4];
    if (!ReadAt(offset, bytes, size)) return 0;
    uint32_t number = 0;
    for (size_t i = 0; i < size; ++i) {
        const size_t shift = m_bigEndian ? size - 1 - i : i;
        number |= uint32_t(bytes[i]) << (8 * shift);
    }
    return number;
}
