#ifndef ZEXIF_READER_IFD_TABLE_H
#define ZEXIF_READER_IFD_TABLE_H

#include <cstdint>

class CStreamIO;

// The entry count at the stream's position, signed in the file's byte order,
// so that 0x8000 and above count as none. 0 when the stream has no 2 bytes.
int32_t ReadEntryCount(CStreamIO *stream, int bigEndian);

// The entries of an IFD whose count was just read, and 'extra' bytes behind
// them, in a new[] buffer. Null when the table alone can't be in a stream of
// limit bytes or no memory; *got tells how many bytes came.
unsigned char *ReadIfdTable(CStreamIO *stream, int32_t count, uint32_t extra, int64_t limit, uint32_t *got);

#endif
