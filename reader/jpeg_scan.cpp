#include "reader/jpeg_scan.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "reader/cached_file.h"
#include "reader/reader.h"
#include "streams/byte_order.h"

namespace {

constexpr unsigned char MARKER_SOS = 0xDA;
constexpr unsigned char MARKER_APP1 = 0xE1;
constexpr unsigned char MARKER_APP2 = 0xE2;

// FPXR entries the table has room for when the first segment comes.
constexpr int32_t FPXR_TABLE_START = 16;

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

// The table starts small and doubles up to its limit; 0 when no memory.
int MakeRoomForFpxr(CExifReader *reader)
{
    if (reader->m_fpxrCount < reader->m_fpxrCapacity) return 1;
    int32_t capacity = reader->m_fpxrCapacity == 0 ? FPXR_TABLE_START : reader->m_fpxrCapacity * 2;
    capacity = std::min(capacity, READER_MAX_FPXR_SEGMENTS);
    ReaderSegment *table = new (std::nothrow) ReaderSegment[capacity];
    if (table == nullptr) return 0;
    if (reader->m_fpxrCount > 0) {
        std::memcpy(table, reader->m_fpxrSegments, sizeof(ReaderSegment) * static_cast<uint32_t>(reader->m_fpxrCount));
    }
    delete[] reader->m_fpxrSegments;
    reader->m_fpxrSegments = table;
    reader->m_fpxrCapacity = capacity;
    return 1;
}

// 0 when the FPXR table can't grow.
int RecordAppSegment(CExifReader *reader, unsigned char code, const unsigned char *signature, int32_t length,
                     int32_t payload)
{
    if (code == MARKER_APP1 && std::memcmp(signature, "Exif", 4) == 0) {
        reader->m_hasExif = 1;
        FillSegment(&reader->m_exifSegment, signature, length, payload);
    } else if (code == MARKER_APP2 && std::memcmp(signature, "FPXR", 4) == 0 &&
               reader->m_fpxrCount < READER_MAX_FPXR_SEGMENTS) {
        if (!MakeRoomForFpxr(reader)) return 0;
        FillSegment(&reader->m_fpxrSegments[reader->m_fpxrCount], signature, length, payload);
        reader->m_fpxrCount++;
    }
    return 1;
}

enum ScanStep { SCAN_GOES_ON, SCAN_ENDS, SCAN_OUT_OF_MEMORY };

// Reads the length field and what may be a signature, then goes to the end
// that the length states, whatever came. A length of 0 or 1 leads back onto
// the length field; the scan passes those bytes one at a time and moves on.
// The scan ends at the end of the file or at SOS.
ScanStep ScanSegment(CCachedFileObj *file, CExifReader *reader, unsigned char code)
{
    int32_t start = file->Tell();
    unsigned char head[6];
    uint32_t got = file->Read(head, 6);
    if (got < 2 || code == MARKER_SOS) return SCAN_ENDS;
    int32_t length = ReadU16(head, 1);
    if (got == 6 && !RecordAppSegment(reader, code, head + 2, length, start + 2)) return SCAN_OUT_OF_MEMORY;
    file->Seek(0, start + length);
    return SCAN_GOES_ON;
}

}  // namespace

// One byte at a time outside segments, which costs little on the file's head;
// a read that gives nothing is the end.
int ScanJpegSegments(CCachedFileObj *file, CExifReader *reader)
{
    unsigned char byte;
    while (file->Read(&byte, 1) == 1) {
        if (byte != 0xFF) continue;
        unsigned char code;
        if (file->Read(&code, 1) == 0) return 1;
        if (!HasLength(code)) continue;
        ScanStep step = ScanSegment(file, reader, code);
        if (step != SCAN_GOES_ON) return step == SCAN_ENDS;
    }
    return 1;
}
