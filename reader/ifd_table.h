#ifndef ZEXIF_READER_IFD_TABLE_H
#define ZEXIF_READER_IFD_TABLE_H

#include <cstdint>

class CStreamIO;

// The entry count at the stream's position, signed in the file's byte order,
// so that 0x8000 and above count as none. 0 when the stream has no 2 bytes.
int32_t ReadEntryCount(CStreamIO *stream, int bigEndian);

// The entries of an IFD whose count was just read, and 'extra' bytes behind
// them, in a new[] buffer: 393,220 bytes at most. Null for a count below 1 or
// no memory; *got tells how many bytes came.
unsigned char *ReadIfdTable(CStreamIO *stream, int32_t count, uint32_t extra, uint32_t *got);

#endif
