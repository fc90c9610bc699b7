#include "edit/audio_walk.h"

#include <algorithm>

#include "streams/stream.h"
#include "tree/document.h"

namespace {

// Load fills what the file doesn't hold with zeros; those bytes must not pass
// for audio.
int32_t BytesOnFile(CStreamIO *stream, const CMarker *marker, int32_t size)
{
    if (stream == nullptr) return size;
    stream->Seek(2, 0);
    int64_t available = int64_t(stream->Tell()) - marker->m_offset;
    return static_cast<int32_t>(std::clamp<int64_t>(available, 0, size));
}

}  // namespace

int IsPlannedSegment(const CNode *node)
{
    const CMarker *marker = dynamic_cast<const CMarker *>(node);
    return marker != nullptr && marker->m_id == FPXR_MARKER && marker->m_audioChunk != 0;
}

CMarker *AsSourceSegment(CNode *node)
{
    if (node == nullptr || node->m_id != FPXR_MARKER) return nullptr;
    CMarker *marker = dynamic_cast<CMarker *>(node);
    return marker != nullptr && marker->m_audioChunk == 0 ? marker : nullptr;
}

CMarker *FirstSourceSegment(CExifDoc *doc)
{
    for (CNode *node = doc->m_root; node != nullptr; node = node->m_next) {
        if (CMarker *marker = AsSourceSegment(node)) return marker;
    }
    return nullptr;
}

CMarker *NextSourceSegment(CMarker *marker)
{
    for (CNode *node = marker->m_next; node != nullptr; node = node->m_next) {
        if (CMarker *next = AsSourceSegment(node)) return next;
    }
    return nullptr;
}

int LoadSegment(CExifDoc *doc, CMarker *marker, FpxrSegment *segment)
{
    unsigned char *data = nullptr;
    int32_t size = 0;
    if (!marker->Load(doc->m_stream, &data, &size) || data == nullptr) return 0;
    segment->m_data = data;
    segment->m_size = BytesOnFile(doc->m_stream, marker, size);
    return 1;
}
