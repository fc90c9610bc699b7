#ifndef ZEXIF_TOOL_FIELD_TYPES_H
#define ZEXIF_TOOL_FIELD_TYPES_H

#include <cstdint>

// The 12 field types of TIFF 6.0.
enum TiffType {
    TIFF_BYTE = 1, TIFF_ASCII = 2, TIFF_SHORT = 3, TIFF_LONG = 4, TIFF_RATIONAL = 5, TIFF_SBYTE = 6,
    TIFF_UNDEFINED = 7, TIFF_SSHORT = 8, TIFF_SLONG = 9, TIFF_SRATIONAL = 10, TIFF_FLOAT = 11, TIFF_DOUBLE = 12,
};

// Bytes of one value of the type: 1, 2, 4 or 8; 0 for a type outside 1 to 12.
int TiffTypeSize(uint32_t type);

// Bytes of count values of the type; the plain count outside 1 to 12.
int64_t EntryDataSize(uint32_t type, uint32_t count);

#endif
