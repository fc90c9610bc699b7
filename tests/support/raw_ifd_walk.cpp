#include "support/raw_ifd_walk.h"

#include <cstring>
#include <set>

namespace {

struct Block {
    const uint8_t *bytes;
    size_t size;
    bool bigEndian;

    bool Has(size_t at, size_t n) const { return at <= size && n <= size - at; }
    uint32_t U16(size_t at) const
    {
        return bigEndian ? (bytes[at] << 8) | bytes[at + 1] : bytes[at] | (bytes[at + 1] << 8);
    }
    uint32_t U32(size_t at) const
    {
        return bigEndian ? (U16(at) << 16) | U16(at + 2) : U16(at) | (U16(at + 2) << 16);
    }
};

// Offset of the TIFF block in the first "Exif" APP1 in front of the scan.
size_t FindExifBlock(const std::vector<uint8_t> &file)
{
    size_t at = 2;
    while (at + 4 <= file.size() && file[at] == 0xFF) {
        uint8_t code = file[at + 1];
        if (code == 0xDA || code == 0xD9) return 0;
        size_t length = (size_t(file[at + 2]) << 8) | file[at + 3];
        if (code == 0xE1 && at + 10 <= file.size() && std::memcmp(&file[at + 4], "Exif", 4) == 0) return at + 10;
        at += 2 + length;
    }
    return 0;
}

int CountAt(const Block &block, uint32_t offset)
{
    return block.Has(offset, 2) ? int(block.U16(offset)) : -1;
}

uint32_t PointerIn(const Block &block, uint32_t ifd, uint32_t tag)
{
    int count = CountAt(block, ifd);
    for (int i = 0; i < count; i++) {
        size_t entry = ifd + 2 + size_t(i) * 12;
        if (block.Has(entry, 12) && block.U16(entry) == tag) return block.U32(entry + 8);
    }
    return 0;
}

}  // namespace

RawIfdCounts WalkRawIfds(const std::vector<uint8_t> &file)
{
    RawIfdCounts counts;
    if (file.size() < 8) return counts;
    size_t start = file[0] == 0xFF ? FindExifBlock(file) : 0;
    if (file[0] == 0xFF && start == 0) return counts;
    Block block{file.data() + start, file.size() - start, file[start] == 'M'};
    if (!block.Has(0, 8)) return counts;
    counts.found = true;

    std::set<uint32_t> seen;
    for (uint32_t ifd = block.U32(4); ifd != 0 && block.Has(ifd, 2) && seen.insert(ifd).second;) {
        int count = CountAt(block, ifd);
        counts.chain.push_back(count);
        uint32_t exif = PointerIn(block, ifd, 34665);
        uint32_t gps = PointerIn(block, ifd, 34853);
        if (exif != 0 && counts.exif < 0) counts.exif = CountAt(block, exif);
        if (gps != 0 && counts.gps < 0) counts.gps = CountAt(block, gps);
        size_t link = ifd + 2 + size_t(count) * 12;
        ifd = block.Has(link, 4) ? block.U32(link) : 0;
    }
    return counts;
}
