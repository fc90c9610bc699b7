#ifndef ZEXIF_MAKE_SAMPLE_JPEG_TABLES_H
#define ZEXIF_MAKE_SAMPLE_JPEG_TABLES_H

#include <cstdint>

// The example tables of the JPEG standard's annex K, which every baseline
// decoder knows how to read.

// Natural (row-major) index of each coefficient in zigzag order.
extern const uint8_t kZigzag[64];

// Quantisation tables in natural order.
extern const uint8_t kLumaQuant[64];
extern const uint8_t kChromaQuant[64];

// A Huffman table as a DHT segment carries it: how many codes of each length
// from 1 to 16 bits, then the symbols in order of their codes.
struct HuffmanTable {
    uint8_t counts[16];
    const uint8_t *symbols;
    int symbolCount;
};

extern const HuffmanTable kLumaDc;
extern const HuffmanTable kLumaAc;
extern const HuffmanTable kChromaDc;
extern const HuffmanTable kChromaAc;

#endif
