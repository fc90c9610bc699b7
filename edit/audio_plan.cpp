#include "edit/audio_plan.h"

#include <algorithm>
#include <new>

#include "edit/fpxr_format.h"
#include "tree/document.h"
#include "tree/walk.h"

namespace {

constexpr int32_t MARKER_SOI = 0xD8;
constexpr int32_t MARKER_APP0 = 0xE0;
constexpr int32_t MARKER_APP1 = 0xE1;

}  // namespace

CMarker *PlanAudioChunks(int32_t fileSize)
{
    CNode *first = nullptr;
    CNode **link = &first;
    int32_t offset = 0;
    do {
        int32_t left = fileSize - offset;
        int32_t chunk = std::min(left, FPXR_MAX_CHUNK);
        CMarker *node = new (std::nothrow) CMarker(FPXR_MARKER, chunk, offset);
        if (node == nullptr) {
            DeleteTree(first);
            return nullptr;
        }
        node->m_audioChunk = 1;
        *link = node;
        link = &node->m_next;
        offset += chunk;
    } while (offset < fileSize);
    return static_cast<CMarker *>(first);
}

// Markers stand in the top-level chain only; a deeper search could meet a tag
// of the same number.
CNode *FindAudioPlace(CExifDoc *doc)
{
    CNode *place = FindInChain(doc->m_root, MARKER_APP1);
    if (place != nullptr) {
        while (place->m_next != nullptr && place->m_next->m_id == MARKER_APP1) place = place->m_next;
        return place;
    }
    place = FindInChain(doc->m_root, MARKER_APP0);
    if (place != nullptr) return place;
    return FindInChain(doc->m_root, MARKER_SOI);
}

void PlaceAudioChunks(CNode *place, CMarker *chunks)
{
    CNode *node = chunks;
    while (node != nullptr) {
        CNode *next = node->m_next;
        node->m_next = nullptr;
        InsertAfter(place, node);
        place = node;
        node = next;
    }
}
