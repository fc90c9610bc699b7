#include "save/tag_numbers.h"

#include <cstring>

#include "load/tiff_types.h"
#include "save/value_layout.h"
#include "tree/node.h"

int IsSingleNumber(const CTag *tag)
{
    return (tag->m_type == TIFF_SHORT || tag->m_type == TIFF_LONG) && tag->m_count == 1;
}

int ReadNumber(const CTag *tag, int32_t k, uint32_t *value)
{
    int width = tag->m_type == TIFF_SHORT ? 2 : tag->m_type == TIFF_LONG ? 4 : 0;
    if (width == 0 || k < 0 || k >= tag->m_count) return 0;
    if (FitsInline(tag)) {
        *value = width == 2 ? (tag->m_value >> (16 * k)) & 0xFFFF : tag->m_value;
        return 1;
    }
    if (tag->m_data == nullptr || int64_t(k + 1) * width > tag->m_size) return 0;
    if (width == 2) {
        uint16_t number;
        std::memcpy(&number, tag->m_data + 2 * k, 2);
        *value = number;
    } else {
        std::memcpy(value, tag->m_data + 4 * k, 4);
    }
    return 1;
}
