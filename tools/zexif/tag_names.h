#ifndef ZEXIF_TOOL_TAG_NAMES_H
#define ZEXIF_TOOL_TAG_NAMES_H

#include <cstdint>

// The IFDs a tag number is read in. GPS and Interoperability tags reuse the
// small numbers, so a number names a tag only together with its group.
enum TagGroup { GROUP_TIFF, GROUP_EXIF, GROUP_GPS, GROUP_INTEROP };

// The IFD id that the library's calls take: the IFD of that index for a TIFF
// tag, the sub-IFD of the group for the others.
int IfdOfGroup(TagGroup group, uint32_t index);
TagGroup GroupOfIfd(int ifd);

// The library's name of a tag, or null for one its table doesn't know.
const char *NameOfTag(TagGroup group, uint32_t number);

#endif
