#ifndef ZEXIF_TOOL_TAG_NAMES_H
#define ZEXIF_TOOL_TAG_NAMES_H

#include <cstddef>
#include <cstdint>
#include <string>

// The IFDs a tag number is read in. GPS and Interoperability tags reuse the
// small numbers, so a number names a tag only together with its group.
enum TagGroup { GROUP_TIFF, GROUP_EXIF, GROUP_GPS, GROUP_INTEROP };

struct TagName {
    TagGroup group;
    uint16_t number;
    const char *name;
};

// The tag of that name, in any case, or null.
const TagName *FindTagByName(const std::string &name);

// The name of a tag, or null for one the table doesn't know.
const char *NameOfTag(TagGroup group, uint32_t number);

// The group of the IFD that a pointer tag leads to: the Exif, GPS and
// Interoperability pointers have their own; any other sub-IFD holds TIFF tags.
TagGroup GroupBelowPointer(uint32_t pointer);

// The table, for the tests.
const TagName *AllTagNames(size_t *count);

#endif
