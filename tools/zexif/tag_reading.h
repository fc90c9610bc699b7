#ifndef ZEXIF_TOOL_TAG_READING_H
#define ZEXIF_TOOL_TAG_READING_H

#include <cstdint>

#include "zexif/tag_argument.h"
#include "zexif/value_meaning.h"

struct CExifReader;

// A value as the library hands it out: the bytes its type and count take,
// none for a type outside 1 to 12.
ValueView ViewOfValue(uint32_t type, uint32_t count, const void *data);

// The tag at address as the read-only family gives it, with the value of the
// Ref tag of a GPS coordinate; false when the file has no such tag. The view
// points into the reader.
bool ReadTag(CExifReader *reader, const TagAddress &address, TagView *view);

#endif
