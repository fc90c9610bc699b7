#ifndef ZEXIF_READER_IFD_TABLE_H
#define ZEXIF_READER_IFD_TABLE_H

#include <cstdint>

#include "reader/small_buffer.h"

class CStreamIO;

// The entry count at the stream's position, signed in the file's byte order,
// so that 0x8000 and above count as none. 0 when the stream has no 2 bytes.
int32_t ReadEntryCount(CStreamIO *stream, int bigEndian);

// The entries of an IFD whose count was just read, and 'extra' bytes behind
// them, for the life of the object. Up to 85 entries and a link cost no
// allocation; a larger table takes 393,220 bytes at most.
class IfdTable {
public:
    IfdTable() = default;
    IfdTable(CStreamIO *stream, int32_t count, uint32_t extra) { Load(stream, count, extra); }

    // Reads a table in place of the one held.
    void Load(CStreamIO *stream, int32_t count, uint32_t extra);

    // Null for a count below 1 or no memory.
    const unsigned char *Bytes() const { return m_bytes; }
    // How many bytes came.
    uint32_t Got() const { return m_got; }

private:
    SmallBuffer<1024> m_buffer;
    unsigned char *m_bytes = nullptr;
    uint32_t m_got = 0;
};

#endif
