#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

#include "load/tiff_types.h"
#include "platform/failure_reason.h"
#include "tree/node.h"
#include "zexif.h"

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
        bytes = m_data != nullptr ? static_cast<size_t>(m_size) : 0;
    }
    if (bytes == 0) {
        *data = nullptr;
        return 1;
    }
    void *copy = std::malloc(bytes);
    if (copy == nullptr) return NoteFailure(ZEXIF_ERROR_MEMORY);
    std::memcpy(copy, source, bytes);
    *data = copy;
    return 1;
}

// The block stays when the value moves into m_value: tag 513 keeps the
// thumbnail's bytes there while m_value holds its offset. A type outside 1 to
// 12 has no value to store.
int CTag::SetValue(const ExifTagValue *value)
{
    int known = TiffTypeSize(value->type) != 0;
    int inEntry = ValueFitsEntry(value->type, value->count);
    int64_t bytes = known ? EntryDataSize(value->type, value->count) : 0;
    if (bytes > 0 && value->data == nullptr) return 0;
    if (bytes > INT32_MAX) return 0;
    uint32_t slot = 0;
    unsigned char *block = nullptr;
    if (inEntry && bytes > 0) std::memcpy(&slot, value->data, static_cast<size_t>(bytes));
    if (!inEntry && bytes > 0) {
        block = new (std::nothrow) unsigned char[bytes];
        if (block == nullptr) return NoteFailure(ZEXIF_ERROR_MEMORY);
        std::memcpy(block, value->data, static_cast<size_t>(bytes));
    }
    m_type = value->type;
    m_count = static_cast<int32_t>(value->count);
    m_value = slot;
    if (known && !inEntry) {
        delete[] m_data;
        m_data = block;
        m_size = static_cast<int32_t>(bytes);
    }
    return 1;
}
