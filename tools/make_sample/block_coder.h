#ifndef ZEXIF_MAKE_SAMPLE_BLOCK_CODER_H
#define ZEXIF_MAKE_SAMPLE_BLOCK_CODER_H

#include <cstdint>

#include "bit_writer.h"
#include "jpeg_tables.h"

// The code and its length in bits for each of the 256 symbols of a table.
struct HuffmanCodes {
    uint16_t code[256];
    uint8_t length[256];
};

// Assigns the canonical codes that a decoder derives from the same counts.
HuffmanCodes BuildCodes(const HuffmanTable &def);

// Forward DCT of an 8x8 block of samples centred on 0, divided by the
// quantisation table and rounded; the result is in zigzag order.
void TransformBlock(const float samples[64], const uint8_t quant[64], int coefficients[64]);

// Entropy-codes one block: the DC difference to the previous block of the
// same component, then the AC coefficients as runs of zeros and magnitudes.
void EncodeBlock(const int coefficients[64], int *previousDc, const HuffmanCodes &dc, const HuffmanCodes &ac,
                 BitWriter &bits);

#endif
