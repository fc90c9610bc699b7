#ifndef ZEXIF_READER_IFD_TABLE_H
#define ZEXIF_READER_IFD_TABLE_H

#include <cstdint>

class CStreamIO;

// The entry count at the stream's position, signed in the file's byte order,
// so that 0x8000 and above count as none. 0 when the stream has no 2 bytes.
int32_t ReadEntryCount(CStreamIO *stream, int bigEndian);

// Table bytes held in the object itself: 85 entries and a link. Most IFDs
// are smaller and cost no allocation then.
constexpr uint32_t IFD_TABLE_IN_PLACE = 1024;

// The entries of an IFD whose count was just read, and 'extra' bytes behind
// them, for the life of the object. A larger table than the object holds
// goes to a new[] buffer: 393,220 bytes at most.
class IfdTable {
public:
    IfdTable(CStreamIO *stream, int32_t count, uint32_t extra);
    ~IfdTable();
    IfdTable(const IfdTable &) = delete;
    IfdTable &operator=(const IfdTable &) = delete;

    // Null for a count below 1 or no memory.
    const unsigned char *Bytes() const { return m_bytes; }
    // How many bytes came.
    uint32_t Got() const { return m_got; }

private:
    unsigned char *m_bytes = nullptr;
    unsigned char *m_allocated = nullptr;
    uint32_t m_got = 0;
    unsigned char m_inPlace[IFD_TABLE_IN_PLACE];
};

#endif
