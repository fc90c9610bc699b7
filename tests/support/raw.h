#ifndef ZEXIF_TESTS_SUPPORT_RAW_H
#define ZEXIF_TESTS_SUPPORT_RAW_H

#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "support/model.h"

// A plain reading of a file's bytes, written apart from the library and
// following the same rules a load follows: the differential oracle.

// One tag: where it stands ("IFD0", "IFD0/34665", and in a JPEG file
// "APP1#1:IFD0" for the second Exif block), its number, type and count, and
// its value in host order (1-byte values as they stand; nothing for a type
// outside 1 to 12).
struct RawTag {
    std::string place;
    uint16_t tag;
    uint16_t type;
    uint32_t count;
    Bytes value;
    bool operator==(const RawTag &o) const
    {
        return place == o.place && tag == o.tag && type == o.type && count == o.count && value == o.value;
    }
};
std::ostream &operator<<(std::ostream &out, const RawTag &tag);

// A top-level piece of a JPEG file: a marker's payload, or a run of bytes
// outside segments (code 161). offset and size locate the payload.
struct RawSegment {
    int code;
    int64_t offset;
    int64_t size;
    bool operator==(const RawSegment &o) const { return code == o.code && offset == o.offset && size == o.size; }
};
std::ostream &operator<<(std::ostream &out, const RawSegment &segment);

struct RawFile {
    int format = 0;  // 1 JPEG, 2 TIFF, 0 neither
    bool bigEndian = false;  // of the first TIFF block
    bool loads = false;  // a load of these bytes succeeds
    std::vector<RawSegment> segments;
    std::vector<RawTag> tags;  // every IFD in pre-order: a sub-IFD right behind its pointer
    // What the file cuts short: the places of IFDs whose entries it cuts, the
    // tags whose values run past its end (or past their APP1, which bounds
    // what the read-only family reads).
    std::vector<std::string> cutIfds;
    std::set<size_t> cutValues;
    Bytes thumbnail;  // the JPEG stream of IFD 1 in the first block
    // The entries of the IFD in the first block's maker note, found where a
    // save looks for it, with the values that lie in the note: a save turns
    // them little-endian, so they read the same after it.
    std::vector<RawTag> note;
    std::vector<Bytes> images;  // TIFF: each chain IFD's strips, one after the other
};
RawFile ReadRaw(const Bytes &file);

// The tags whose values are offsets a save assigns anew lose their value
// (and strip tags their type, which the save makes LONG); those a save
// leaves out by design go, with everything below them. The maker note of a
// big-endian block loses its value too: a save turns its IFD little-endian.
std::vector<RawTag> AsSaved(const std::vector<RawTag> &tags, bool bigEndian = false);

// The value of tag as a number (SHORT or LONG, first element).
uint32_t FirstNumber(const RawTag &tag);

#endif
