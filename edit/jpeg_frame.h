#ifndef ZEXIF_EDIT_JPEG_FRAME_H
#define ZEXIF_EDIT_JPEG_FRAME_H

#include <cstdint>

// The size of the image of a JPEG stream, as its frame header gives it.
struct JpegFrameSize {
    uint32_t width = 0;
    uint32_t height = 0;
};

// Walks the stream's segments from SOI to the first frame header. 1 with
// *frame set, or 0 for bytes that hold no frame header of an image.
int ReadJpegFrameSize(const unsigned char *data, uint32_t size, JpegFrameSize *frame);

#endif
