#ifndef ZEXIF_READER_TAG_VALUE_H
#define ZEXIF_READER_TAG_VALUE_H

#include <cstdint>

#include "load/tiff_types.h"

class CStreamIO;
struct CExifReader;

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

// Where an out-of-entry value of size bytes starts: the field as an offset
// from base. 0 when the offset has its top bit set or the value doesn't lie
// wholly within a stream of limit bytes.
int LocateValue(int64_t base, uint32_t offset, int64_t size, int64_t limit, int32_t *position);

// Reads size bytes at position into a buffer cleared before, so that what a
// short read leaves is zero. Returns the bytes that came.
uint32_t ReadValueAt(CStreamIO *stream, int32_t position, unsigned char *buffer, uint32_t size);

// Bytes the stream holds; its position is kept.
int64_t StreamSize(CStreamIO *stream);
// The same for a stream a reader scans: its own file was measured at the open.
int64_t StreamLimit(const CExifReader *reader, CStreamIO *stream);

#endif
