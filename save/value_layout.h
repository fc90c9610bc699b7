#ifndef ZEXIF_SAVE_VALUE_LAYOUT_H
#define ZEXIF_SAVE_VALUE_LAYOUT_H

#include <cstdint>

class CTag;

// Non-zero when the tag's value stands in the entry's 4-byte slot: up to 4
// one-byte values, up to 2 SHORTs, exactly one LONG, never an 8-byte type.
// The count is compared as a signed number, so a LONG of count 0 is out of
// line. A type outside 1 to 12 gives -1, which counts as true: its value is
// the slot.
int FitsInline(const CTag *tag);

// The bytes the tag's value takes behind the table: 0 for an inline value,
// else its count times the size of its type, never taken from m_size.
int64_t OutOfLineSize(const CTag *tag);

#endif
