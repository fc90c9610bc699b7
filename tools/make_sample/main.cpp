// Writes the sample image that `zexif` shows when it is given no file. It is
// drawn and encoded here so that the project ships no picture from elsewhere.
#include <cstdio>

#include "jpeg_encoder.h"

namespace {

// Red grows to the right, green downwards, blue the other way round.
RgbImage DrawGradient(int width, int height)
{
    RgbImage image = {width, height, {}};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const int red = x * 255 / (width - 1), green = y * 255 / (height - 1);
            image.pixels.insert(image.pixels.end(), {static_cast<uint8_t>(red), static_cast<uint8_t>(green),
                                                     static_cast<uint8_t>(255 - (red + green) / 2)});
        }
    }
    return image;
}

int WriteFile(const char *path, const std::vector<uint8_t> &bytes)
{
    FILE *file = std::fopen(path, "wb");
    if (file == nullptr) return 0;
    const size_t written = std::fwrite(bytes.data(), 1, bytes.size(), file);
    return std::fclose(file) == 0 && written == bytes.size() ? 1 : 0;
}

}  // namespace

int main(int argc, char **argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: make_sample OUTPUT.jpg\n");
        return 2;
    }
    if (!WriteFile(argv[1], EncodeBaselineJpeg(DrawGradient(32, 16)))) {
        std::perror(argv[1]);
        return 1;
    }
    return 0;
}
