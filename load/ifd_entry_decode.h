#ifndef ZEXIF_LOAD_IFD_ENTRY_DECODE_H
#define ZEXIF_LOAD_IFD_ENTRY_DECODE_H

#include "load/tiff_types.h"

// Decodes a 12-byte entry into host order. A value that stands in the entry
// keeps the form the tree expects: bytes in file order, two SHORTs with the
// first in the low half, a LONG as a number.
IfdEntry DecodeIfdEntry(const unsigned char *raw, int bigEndian);

// 1 when the entry's value lies outside the entry and has bytes to fetch.
int ValueIsOutOfLine(const IfdEntry &entry);

// Brings fetched value bytes of a big-endian block into host order; the two
// halves of an 8-byte value are swapped each in its place.
void SwapValueBytes(unsigned char *bytes, int64_t size, uint32_t type);

#endif
