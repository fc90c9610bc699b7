#ifndef ZEXIF_READER_TAG_VALUE_H
#define ZEXIF_READER_TAG_VALUE_H

#include <cstdint>

#include "load/tiff_types.h"

class CStreamIO;

// Bytes of one IFD entry and of its count and link fields.
constexpr uint32_t IFD_ENTRY_SIZE = 12;

// Tag, type and count of the entry at p in host order, and the raw 4-byte
// value field as it stands in the file.
IfdEntry DecodeEntry(const unsigned char *p, int bigEndian);
const unsigned char *EntryField(const unsigned char *p);

// The value field in the form handed out: 1-byte values in file order, each
// 16-bit half decoded, a 32-bit number decoded. A type outside 1 to 12 keeps
// its bytes as they stand.
void DecodeInlineValue(const unsigned char *field, uint32_t type, int bigEndian, unsigned char out[4]);

// Decodes the whole values within size bytes in place, per the type's class.
// The 8-byte types are two 32-bit halves, each decoded where it stands.
void DecodeValueBytes(unsigned char *bytes, uint32_t size, uint32_t type, int bigEndian);

// The value field read as a number of its own, after DecodeInlineValue where
// the value stands in the entry: what an offset or a length tag means.
uint32_t EntryNumber(const unsigned char *field, uint32_t type, uint32_t count, int bigEndian);

// A value up to this size is allocated and read without asking how long the
// stream is: a read that comes short tells that it doesn't fit. Asking costs
// a file two system calls.
constexpr int64_t SMALL_VALUE_SIZE = 65536;

// Where a value of size bytes starts: offset counted from base. 0 when the
// start passes 31 bits (an offset with its top bit set does), or a value larger
// than SMALL_VALUE_SIZE doesn't lie within the stream.
int LocateValue(CStreamIO *stream, int64_t base, uint32_t offset, int64_t size, int32_t *position);

// Reads size bytes at position. 1 only when all of them came: a value that
// the stream's end cuts off is no value.
int ReadValueAt(CStreamIO *stream, int32_t position, unsigned char *buffer, uint32_t size);

#endif
