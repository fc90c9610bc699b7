#include "zexif/field_types.h"

int TiffTypeSize(uint32_t type)
{
    static const int SIZES[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8};
    return type <= TIFF_DOUBLE ? SIZES[type] : 0;
}

int64_t EntryDataSize(uint32_t type, uint32_t count)
{
    const int size = TiffTypeSize(type);
    return size == 0 ? int64_t(count) : int64_t(count) * size;
}
