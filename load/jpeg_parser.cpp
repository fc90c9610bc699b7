#include "load/jpeg_parser.h"

#include <cstring>

#include "load/doc_builder.h"
#include "load/tiff_parser.h"
#include "streams/byte_order.h"
#include "streams/stream.h"
#include "tree/document.h"

namespace {

constexpr int32_t CODE_SOI = 216;
constexpr int32_t CODE_EOI = 217;
constexpr int32_t CODE_SOS = 218;
// "Exif", two bytes, and at least a TIFF header of 8 bytes.
constexpr int32_t SMALLEST_EXIF_PAYLOAD = 14;

// The bytes outside segments, counted as one run until an EOI or the end.
struct ScanRun {
    int32_t length = 0;
    int32_t start = 0;
    int scanStarted = 0;
    int eoiSeen = 0;

    void Count(CStreamIO *stream, int32_t bytes)
    {
        CountFrom(stream->Tell() - bytes, bytes);
    }

    void CountFrom(int32_t position, int32_t bytes)
    {
        if (length == 0) start = position;
        length += bytes;
    }

    int Flush(CDocBuilder *builder)
    {
        if (length <= 0) return 1;
        int ok = builder->OnMarker(MARKER_SCAN_DATA, length, start, nullptr);
        length = 0;
        return ok;
    }
};

int IsDataCode(int32_t code)
{
    return code == 0 || (code >= 208 && code <= 215) || code == 220 || code == 222 || code == 223;
}

int IsAppCode(int32_t code)
{
    return code >= 224 && code <= 239;
}

// The result of a step of the walk: go on, end the walk, or fail the load.
enum Step { STEP_ON, STEP_END, STEP_FAIL };

int ReadLength(CStreamIO *stream, uint16_t *length)
{
    unsigned char raw[2];
    if (stream->Read(raw, 2) != 2) return 0;
    *length = ReadU16(raw, 1);
    return 1;
}

Step PlainSegment(int32_t code, CStreamIO *stream, CDocBuilder *builder)
{
    uint16_t length;
    if (!ReadLength(stream, &length)) return STEP_END;
    if (!builder->OnMarker(code, length - 2, stream->Tell(), nullptr)) return STEP_FAIL;
    stream->Seek(1, length - 2);
    return STEP_ON;
}

// Parses the TIFF block of an Exif APP1 through a view whose position 0 is
// the block's first byte, so the block's offsets work unchanged.
Step ParseExifBlock(uint16_t length, CStreamIO *stream, CDocBuilder *builder)
{
    if (length - 2 < SMALLEST_EXIF_PAYLOAD) return STEP_ON;
    stream->Seek(1, 2);
    CStreamIO *hook = nullptr;
    if (!CreateHookStream(&hook, stream, length)) return STEP_FAIL;
    int ok = ParseTiff(hook, builder);
    builder->m_doc->m_hasExif = 1;
    DeleteStream(hook);
    return ok ? STEP_ON : STEP_FAIL;
}

Step AppSegment(int32_t code, CStreamIO *stream, CDocBuilder *builder)
{
    int32_t start = stream->Tell();
    uint16_t length;
    unsigned char signature[4];
    if (!ReadLength(stream, &length) || stream->Read(signature, 4) != 4) return STEP_END;
    if (!builder->OnMarker(code, length - 2, stream->Tell() - 4, signature)) return STEP_FAIL;
    if (code == 225 && std::memcmp(signature, "Exif", 4) == 0) {
        Step step = ParseExifBlock(length, stream, builder);
        if (step != STEP_ON) return step;
    }
    stream->Seek(0, start + length);
    return STEP_ON;
}

Step Eoi(ScanRun &run, CDocBuilder *builder)
{
    if (!run.Flush(builder) || !builder->OnMarker(CODE_EOI, 0, 0, nullptr)) return STEP_FAIL;
    run.eoiSeen = 1;
    return STEP_ON;
}

int IsCountedAsData(int32_t code, const ScanRun &run)
{
    if (code == CODE_SOI || code == CODE_EOI || IsAppCode(code)) return 0;
    return IsDataCode(code) || run.scanStarted;
}

// A node's bytes are one stretch of the file, since the save copies them
// from the offset on: the bytes counted so far become a node of their own
// before a segment that interrupts them.
Step ActOnCode(int32_t code, ScanRun &run, CStreamIO *stream, CDocBuilder *builder)
{
    if (IsCountedAsData(code, run)) {
        run.Count(stream, 2);
        return STEP_ON;
    }
    if (code == CODE_EOI) return Eoi(run, builder);
    if (!run.Flush(builder)) return STEP_FAIL;
    if (code == CODE_SOI) return builder->OnMarker(CODE_SOI, 0, 0, nullptr) ? STEP_ON : STEP_FAIL;
    if (IsAppCode(code)) return AppSegment(code, stream, builder);
    if (code == CODE_SOS) run.scanStarted = 1;
    return PlainSegment(code, stream, builder);
}

// Counts the data that the stream holds in memory from its position on, up
// to an FF that isn't followed by a data code there, and steps over it: a
// scan of many megabytes costs a search for FF per stretch instead of a read
// per byte. The bytes counted, pairs included, are those the byte-by-byte
// walk would count; an FF at the end of what is held is left to that walk,
// which reads its code from the next stretch.
void CountHeldData(CStreamIO *stream, ScanRun &run)
{
    const unsigned char *bytes = nullptr;
    const uint32_t held = stream->Buffered(&bytes);
    uint32_t counted = 0;
    while (counted < held) {
        const void *ff = std::memchr(bytes + counted, 0xFF, held - counted);
        if (ff == nullptr) {
            counted = held;
            break;
        }
        const uint32_t at = static_cast<uint32_t>(static_cast<const unsigned char *>(ff) - bytes);
        if (at + 1 == held || !IsCountedAsData(bytes[at + 1], run)) {
            counted = at;
            break;
        }
        counted = at + 2;
    }
    if (counted == 0) return;
    run.CountFrom(stream->Tell(), static_cast<int32_t>(counted));
    stream->Seek(1, static_cast<int32_t>(counted));
}

}  // namespace

int ParseJpeg(CStreamIO *stream, CDocBuilder *builder)
{
    ScanRun run;
    unsigned char byte;
    for (;;) {
        CountHeldData(stream, run);
        if (stream->Read(&byte, 1) != 1) break;
        Step step = STEP_ON;
        if (byte != 0xFF) {
            run.Count(stream, 1);
        } else if (stream->Read(&byte, 1) == 1) {
            step = ActOnCode(byte, run, stream, builder);
        } else {
            step = STEP_END;
        }
        if (step == STEP_FAIL) return 0;
        if (step == STEP_END || stream->IsEof()) break;
    }
    if (!run.eoiSeen && !run.Flush(builder)) return 0;
    return 1;
}
