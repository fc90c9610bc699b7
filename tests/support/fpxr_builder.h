#ifndef ZEXIF_TESTS_FPXR_BUILDER_H
#define ZEXIF_TESTS_FPXR_BUILDER_H

#include <cstddef>
#include <cstdint>
#include <vector>

// A RIFF/WAVE file of exactly size bytes (at least 44): a PCM header and
// pseudo-random samples, so that misplaced bytes show.
std::vector<uint8_t> RiffWave(size_t size, uint32_t seed = 1);

// FPXR APP2 payloads carrying the given chunk.
std::vector<uint8_t> FpxrHead(uint16_t index, const std::vector<uint8_t> &chunk);
std::vector<uint8_t> FpxrContinuation(uint16_t index, const std::vector<uint8_t> &chunk);

// Cuts audio into a head and continuations with the given chunk sizes; the
// last chunk takes whatever is left.
std::vector<std::vector<uint8_t>> FpxrPayloads(const std::vector<uint8_t> &audio, uint16_t index,
                                               const std::vector<size_t> &leadingChunks);

// An ICC profile's APP2 payload of the given length (at least 14), whose bytes
// 7 and 8 hold index.
std::vector<uint8_t> IccPayload(size_t size, uint16_t index = 0x4343);

#endif
