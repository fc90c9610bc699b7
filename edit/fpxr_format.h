#ifndef ZEXIF_EDIT_FPXR_FORMAT_H
#define ZEXIF_EDIT_FPXR_FORMAT_H

#include <cstdint>

// The FPXR APP2 segment that carries a voice annotation: a 13-byte header in
// every segment, the property block in the first one only, then a chunk of
// the RIFF audio file. Offsets count from the first payload byte.
constexpr int FPXR_HEADER_SIZE = 13;
constexpr int FPXR_HEAD_PAYLOAD = 41;
constexpr int FPXR_MAX_CHUNK = 63900;
constexpr uint16_t FPXR_AUDIO_INDEX = 4;
constexpr int FPXR_TYPE_OFFSET = 6;
constexpr int FPXR_INDEX_OFFSET = 7;
constexpr int FPXR_AUDIO_TYPE = 2;
// Where a head segment has "RIFF" and the RIFF size field behind it.
constexpr int FPXR_RIFF_OFFSET = 41;
constexpr int FPXR_RIFF_SIZE_OFFSET = 45;
// A head is at least this long: it must hold the RIFF size field.
constexpr int FPXR_HEAD_MIN_SIZE = FPXR_RIFF_SIZE_OFFSET + 4;
// The RIFF size field leaves out "RIFF" and itself.
constexpr int RIFF_UNCOUNTED = 8;
// The index of no stream: a walk starts with it.
constexpr uint16_t FPXR_NO_INDEX = 0xFFFF;
// The JPEG marker code of the segments: APP2.
constexpr int32_t FPXR_MARKER = 0xE2;

// The header of an OLE property set stream, between the header and the data
// of a first segment.
constexpr unsigned char FPXR_PROPERTY_BLOCK[28] = {
    0xFE, 0xFF, 0x00, 0x00, 0x00, 0x04, 0x02, 0x00, 0x01, 0x01, 0x00, 0x10, 0xC0, 0x6F,
    0xD0, 0x11, 0xBD, 0x01, 0x00, 0x60, 0x97, 0x19, 0xA1, 0x80, 0x01, 0x00, 0x00, 0x00,
};

#endif
