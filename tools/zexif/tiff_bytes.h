#ifndef ZEXIF_TOOL_TIFF_BYTES_H
#define ZEXIF_TOOL_TIFF_BYTES_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

// What a dump shows of a TIFF block beside the library's lists of tags: its
// byte order and the links behind its IFDs, read from the block's bytes. The
// block lies in memory, a JPEG's Exif segment, or is a file, read where
// needed.
class TiffBytes {
public:
    explicit TiffBytes(std::vector<unsigned char> block);
    explicit TiffBytes(const std::string &path);
    ~TiffBytes();
    TiffBytes(const TiffBytes &) = delete;
    TiffBytes &operator=(const TiffBytes &) = delete;

    bool BigEndian() const { return m_bigEndian; }
    uint32_t FirstIfd() const;
    // The next-IFD link behind the IFD at offset; 0 when it can't be read.
    uint32_t LinkBehind(uint32_t offset) const;

private:
    bool ReadAt(uint32_t offset, unsigned char *bytes, size_t size) const;
    // A number of size bytes at offset in the block's byte order; 0 when the
    // block ends first.
    uint32_t NumberAt(uint32_t offset, size_t size) const;

    std::vector<unsigned char> m_block;
    FILE *m_file = nullptr;
    bool m_bigEndian = false;
};

#endif
