#ifndef ZEXIF_TESTS_EXIF_BLOCK_H
#define ZEXIF_TESTS_EXIF_BLOCK_H

#include <cstdint>
#include <vector>

// A TIFF block as a camera writes it: IFD 0 with Make (271, "Cam"),
// Orientation (274, 6) and the Exif pointer; an Exif IFD with
// DateTimeOriginal (36867, 20 bytes out of line); and, for a non-empty
// thumbnail, IFD 1 with Compression 6 and tags 513 and 514, the thumbnail's
// bytes last. The two tags can be made to lie.
struct ExifBlockDef {
    bool bigEndian = false;
    std::vector<uint8_t> thumbnail;
    int64_t thumbOffset = -1;  // -1: where the bytes are
    int64_t thumbLength = -1;  // -1: their size
    bool withLength = true;    // without tag 514
};

extern const char kBlockDate[21];

std::vector<uint8_t> ExifBlock(const ExifBlockDef &def);
// "Exif", two NULs, then the block: the payload of an Exif APP1.
std::vector<uint8_t> ExifPayload(const std::vector<uint8_t> &block);

#endif
