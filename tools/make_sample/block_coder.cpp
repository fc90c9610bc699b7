#include "block_coder.h"

#include <cmath>
#include <cstdlib>

namespace {

constexpr int SYMBOL_END_OF_BLOCK = 0x00;
constexpr int SYMBOL_SIXTEEN_ZEROS = 0xf0;

// Number of bits of the magnitude: the size category of a coefficient.
int MagnitudeBits(int value)
{
    int bits = 0;
    for (int magnitude = std::abs(value); magnitude != 0; magnitude >>= 1) ++bits;
    return bits;
}

// A coefficient goes out as its category's code and then the category's
// count of bits: the value itself, or for a negative one its ones' complement.
void PutCoefficient(int symbol, int value, int bits, const HuffmanCodes &codes, BitWriter &writer)
{
    writer.Put(codes.code[symbol], codes.length[symbol]);
    if (bits > 0) writer.Put(static_cast<uint32_t>(value < 0 ? value - 1 : value), bits);
}

}  // namespace

HuffmanCodes BuildCodes(const HuffmanTable &def)
{
    HuffmanCodes codes = {};
    uint32_t code = 0;
    int symbol = 0;
    for (int length = 1; length <= 16; ++length) {
        for (int i = 0; i < def.counts[length - 1]; ++i, ++code, ++symbol) {
            codes.code[def.symbols[symbol]] = static_cast<uint16_t>(code);
            codes.length[def.symbols[symbol]] = static_cast<uint8_t>(length);
        }
        code <<= 1;
    }
    return codes;
}

void TransformBlock(const float samples[64], const uint8_t quant[64], int coefficients[64])
{
    const double pi = std::acos(-1.0);
    double basis[8][8];
    for (int k = 0; k < 8; ++k) {
        for (int n = 0; n < 8; ++n) basis[k][n] = std::cos((2 * n + 1) * k * pi / 16) * (k == 0 ? std::sqrt(0.5) : 1.0);
    }
    int natural[64];
    for (int v = 0; v < 8; ++v) {
        for (int u = 0; u < 8; ++u) {
            double sum = 0;
            for (int y = 0; y < 8; ++y) {
                for (int x = 0; x < 8; ++x) sum += samples[y * 8 + x] * basis[u][x] * basis[v][y];
            }
            natural[v * 8 + u] = static_cast<int>(std::lround(sum / 4 / quant[v * 8 + u]));
        }
    }
    for (int k = 0; k < 64; ++k) coefficients[k] = natural[kZigzag[k]];
}

void EncodeBlock(const int coefficients[64], int *previousDc, const HuffmanCodes &dc, const HuffmanCodes &ac,
                 BitWriter &bits)
{
    const int difference = coefficients[0] - *previousDc;
    *previousDc = coefficients[0];
    const int dcBits = MagnitudeBits(difference);
    PutCoefficient(dcBits, difference, dcBits, dc, bits);
    int zeros = 0;
    for (int k = 1; k < 64; ++k) {
        if (coefficients[k] == 0) {
            ++zeros;
            continue;
        }
        for (; zeros > 15; zeros -= 16) PutCoefficient(SYMBOL_SIXTEEN_ZEROS, 0, 0, ac, bits);
        const int acBits = MagnitudeBits(coefficients[k]);
        PutCoefficient(zeros << 4 | acBits, coefficients[k], acBits, ac, bits);
        zeros = 0;
    }
    if (zeros > 0) PutCoefficient(SYMBOL_END_OF_BLOCK, 0, 0, ac, bits);
}
