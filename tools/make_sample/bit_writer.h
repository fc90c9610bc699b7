#ifndef ZEXIF_MAKE_SAMPLE_BIT_WRITER_H
#define ZEXIF_MAKE_SAMPLE_BIT_WRITER_H

#include <cstdint>
#include <vector>

// Packs entropy-coded bits most significant first into the scan data, with
// the 0x00 that must follow every 0xFF byte so that no marker is mimicked.
class BitWriter {
public:
    explicit BitWriter(std::vector<uint8_t> &out) : m_out(out) {}

    // The low length bits of bits, length at most 16.
    void Put(uint32_t bits, int length);
    // Completes the last byte with 1 bits, as the end of a scan asks.
    void PadToByte();

private:
    void EmitByte(uint8_t byte);

    std::vector<uint8_t> &m_out;
    uint32_t m_pending = 0;
    int m_pendingCount = 0;
};

#endif
