#ifndef ZEXIF_TESTS_TIFF_LAYOUT_H
#define ZEXIF_TESTS_TIFF_LAYOUT_H

#include <cstdint>
#include <string>
#include <vector>

// One entry of a laid-out IFD. Its value is given by class and encoded in the
// block's byte order when the block is built; a value of more than 4 bytes
// goes behind its IFD. ifd or blob, where set, make the value the offset of
// that IFD or blob, as a LONG or, for type 3, a SHORT.
struct LayoutEntry {
    uint16_t tag = 0;
    uint16_t type = 0;
    uint32_t count = 0;
    std::vector<uint8_t> bytes;     // 1-byte types and types outside 1 to 12
    std::vector<uint32_t> numbers;  // 2-, 4- and 8-byte types; a rational is two numbers
    int ifd = -1;
    int blob = -1;
};

LayoutEntry Ascii(uint16_t tag, const std::string &text);  // NUL included
LayoutEntry Raw(uint16_t tag, uint16_t type, uint32_t count, const std::vector<uint8_t> &bytes);
LayoutEntry Shorts(uint16_t tag, const std::vector<uint32_t> &values);
LayoutEntry Long(uint16_t tag, uint32_t value);
LayoutEntry Rational(uint16_t tag, uint32_t numerator, uint32_t denominator);
LayoutEntry PointerTo(uint16_t tag, int ifd);
LayoutEntry OffsetOf(uint16_t tag, int blob);

// A TIFF block: header, the IFDs in the order they were added, each followed
// by its values, then the blobs. IFDs added to the chain are linked in order;
// the others (Exif, GPS) end with a link of 0.
class TiffLayout {
public:
    explicit TiffLayout(bool bigEndian = false) : m_bigEndian(bigEndian) {}

    int AddIfd(const std::vector<LayoutEntry> &entries, bool inChain = true);
    int AddBlob(const std::vector<uint8_t> &bytes);
    std::vector<uint8_t> Build() const;

    uint32_t IfdOffset(int ifd) const;
    uint32_t BlobOffset(int blob) const;

    bool m_bigEndian;

private:
    struct Ifd {
        std::vector<LayoutEntry> entries;
        bool inChain;
    };
    std::vector<Ifd> m_ifds;
    std::vector<std::vector<uint8_t>> m_blobs;
};

#endif
