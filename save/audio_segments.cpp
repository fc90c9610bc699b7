#include "save/audio_segments.h"

#include <cstring>

#include "edit/fpxr_format.h"
#include "save/checked_io.h"
#include "save/exif_rebuild.h"
#include "streams/byte_order.h"
#include "tree/document.h"

namespace {

constexpr int32_t LENGTH_FIELD_SIZE = 2;
constexpr int32_t OFFSET_FIELD = 9;

void MakeHeader(unsigned char *header, int32_t chunkOffset)
{
    std::memset(header, 0, FPXR_HEADER_SIZE);
    std::memcpy(header, "FPXR", 4);
    header[FPXR_TYPE_OFFSET] = FPXR_AUDIO_TYPE;
    WriteU16BE(header + FPXR_INDEX_OFFSET, FPXR_AUDIO_INDEX);
    uint32_t offset = static_cast<uint32_t>(chunkOffset);
    WriteU16BE(header + OFFSET_FIELD, uint16_t(offset >> 16));
    WriteU16BE(header + OFFSET_FIELD + 2, uint16_t(offset));
}

}  // namespace

int HasPlannedAudio(CExifDoc *doc)
{
    for (CNode *node = doc->m_root; node != nullptr; node = node->m_next) {
        const CMarker *marker = dynamic_cast<const CMarker *>(node);
        if (marker != nullptr && marker->m_id == FPXR_MARKER && marker->m_audioChunk) return 1;
    }
    return 0;
}

int WriteAudioSegment(CExifDoc *doc, const CMarker *chunk, CStreamIO *out, int *first)
{
    int32_t head = *first ? FPXR_HEAD_PAYLOAD : FPXR_HEADER_SIZE;
    // An audio file of no bytes would give a head without "RIFF", which no
    // reader takes for audio: that is no annotation to write.
    if (chunk->m_size < 1 || chunk->m_offset < 0 || chunk->m_size > MAX_SEGMENT_PAYLOAD - head) return 0;
    unsigned char prefix[2 + LENGTH_FIELD_SIZE + FPXR_HEADER_SIZE] = {0xFF, FPXR_MARKER};
    WriteU16BE(prefix + 2, static_cast<uint16_t>(chunk->m_size + head + LENGTH_FIELD_SIZE));
    MakeHeader(prefix + 2 + LENGTH_FIELD_SIZE, chunk->m_offset);
    if (!WriteAll(out, prefix, sizeof prefix)) return 0;
    if (*first && !WriteAll(out, FPXR_PROPERTY_BLOCK, sizeof FPXR_PROPERTY_BLOCK)) return 0;
    *first = 0;
    return CopyBytes(doc->m_audioStream, chunk->m_offset, chunk->m_size, out);
}
