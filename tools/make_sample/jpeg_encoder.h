#ifndef ZEXIF_MAKE_SAMPLE_JPEG_ENCODER_H
#define ZEXIF_MAKE_SAMPLE_JPEG_ENCODER_H

#include <cstdint>
#include <vector>

// An image as red, green, blue bytes, row by row from the top left.
struct RgbImage {
    int width;
    int height;
    std::vector<uint8_t> pixels;
};

// A baseline JPEG file of the image: JFIF APP0, the annex K tables, YCbCr
// with 4:2:0 chroma, one interleaved scan.
std::vector<uint8_t> EncodeBaselineJpeg(const RgbImage &image);

#endif
