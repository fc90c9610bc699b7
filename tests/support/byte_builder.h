#ifndef ZEXIF_TESTS_BYTE_BUILDER_H
#define ZEXIF_TESTS_BYTE_BUILDER_H

#include <cstdint>
#include <string>
#include <vector>

// Assembles files byte by byte for precise cases, in either byte order.
class ByteBuilder {
public:
    explicit ByteBuilder(bool bigEndian = false) : m_bigEndian(bigEndian) {}

    ByteBuilder &U8(uint8_t v);
    ByteBuilder &U16(uint16_t v);
    ByteBuilder &U32(uint32_t v);
    ByteBuilder &U16BE(uint16_t v);
    ByteBuilder &Bytes(const std::vector<uint8_t> &bytes);
    ByteBuilder &Text(const std::string &text);  // without a NUL
    ByteBuilder &Fill(size_t count, uint8_t v);

    // A TIFF header: "II" or "MM", 42, the first IFD offset.
    ByteBuilder &TiffHeader(uint32_t firstIfd = 8);
    // One 12-byte IFD entry.
    ByteBuilder &Entry(uint16_t tag, uint16_t type, uint32_t count, uint32_t value);
    // An entry whose 4-byte field holds the given bytes as they stand.
    ByteBuilder &EntryRaw(uint16_t tag, uint16_t type, uint32_t count, const std::vector<uint8_t> &field);

    // Overwrites 4 bytes at pos in this builder's byte order.
    void PatchU32(size_t pos, uint32_t v);

    size_t Size() const { return m_bytes.size(); }
    const std::vector<uint8_t> &Data() const { return m_bytes; }

    bool m_bigEndian;
    std::vector<uint8_t> m_bytes;
};

// JPEG pieces, lengths big-endian as in the file.
std::vector<uint8_t> JpegSegment(uint8_t code, const std::vector<uint8_t> &payload);
std::vector<uint8_t> ExifApp1(const std::vector<uint8_t> &tiffBlock);
std::vector<uint8_t> Concat(std::initializer_list<std::vector<uint8_t>> parts);

#endif
