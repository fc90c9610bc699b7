#include "jpeg_encoder.h"

#include <algorithm>

#include "bit_writer.h"
#include "block_coder.h"
#include "jpeg_tables.h"

namespace {

enum Channel { LUMA, CHROMA_BLUE, CHROMA_RED };

// 16x16 pixels: four luma blocks and one block of each chroma channel.
constexpr int MCU_SIZE = 16;

// The JFIF conversion. Pixels past the right or bottom edge repeat the last
// column or row, so any size fills whole blocks.
float SampleAt(const RgbImage &image, Channel channel, int x, int y)
{
    x = std::min(x, image.width - 1);
    y = std::min(y, image.height - 1);
    const uint8_t *rgb = &image.pixels[(static_cast<size_t>(y) * image.width + x) * 3];
    const float r = rgb[0], g = rgb[1], b = rgb[2];
    switch (channel) {
    case LUMA: return 0.299f * r + 0.587f * g + 0.114f * b;
    case CHROMA_BLUE: return -0.168736f * r - 0.331264f * g + 0.5f * b + 128;
    default: return 0.5f * r - 0.418688f * g - 0.081312f * b + 128;
    }
}

void LumaBlock(const RgbImage &image, int left, int top, float samples[64])
{
    for (int y = 0; y < 8; ++y) {
        for (int x = 0; x < 8; ++x) samples[y * 8 + x] = SampleAt(image, LUMA, left + x, top + y) - 128;
    }
}

// One chroma sample stands for the 2x2 pixels of the MCU that it covers.
void ChromaBlock(const RgbImage &image, Channel channel, int left, int top, float samples[64])
{
    for (int y = 0; y < 8; ++y) {
        for (int x = 0; x < 8; ++x) {
            const int px = left + 2 * x, py = top + 2 * y;
            const float sum = SampleAt(image, channel, px, py) + SampleAt(image, channel, px + 1, py) +
                              SampleAt(image, channel, px, py + 1) + SampleAt(image, channel, px + 1, py + 1);
            samples[y * 8 + x] = sum / 4 - 128;
        }
    }
}

void PutU16(std::vector<uint8_t> &out, size_t value)
{
    out.push_back(static_cast<uint8_t>(value >> 8));
    out.push_back(static_cast<uint8_t>(value));
}

void PutSegment(std::vector<uint8_t> &out, uint8_t code, const std::vector<uint8_t> &payload)
{
    out.push_back(0xff);
    out.push_back(code);
    PutU16(out, payload.size() + 2);
    out.insert(out.end(), payload.begin(), payload.end());
}

// "JFIF", version 1.01, no density unit, 1:1 aspect, no thumbnail.
std::vector<uint8_t> JfifPayload()
{
    return {'J', 'F', 'I', 'F', 0, 1, 1, 0, 0, 1, 0, 1, 0, 0};
}

std::vector<uint8_t> QuantPayload()
{
    std::vector<uint8_t> payload;
    const uint8_t *tables[2] = {kLumaQuant, kChromaQuant};
    for (uint8_t id = 0; id < 2; ++id) {
        payload.push_back(id);
        for (int k = 0; k < 64; ++k) payload.push_back(tables[id][kZigzag[k]]);
    }
    return payload;
}

// Component 1 (Y) is sampled 2x2 and uses table 0; 2 (Cb) and 3 (Cr) 1x1
// with table 1.
std::vector<uint8_t> FramePayload(const RgbImage &image)
{
    std::vector<uint8_t> payload = {8};
    PutU16(payload, static_cast<size_t>(image.height));
    PutU16(payload, static_cast<size_t>(image.width));
    payload.insert(payload.end(), {3, 1, 0x22, 0, 2, 0x11, 1, 3, 0x11, 1});
    return payload;
}

void PutHuffmanTable(std::vector<uint8_t> &payload, uint8_t classAndId, const HuffmanTable &def)
{
    payload.push_back(classAndId);
    payload.insert(payload.end(), def.counts, def.counts + 16);
    payload.insert(payload.end(), def.symbols, def.symbols + def.symbolCount);
}

std::vector<uint8_t> HuffmanPayload()
{
    std::vector<uint8_t> payload;
    PutHuffmanTable(payload, 0x00, kLumaDc);
    PutHuffmanTable(payload, 0x10, kLumaAc);
    PutHuffmanTable(payload, 0x01, kChromaDc);
    PutHuffmanTable(payload, 0x11, kChromaAc);
    return payload;
}

// All three components in one scan, the full spectrum, no approximation.
std::vector<uint8_t> ScanHeader()
{
    return {3, 1, 0x00, 2, 0x11, 3, 0x11, 0, 63, 0};
}

class ScanEncoder {
public:
    explicit ScanEncoder(std::vector<uint8_t> &out)
        : m_bits(out), m_lumaDc(BuildCodes(kLumaDc)), m_lumaAc(BuildCodes(kLumaAc)),
          m_chromaDc(BuildCodes(kChromaDc)), m_chromaAc(BuildCodes(kChromaAc))
    {
    }

    void EncodeMcu(const RgbImage &image, int left, int top)
    {
        float samples[64];
        for (int block = 0; block < 4; ++block) {
            LumaBlock(image, left + (block % 2) * 8, top + (block / 2) * 8, samples);
            Encode(samples, kLumaQuant, &m_previousDc[LUMA], m_lumaDc, m_lumaAc);
        }
        for (Channel channel : {CHROMA_BLUE, CHROMA_RED}) {
            ChromaBlock(image, channel, left, top, samples);
            Encode(samples, kChromaQuant, &m_previousDc[channel], m_chromaDc, m_chromaAc);
        }
    }

    void Finish() { m_bits.PadToByte(); }

private:
    void Encode(const float samples[64], const uint8_t quant[64], int *previousDc, const HuffmanCodes &dc,
                const HuffmanCodes &ac)
    {
        int coefficients[64];
        TransformBlock(samples, quant, coefficients);
        EncodeBlock(coefficients, previousDc, dc, ac, m_bits);
    }

    BitWriter m_bits;
    HuffmanCodes m_lumaDc, m_lumaAc, m_chromaDc, m_chromaAc;
    int m_previousDc[3] = {0, 0, 0};
};

void PutScanData(std::vector<uint8_t> &out, const RgbImage &image)
{
    ScanEncoder encoder(out);
    for (int top = 0; top < image.height; top += MCU_SIZE) {
        for (int left = 0; left < image.width; left += MCU_SIZE) encoder.EncodeMcu(image, left, top);
    }
    encoder.Finish();
}

}  // namespace

std::vector<uint8_t> EncodeBaselineJpeg(const RgbImage &image)
{
    std::vector<uint8_t> out = {0xff, 0xd8};
    PutSegment(out, 0xe0, JfifPayload());
    PutSegment(out, 0xdb, QuantPayload());
    PutSegment(out, 0xc0, FramePayload(image));
    PutSegment(out, 0xc4, HuffmanPayload());
    PutSegment(out, 0xda, ScanHeader());
    PutScanData(out, image);
    out.insert(out.end(), {0xff, 0xd9});
    return out;
}
