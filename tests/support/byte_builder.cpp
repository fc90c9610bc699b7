#include "support/byte_builder.h"

ByteBuilder &ByteBuilder::U8(uint8_t v)
{
    m_bytes.push_back(v);
    return *this;
}

ByteBuilder &ByteBuilder::U16(uint16_t v)
{
    if (m_bigEndian) return U16BE(v);
    m_bytes.push_back(uint8_t(v));
    m_bytes.push_back(uint8_t(v >> 8));
    return *this;
}

ByteBuilder &ByteBuilder::U16BE(uint16_t v)
{
    m_bytes.push_back(uint8_t(v >> 8));
    m_bytes.push_back(uint8_t(v));
    return *this;
}

ByteBuilder &ByteBuilder::U32(uint32_t v)
{
    if (m_bigEndian) {
        U16(uint16_t(v >> 16));
        return U16(uint16_t(v));
    }
    U16(uint16_t(v));
    return U16(uint16_t(v >> 16));
}

ByteBuilder &ByteBuilder::Bytes(const std::vector<uint8_t> &bytes)
{
    m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
    return *this;
}

ByteBuilder &ByteBuilder::Text(const std::string &text)
{
    m_bytes.insert(m_bytes.end(), text.begin(), text.end());
    return *this;
}

ByteBuilder &ByteBuilder::Fill(size_t count, uint8_t v)
{
    m_bytes.insert(m_bytes.end(), count, v);
    return *this;
}

ByteBuilder &ByteBuilder::TiffHeader(uint32_t firstIfd)
{
    Text(m_bigEndian ? "MM" : "II");
    U16(42);
    return U32(firstIfd);
}

ByteBuilder &ByteBuilder::Entry(uint16_t tag, uint16_t type, uint32_t count, uint32_t value)
{
    U16(tag);
    U16(type);
    U32(count);
    return U32(value);
}

ByteBuilder &ByteBuilder::EntryRaw(uint16_t tag, uint16_t type, uint32_t count, const std::vector<uint8_t> &field)
{
    U16(tag);
    U16(type);
    U32(count);
    for (size_t i = 0; i < 4; i++) U8(i < field.size() ? field[i] : 0);
    return *this;
}

void ByteBuilder::PatchU32(size_t pos, uint32_t v)
{
    for (int i = 0; i < 4; i++) {
        int shift = m_bigEndian ? 24 - 8 * i : 8 * i;
        m_bytes.at(pos + size_t(i)) = uint8_t(v >> shift);
    }
}

std::vector<uint8_t> JpegSegment(uint8_t code, const std::vector<uint8_t> &payload)
{
    std::vector<uint8_t> out = {0xFF, code, uint8_t((payload.size() + 2) >> 8), uint8_t(payload.size() + 2)};
    out.insert(out.end(), payload.begin(), payload.end());
    return out;
}

std::vector<uint8_t> ExifApp1(const std::vector<uint8_t> &tiffBlock)
{
    std::vector<uint8_t> payload = {'E', 'x', 'i', 'f', 0, 0};
    payload.insert(payload.end(), tiffBlock.begin(), tiffBlock.end());
    return JpegSegment(0xE1, payload);
}

std::vector<uint8_t> Concat(std::initializer_list<std::vector<uint8_t>> parts)
{
    std::vector<uint8_t> out;
    for (const auto &part : parts) out.insert(out.end(), part.begin(), part.end());
    return out;
}
