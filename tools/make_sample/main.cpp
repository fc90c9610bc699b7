// Writes the sample image that `zexif` shows when it is given no file. It is
// drawn and encoded here so that the project ships no picture from elsewhere;
// the library itself then gives it the metadata a camera would: tags in IFD 0
// and the Exif IFD, and a thumbnail.
#include <cstdio>
#include <cstring>

#include "jpeg_encoder.h"
#include "zexif.h"

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

int SetAscii(CExifDoc *doc, uint32_t tag, const char *text)
{
    ExifTagValue value = {2, static_cast<uint32_t>(std::strlen(text) + 1), const_cast<char *>(text)};
    return zExifSetTag(doc, tag, &value, 0) == 0;
}

int SetShort(CExifDoc *doc, uint32_t tag, uint16_t number)
{
    ExifTagValue value = {3, 1, &number};
    return zExifSetTag(doc, tag, &value, 0) == 0;
}

int SetRational(CExifDoc *doc, uint32_t tag, uint32_t numerator, uint32_t denominator)
{
    uint32_t fraction[2] = {numerator, denominator};
    ExifTagValue value = {5, 1, fraction};
    return zExifSetTag(doc, tag, &value, 0) == 0;
}

int SetThumbnail(CExifDoc *doc, std::vector<uint8_t> jpeg)
{
    ExifBuffer buffer = {jpeg.data(), static_cast<uint32_t>(jpeg.size())};
    return zExifSetThumbnailData(doc, &buffer) == 0;
}

// The tags land in the IFD each belongs to; the Exif IFD is made on the way.
int AddMetadata(const char *path)
{
    CExifDoc *doc = zExifLoadFile(path);
    if (doc == nullptr) return 0;
    int done = SetAscii(doc, 271, "zExifLib") && SetAscii(doc, 272, "make_sample") &&
               SetAscii(doc, 306, "2026:11:23 06:00:00") && SetAscii(doc, 36867, "2026:11:23 06:00:00") &&
               SetRational(doc, 33434, 1, 250) && SetRational(doc, 33437, 28, 10) && SetShort(doc, 34855, 100) &&
               SetThumbnail(doc, EncodeBaselineJpeg(DrawGradient(8, 4))) && zExifSaveFile(doc, path) == 0;
    zExifDestroy(doc);
    return done;
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
    if (!AddMetadata(argv[1])) {
        std::fprintf(stderr, "make_sample: cannot add the metadata to %s\n", argv[1]);
        return 1;
    }
    return 0;
}
