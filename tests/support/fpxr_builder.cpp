#include "support/fpxr_builder.h"

#include <algorithm>
#include <string>

#include "support/byte_builder.h"

namespace {

const std::vector<uint8_t> kPropertyBlock = {
    0xFE, 0xFF, 0x00, 0x00, 0x00, 0x04, 0x02, 0x00, 0x01, 0x01, 0x00, 0x10, 0xC0, 0x6F,
    0xD0, 0x11, 0xBD, 0x01, 0x00, 0x60, 0x97, 0x19, 0xA1, 0x80, 0x01, 0x00, 0x00, 0x00,
};

ByteBuilder FpxrHeader(uint16_t index)
{
    ByteBuilder b(true);
    b.Text("FPXR").U8(0).U8(0).U8(2).U16(index).U32(0);
    return b;
}

}  // namespace

std::vector<uint8_t> RiffWave(size_t size, uint32_t seed)
{
    ByteBuilder b;
    b.Text("RIFF").U32(uint32_t(size - 8)).Text("WAVE");
    b.Text("fmt ").U32(16).U16(1).U16(1).U32(8000).U32(16000).U16(2).U16(16);
    b.Text("data").U32(uint32_t(size - 44));
    uint32_t state = seed;
    while (b.Size() < size) {
        state = state * 1664525u + 1013904223u;
        b.U8(uint8_t(state >> 24));
    }
    return b.m_bytes;
}

std::vector<uint8_t> FpxrHead(uint16_t index, const std::vector<uint8_t> &chunk)
{
    return FpxrHeader(index).Bytes(kPropertyBlock).Bytes(chunk).m_bytes;
}

std::vector<uint8_t> FpxrContinuation(uint16_t index, const std::vector<uint8_t> &chunk)
{
    return FpxrHeader(index).Bytes(chunk).m_bytes;
}

std::vector<std::vector<uint8_t>> FpxrPayloads(const std::vector<uint8_t> &audio, uint16_t index,
                                               const std::vector<size_t> &leadingChunks)
{
    std::vector<std::vector<uint8_t>> payloads;
    size_t at = 0;
    for (size_t i = 0; i <= leadingChunks.size(); i++) {
        size_t end = i < leadingChunks.size() ? std::min(audio.size(), at + leadingChunks[i]) : audio.size();
        std::vector<uint8_t> chunk(audio.begin() + long(at), audio.begin() + long(end));
        payloads.push_back(i == 0 ? FpxrHead(index, chunk) : FpxrContinuation(index, chunk));
        at = end;
    }
    return payloads;
}

std::vector<uint8_t> IccPayload(size_t size, uint16_t index)
{
    ByteBuilder b(true);
    b.Text("ICC_PR").U8(0).U16(index).Text("OFILE");
    b.Fill(size - b.Size(), 0x11);
    return b.m_bytes;
}
