#include "save/value_layout.h"

#include "load/tiff_types.h"
#include "tree/node.h"

int FitsInline(const CTag *tag)
{
    switch (TiffTypeSize(tag->m_type)) {
    case 1:
        return tag->m_count < 5;
    case 2:
        return tag->m_count < 3;
    case 4:
        return tag->m_count == 1;
    case 8:
        return 0;
    default:
        return -1;
    }
}

int64_t OutOfLineSize(const CTag *tag)
{
    if (FitsInline(tag) || tag->m_count < 0) return 0;
    return int64_t(tag->m_count) * TiffTypeSize(tag->m_type);
}
