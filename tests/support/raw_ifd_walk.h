#ifndef ZEXIF_TESTS_RAW_IFD_WALK_H
#define ZEXIF_TESTS_RAW_IFD_WALK_H

#include <cstdint>
#include <vector>

// What a plain reading of a file's bytes finds in its first TIFF block,
// independently of the library: the entry count of each IFD of the chain,
// and of the Exif and GPS IFDs (-1 where there is none).
struct RawIfdCounts {
    bool found = false;
    std::vector<int> chain;
    int exif = -1;
    int gps = -1;
};

RawIfdCounts WalkRawIfds(const std::vector<uint8_t> &file);

#endif
