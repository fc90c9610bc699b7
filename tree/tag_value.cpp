#include <cstdlib>
#include <cstring>

#include "load/tiff_types.h"
#include "tree/node.h"

int CTag::CopyValue(void **data)
{
    int size = TiffTypeSize(m_type);
    if (size == 0) return 1;
    const void *source;
    size_t bytes;
    if (ValueFitsEntry(m_type, static_cast<uint32_t>(m_count)) && m_count >= 0) {
        source = &m_value;
        bytes = static_cast<size_t>(m_count) * size;
    } else {
        source = m_data;
        bytes = m_data != nullptr && m_size > 0 ? static_cast<size_t>(m_size) : 0;
    }
    if (bytes == 0) {
        *data = nullptr;
        return 1;
    }
    void *copy = std::malloc(bytes);
    if (copy == nullptr) return 0;
    std::memcpy(copy, source, bytes);
    *data = copy;
    return 1;
}
