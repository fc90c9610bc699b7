#ifndef ZEXIF_SAVE_TAG_NUMBERS_H
#define ZEXIF_SAVE_TAG_NUMBERS_H

#include <cstdint>

class CTag;

// Element k of a SHORT or LONG tag, from its slot or its value bytes, as an
// unsigned number. Returns 1, or 0 for another type or an element the tag
// doesn't hold.
int ReadNumber(const CTag *tag, int32_t k, uint32_t *value);

// One SHORT or LONG: the form of an offset or a length such as the
// thumbnail's.
int IsSingleNumber(const CTag *tag);

#endif
