#include "reader/ifd_table.h"

#include "reader/tag_value.h"
#include "streams/byte_order.h"
#include "streams/stream.h"

int32_t ReadEntryCount(CStreamIO *stream, int bigEndian)
{
    unsigned char bytes[2];
    if (stream->Read(bytes, 2) < 2) return 0;
    return static_cast<int16_t>(ReadU16(bytes, bigEndian));
}

void IfdTable::Load(CStreamIO *stream, int32_t count, uint32_t extra)
{
    m_bytes = nullptr;
    m_got = 0;
    if (count < 1) return;
    uint32_t size = static_cast<uint32_t>(count) * IFD_ENTRY_SIZE + extra;
    m_bytes = m_buffer.Reserve(size);
    if (m_bytes != nullptr) m_got = stream->Read(m_bytes, size);
}
