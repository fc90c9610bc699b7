#include "load/ifd_entry_decode.h"

#include <cstring>

#include "streams/byte_order.h"

IfdEntry DecodeIfdEntry(const unsigned char *raw, int bigEndian)
{
    IfdEntry entry;
    entry.tag = ReadU16(raw, bigEndian);
    entry.type = ReadU16(raw + 2, bigEndian);
    entry.count = ReadU32(raw + 4, bigEndian);
    int size = TiffTypeSize(entry.type);
    if (size == 1 && entry.count <= 4) {
        std::memcpy(&entry.value, raw + 8, 4);
    } else if (size == 2 && entry.count <= 2) {
        entry.value = uint32_t(ReadU16(raw + 8, bigEndian)) | (uint32_t(ReadU16(raw + 10, bigEndian)) << 16);
    } else {
        entry.value = ReadU32(raw + 8, bigEndian);
    }
    return entry;
}

int ValueIsOutOfLine(const IfdEntry &entry)
{
    int size = TiffTypeSize(entry.type);
    return size != 0 && !ValueFitsEntry(entry.type, entry.count) && entry.count > 0;
}

void SwapValueBytes(unsigned char *bytes, int64_t size, uint32_t type)
{
    if (TiffTypeSize(type) == 2) {
        for (int64_t i = 0; i + 2 <= size; i += 2) Swap16(bytes + i);
    } else if (TiffTypeSize(type) >= 4) {
        for (int64_t i = 0; i + 4 <= size; i += 4) Swap32(bytes + i);
    }
}
