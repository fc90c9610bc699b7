#include "load/tiff_types.h"

int TiffTypeSize(uint32_t type)
{
    switch (type) {
    case TIFF_BYTE: case TIFF_ASCII: case TIFF_SBYTE: case TIFF_UNDEFINED:
        return 1;
    case TIFF_SHORT: case TIFF_SSHORT:
        return 2;
    case TIFF_LONG: case TIFF_SLONG: case TIFF_FLOAT:
        return 4;
    case TIFF_RATIONAL: case TIFF_SRATIONAL: case TIFF_DOUBLE:
        return 8;
    default:
        return 0;
    }
}

int64_t EntryDataSize(uint32_t type, uint32_t count)
{
    int size = TiffTypeSize(type);
    return size == 0 ? int64_t(count) : int64_t(count) * size;
}

int ValueFitsEntry(uint32_t type, uint32_t count)
{
    int size = TiffTypeSize(type);
    return size != 0 && size != 8 && int64_t(count) * size <= 4;
}

int IsIfdPointer(uint32_t type, uint32_t count)
{
    return (type == TIFF_LONG || type == TIFF_IFD) && count == 1;
}

int ReadByteOrderMark(const unsigned char *mark, int *bigEndian)
{
    if (mark[0] != mark[1] || (mark[0] != 'I' && mark[0] != 'M')) return 0;
    *bigEndian = mark[0] == 'M';
    return 1;
}

int IsByteOrderMark(const unsigned char *mark)
{
    int bigEndian;
    return ReadByteOrderMark(mark, &bigEndian);
}
