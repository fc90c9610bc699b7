#include "edit/jpeg_frame.h"

#include "streams/byte_order.h"

namespace {

constexpr unsigned char MARKER_SOS = 0xDA;

// SOF0 to SOF15 but DHT, JPG and DAC, which share their range.
int IsFrameHeader(unsigned char code)
{
    return code >= 0xC0 && code <= 0xCF && code != 0xC4 && code != 0xC8 && code != 0xCC;
}

int HasNoLength(unsigned char code)
{
    return code == 0x01 || (code >= 0xD0 && code <= 0xD7);
}

}  // namespace

int ReadJpegFrameSize(const unsigned char *data, uint32_t size, JpegFrameSize *frame)
{
    if (size < 4 || data[0] != 0xFF || data[1] != 0xD8) return 0;
    uint64_t pos = 2;
    while (pos + 4 <= size && data[pos] == 0xFF) {
        unsigned char code = data[pos + 1];
        if (code == 0xFF || HasNoLength(code)) {
            pos += code == 0xFF ? 1 : 2;
            continue;
        }
        if (code == MARKER_SOS) return 0;
        if (IsFrameHeader(code)) {
            if (pos + 9 > size) return 0;
            frame->height = ReadU16(data + pos + 5, 1);
            frame->width = ReadU16(data + pos + 7, 1);
            return frame->width > 0 && frame->height > 0;
        }
        pos += 2 + uint64_t(ReadU16(data + pos + 2, 1));
    }
    return 0;
}
