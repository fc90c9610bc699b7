#include "reader/ifd_table.h"

#include <new>

#include "reader/tag_value.h"
#include "streams/byte_order.h"
#include "streams/stream.h"

int32_t ReadEntryCount(CStreamIO *stream, int bigEndian)
{
    unsigned char bytes[2];
    if (stream->Read(bytes, 2) < 2) return 0;
    return static_cast<int16_t>(ReadU16(bytes, bigEndian));
}

// A count from the file reaches 32,767 at most; the limit keeps a short file
// from asking for a table it can't hold.
unsigned char *ReadIfdTable(CStreamIO *stream, int32_t count, uint32_t extra, int64_t limit, uint32_t *got)
{
    uint32_t tableSize = static_cast<uint32_t>(count) * IFD_ENTRY_SIZE;
    if (count < 1 || tableSize > limit) return nullptr;
    unsigned char *table = new (std::nothrow) unsigned char[tableSize + extra];
    if (table == nullptr) return nullptr;
    *got = stream->Read(table, tableSize + extra);
    return table;
}
