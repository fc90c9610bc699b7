#ifndef ZEXIF_EDIT_EXIF_IFD_TAGS_H
#define ZEXIF_EDIT_EXIF_IFD_TAGS_H

#include <cstdint>

// Tag numbers that live in the Exif IFD, below tag 34665, whatever IFD a
// caller names. Orientation (274) is one of them for this library.
extern const uint32_t ExifIfdTagTable[58];

int IsExifIfdTag(uint32_t tag);

#endif
