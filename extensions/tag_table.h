#ifndef ZEXIF_EXTENSIONS_TAG_TABLE_H
#define ZEXIF_EXTENSIONS_TAG_TABLE_H

#include <cstdint>

// The group of a tag of the chain's IFDs, beside IFD_EXIF, IFD_GPS and
// IFD_INTEROP: GPS and Interoperability tags reuse the small numbers, so a
// number names a tag only together with its group.
constexpr int IFD_CHAIN = 0;

struct TagName {
    int group;
    uint16_t number;
    uint16_t type;  // the type the tag usually has
    const char *name;
};

// The tag of that name, in any case, or null.
const TagName *FindTagByName(const char *name);

// The tag of that number in the group of the IFD id, or null.
const TagName *FindTagByNumber(int ifd, uint32_t number);

#endif
