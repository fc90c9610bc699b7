#ifndef ZEXIF_TESTS_TAG_RECORDS_H
#define ZEXIF_TESTS_TAG_RECORDS_H

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "tree/document.h"

// One tag of a document's tree: where it stands ("IFD0", "IFD0/34665"...),
// its number, type, count and the bytes of its value as CopyValue gives them.
struct TagRecord {
    std::string place;
    int32_t tag;
    uint32_t type;
    int32_t count;
    std::vector<uint8_t> value;

    bool operator==(const TagRecord &other) const;
};
std::ostream &operator<<(std::ostream &out, const TagRecord &record);

// Every tag of the IFD chain that FindIfd walks, sub-IFDs by their pointer,
// except those whose values are offsets a rewrite assigns anew (pointers,
// strip and tile offsets and counts, 513) and those in skip.
std::vector<TagRecord> TagRecords(CExifDoc &doc, const std::vector<int32_t> &skip = {});

// The ids of the top-level chain.
std::vector<int32_t> TopLevelIds(const CExifDoc &doc);

// The bytes that a document's offsets count in: a TIFF file whole, the TIFF
// block of a JPEG file's first Exif APP1.
std::vector<uint8_t> TiffBlockOf(const std::vector<uint8_t> &file);

// The image data of each IFD of the chain, strip after strip, read from the
// file's TIFF block through the values of its strip (or tile) tags.
std::vector<std::vector<uint8_t>> ImageData(CExifDoc &doc, const std::vector<uint8_t> &file);

#endif
