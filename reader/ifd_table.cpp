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

unsigned char *ReadIfdTable(CStreamIO *stream, int32_t count, uint32_t extra, uint32_t *got)
{
    if (count < 1) return nullptr;
    uint32_t tableSize = static_cast<uint32_t>(count) * IFD_ENTRY_SIZE;
    unsigned char *table = new (std::nothrow) unsigned char[tableSize + extra];
    if (table == nullptr) return nullptr;
    *got = stream->Read(table, tableSize + extra);
    return table;
}
