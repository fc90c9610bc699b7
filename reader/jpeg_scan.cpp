#include "reader/jpeg_scan.h"

#include <cstring>

#include "reader/reader.h"
#include "streams/byte_order.h"
#include "streams/stream.h"

namespace {

constexpr unsigned char MARKER_SOS = 0xDA;
constexpr unsigned char MARKER_APP1 = 0xE1;
constexpr unsigned char MARKER_APP2 = 0xE2;

int IsAppMarker(unsigned char code)
{
    return code >= 0xE0 && code <= 0xEF;
}

// Stuffed bytes, SOI and EOI carry no length field. The scan goes on behind
// an EOI: a later segment before SOS still counts.
int HasLength(unsigned char code)
{
    return code != 0x00 && code != 0xD8 && code != 0xD9;
}

void FillSegment(ReaderSegment *segment, const unsigned char *signature, int32_t length, int32_t payload)
{
    std::memset(segment->signature, 0, sizeof segment->signature);
    std::memcpy(segment->signature, signature, 4);
    segment->size = length - 2;
    segment->offset = payload;
}

void RecordAppSegment(CExifReader *reader, unsigned char code, const unsigned char *signature, int32_t length,
                      int32_t payload)
{
    if (code == MARKER_APP1 && std::memcmp(signature, "Exif", 4) == 0) {
        reader->m_hasExif = 1;
        FillSegment(&reader->m_exifSegment, signature, length, payload);
    } else if (code == MARKER_APP2 && std::memcmp(signature, "FPXR", 4) == 0 &&
               reader->m_fpxrCount < READER_MAX_FPXR_SEGMENTS) {
        FillSegment(&reader->m_fpxrSegments[reader->m_fpxrCount], signature, length, payload);
        reader->m_fpxrCount++;
    }
}

// Reads the length field and the signature, then goes to the end that the
// length states, whatever came. A length of 0 or 1 leads back onto the length
// field; the scan passes those bytes one at a time and moves on. 0 at the end
// of the stream.
int ScanAppSegment(CStreamIO *stream, CExifReader *reader, unsigned char code)
{
    int32_t start = stream->Tell();
    unsigned char head[6];
    uint32_t got = stream->Read(head, 6);
    if (got < 2) return 0;
    int32_t length = ReadU16(head, 1);
    if (got == 6) RecordAppSegment(reader, code, head + 2, length, start + 2);
    stream->Seek(0, start + length);
    return 1;
}

// 0 at the end of the stream or behind SOS.
int SkipSegment(CStreamIO *stream, unsigned char code)
{
    unsigned char length[2];
    if (stream->Read(length, 2) < 2) return 0;
    stream->Seek(1, int32_t(ReadU16(length, 1)) - 2);
    return code != MARKER_SOS;
}

}  // namespace

// One byte at a time outside segments; a read that gives nothing is the end,
// for file and memory streams alike.
void ScanJpegSegments(CStreamIO *stream, CExifReader *reader)
{
    unsigned char byte;
    while (stream->Read(&byte, 1) == 1) {
        if (byte != 0xFF) continue;
        unsigned char code;
        if (stream->Read(&code, 1) == 0) return;
        if (!HasLength(code)) continue;
        int more = IsAppMarker(code) ? ScanAppSegment(stream, reader, code) : SkipSegment(stream, code);
        if (!more) return;
    }
}
