#include "reader/tag_value.h"

#include <cstring>

#include "streams/byte_order.h"
#include "streams/stream.h"
#include "streams/stream_size.h"

IfdEntry DecodeEntry(const unsigned char *p, int bigEndian)
{
    IfdEntry entry;
    entry.tag = ReadU16(p, bigEndian);
    entry.type = ReadU16(p + 2, bigEndian);
    entry.count = ReadU32(p + 4, bigEndian);
    entry.value = ReadU32(p + 8, bigEndian);
    return entry;
}

const unsigned char *EntryField(const unsigned char *p)
{
    return p + 8;
}

void DecodeInlineValue(const unsigned char *field, uint32_t type, int bigEndian, unsigned char out[4])
{
    std::memcpy(out, field, 4);
    int size = TiffTypeSize(type);
    if (size == 2 || size == 4) DecodeValueBytes(out, 4, type, bigEndian);
}

void DecodeValueBytes(unsigned char *bytes, uint32_t size, uint32_t type, int bigEndian)
{
    if (!bigEndian) return;
    int valueSize = TiffTypeSize(type);
    if (valueSize == 2) {
        for (uint32_t i = 0; i + 2 <= size; i += 2) Swap16(bytes + i);
    } else if (valueSize == 4 || valueSize == 8) {
        for (uint32_t i = 0; i + 4 <= size; i += 4) Swap32(bytes + i);
    }
}

uint32_t EntryNumber(const unsigned char *field, uint32_t type, uint32_t count, int bigEndian)
{
    if (!ValueFitsEntry(type, count)) return ReadU32(field, bigEndian);
    unsigned char value[4];
    DecodeInlineValue(field, type, bigEndian, value);
    return ReadU32(value, 0);
}

// Bases are never negative, so neither is the start.
int LocateValue(CStreamIO *stream, int64_t base, uint32_t offset, int64_t size, int32_t *position)
{
    int64_t start = base + offset;
    if (start > INT32_MAX || size > int64_t(UINT32_MAX)) return 0;
    if (size > SMALL_VALUE_SIZE && start + size > StreamSize(stream)) return 0;
    *position = static_cast<int32_t>(start);
    return 1;
}

int ReadValueAt(CStreamIO *stream, int32_t position, unsigned char *buffer, uint32_t size)
{
    stream->Seek(0, position);
    return stream->Read(buffer, size) == size;
}

