#include "save/jpeg_save.h"

#include "platform/failure_reason.h"
#include "save/audio_segments.h"
#include "save/checked_io.h"
#include "save/exif_rebuild.h"
#include "streams/byte_order.h"
#include "tree/document.h"
#include "zexif.h"

namespace {

constexpr int32_t MARKER_SOI = 0xD8;
constexpr int32_t MARKER_EOI = 0xD9;
constexpr int32_t MARKER_APP1 = 0xE1;
constexpr int32_t LENGTH_FIELD_SIZE = 2;

int IsMarkerCode(int32_t id)
{
    return id > 0 && id <= 0xFF;
}

int WriteSegmentHead(CStreamIO *out, int32_t id, int32_t size)
{
    if (!IsMarkerCode(id) || size < 0) return 0;
    if (size > MAX_SEGMENT_PAYLOAD) return NoteFailure(ZEXIF_ERROR_LIMIT);
    unsigned char prefix[4] = {0xFF, static_cast<unsigned char>(id)};
    WriteU16BE(prefix + 2, static_cast<uint16_t>(size + LENGTH_FIELD_SIZE));
    return WriteAll(out, prefix, sizeof prefix);
}

// A payload still on file is copied from the source a chunk at a time and
// left there, so that a save of any size holds little of the file; one that
// can't all be read fails the save rather than be written short.
int WritePayload(CExifDoc *doc, const CMarker *marker, CStreamIO *out)
{
    if (marker->m_state == BLOCK_ON_FILE) return CopyBytes(doc->m_stream, marker->m_offset, marker->m_size, out);
    return (marker->m_size == 0 || marker->m_data != nullptr) && WriteAll(out, marker->m_data, marker->m_size);
}

int WriteStandalone(CStreamIO *out, int32_t id)
{
    unsigned char marker[2] = {0xFF, static_cast<unsigned char>(id)};
    return WriteAll(out, marker, sizeof marker);
}

int WriteRebuiltExif(CExifDoc *doc, CMarker *marker, CStreamIO *out)
{
    unsigned char *payload = nullptr;
    int32_t size = 0;
    if (!RebuildExifMarker(doc, marker, &payload, &size)) return 0;
    int ok = WriteSegmentHead(out, MARKER_APP1, size) && WriteAll(out, payload, size);
    delete[] payload;
    return ok;
}

int WriteMarker(CExifDoc *doc, CMarker *marker, CStreamIO *out, int *firstAudio)
{
    if (marker->m_id == MARKER_SOI || marker->m_id == MARKER_EOI) return WriteStandalone(out, marker->m_id);
    if (marker->m_audioChunk) return WriteAudioSegment(doc, marker, out, firstAudio);
    if (marker->m_id == MARKER_APP1 && BlockHeaderOf(marker) != nullptr) return WriteRebuiltExif(doc, marker, out);
    if (marker->m_id == MARKER_SCAN_DATA) return WritePayload(doc, marker, out);
    return WriteSegmentHead(out, marker->m_id, marker->m_size) && WritePayload(doc, marker, out);
}

}  // namespace

int SaveJpeg(CExifDoc *doc, CStreamIO *out)
{
    int firstAudio = 1;
    for (CNode *node = doc->m_root; node != nullptr; node = node->m_next) {
        CMarker *marker = dynamic_cast<CMarker *>(node);
        if (marker == nullptr || !WriteMarker(doc, marker, out, &firstAudio)) return 0;
    }
    return 1;
}
