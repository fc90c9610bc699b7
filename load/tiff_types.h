#ifndef ZEXIF_LOAD_TIFF_TYPES_H
#define ZEXIF_LOAD_TIFF_TYPES_H

#include <cstdint>

// The 12 field types of TIFF 6.0, known by the size of one value.
enum TiffType {
    TIFF_BYTE = 1, TIFF_ASCII = 2, TIFF_SHORT = 3, TIFF_LONG = 4, TIFF_RATIONAL = 5, TIFF_SBYTE = 6,
    TIFF_UNDEFINED = 7, TIFF_SSHORT = 8, TIFF_SLONG = 9, TIFF_SRATIONAL = 10, TIFF_FLOAT = 11, TIFF_DOUBLE = 12,
};

// One 12-byte IFD entry with its fields in host order.
struct IfdEntry {
    uint16_t tag;
    uint16_t type;
    uint32_t count;
    uint32_t value;
};

// Reads the byte-order mark at the start of a TIFF block: 1 with *bigEndian
// set for "II" or "MM", 0 for anything else.
int ReadByteOrderMark(const unsigned char *mark, int *bigEndian);
int IsByteOrderMark(const unsigned char *mark);

// Bytes of one value of the type: 1, 2, 4 or 8; 0 for a type outside 1 to 12.
int TiffTypeSize(uint32_t type);

// Bytes of a value of that type and count: the count times the value size,
// and the plain count for a type outside 1 to 12. 64 bits, so that counts
// from a file can't overflow it.
int64_t EntryDataSize(uint32_t type, uint32_t count);

// 1 when a value of that type and count stands in the entry's 4-byte field.
int ValueFitsEntry(uint32_t type, uint32_t count);

// The type of an entry that is the offset of an IFD, beside LONG.
constexpr uint32_t TIFF_IFD = 13;

// 1 when an entry of that type and count can point at an IFD: one LONG or
// one IFD-typed value. A pointer tag of another form points at nothing.
int IsIfdPointer(uint32_t type, uint32_t count);

#endif
