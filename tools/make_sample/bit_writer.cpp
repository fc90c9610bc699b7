#include "bit_writer.h"

void BitWriter::Put(uint32_t bits, int length)
{
    m_pending = (m_pending << length) | (bits & ((1u << length) - 1));
    m_pendingCount += length;
    while (m_pendingCount >= 8) {
        m_pendingCount -= 8;
        EmitByte(static_cast<uint8_t>(m_pending >> m_pendingCount));
    }
    m_pending &= (1u << m_pendingCount) - 1;
}

void BitWriter::PadToByte()
{
    if (m_pendingCount > 0) Put(0x7f, 8 - m_pendingCount);
}

void BitWriter::EmitByte(uint8_t byte)
{
    m_out.push_back(byte);
    if (byte == 0xff) m_out.push_back(0);
}
