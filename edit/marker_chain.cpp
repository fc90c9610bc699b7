#include "edit/marker_chain.h"

#include <cstdlib>
#include <cstring>
#include <new>

#include "platform/failure_reason.h"
#include "save/exif_rebuild.h"
#include "tree/document.h"
#include "tree/walk.h"
#include "zexif.h"

namespace {

// 1 when node is one of the chain's nodes or lies below one of them.
int LiesIn(const CNode *node, const CNode *chain)
{
    for (const CNode *up = node; up != nullptr; up = up->m_parent) {
        for (const CNode *link = chain; link != nullptr; link = link->m_next) {
            if (up == link) return 1;
        }
    }
    return 0;
}

}  // namespace

CMarker *FindTopLevelMarker(CExifDoc *doc, int32_t code)
{
    return dynamic_cast<CMarker *>(FindInChain(doc->m_root, code));
}

CMarker *HoldingMarker(CNode *node)
{
    while (node->m_parent != nullptr) node = node->m_parent;
    return dynamic_cast<CMarker *>(node);
}

CNode *FindFirstBlockHeader(CExifDoc *doc)
{
    for (CNode *node = doc->m_root; node != nullptr; node = node->m_next) {
        if (node->m_id != MARKER_APP1) continue;
        CNode *header = BlockHeaderOf(node);
        if (header != nullptr) return header;
    }
    return nullptr;
}

CNode *FindApp1Place(CExifDoc *doc)
{
    CNode *place = FindTopLevelMarker(doc, MARKER_APP0);
    return place != nullptr ? place : FindTopLevelMarker(doc, MARKER_SOI);
}

CMarker *MakeExifMarker(int32_t size)
{
    char *signature = static_cast<char *>(std::calloc(8, 1));
    CMarker *marker = signature != nullptr ? new (std::nothrow) CMarker(MARKER_APP1, size, 0) : nullptr;
    if (marker == nullptr) {
        std::free(signature);
        NoteFailure(ZEXIF_ERROR_MEMORY);
        return nullptr;
    }
    std::memcpy(signature, "Exif", 4);
    marker->m_sig = signature;
    return marker;
}

void DestroyDetached(CExifDoc *doc, CNode *chain)
{
    if (doc->m_exifMarker != nullptr && LiesIn(doc->m_exifMarker, chain)) doc->m_exifMarker = nullptr;
    if (doc->m_exifIfdTag != nullptr && LiesIn(doc->m_exifIfdTag, chain)) doc->m_exifIfdTag = nullptr;
    if (doc->m_thumbTag != nullptr && LiesIn(doc->m_thumbTag, chain)) doc->m_thumbTag = nullptr;
    if (doc->m_cur != nullptr && LiesIn(doc->m_cur, chain)) {
        if (doc->m_root != nullptr) {
            doc->MoveTo(doc->m_root);
        } else {
            doc->m_cur = nullptr;
            doc->MoveUp();
        }
    }
    DeleteTree(chain);
}

void RemoveTopLevelNode(CExifDoc *doc, CNode *node)
{
    CNode **link = &doc->m_root;
    while (*link != nullptr && *link != node) link = &(*link)->m_next;
    if (*link == nullptr) return;
    *link = node->m_next;
    node->m_next = nullptr;
    DestroyDetached(doc, node);
}
