#ifndef ZEXIF_TREE_DOCUMENT_H
#define ZEXIF_TREE_DOCUMENT_H

#include <cstdint>

#include "tree/node.h"

class CStreamIO;

// The document of the read-write family: the tree, the source stream and the
// shortcuts into the tree. It owns m_root and m_stream.
struct CExifDoc {
    CExifDoc() = default;
    CExifDoc(const CExifDoc &) = delete;
    CExifDoc &operator=(const CExifDoc &) = delete;
    ~CExifDoc();

    // The cursor: where the parse events and the editing code add nodes.
    int MoveTo(CNode *node);
    int MoveUp();
    int AddChild(CNode *node);
    int AddSibling(CNode *node);

    CNode *FindMarker(int32_t id);
    CNode *FindIfd(uint32_t index);
    int CountIfds();
    // A tag of the Exif IFD.
    CTag *FindExifTag(uint32_t tag);

    CNode *m_root = nullptr;
    CNode *m_cur = nullptr;
    CNode **m_childSlot = &m_root;
    CNode **m_nextSlot = &m_root;
    int32_t m_bigEndian = 0;
    CMarker *m_exifMarker = nullptr;
    CTag *m_exifIfdTag = nullptr;
    CTag *m_thumbTag = nullptr;
    const void *m_path = nullptr;
    const void *m_audioPath = nullptr;
    CStreamIO *m_stream = nullptr;
    CStreamIO *m_audioStream = nullptr;
    int32_t m_format = 0;
    int32_t m_hasExif = 0;
    int32_t m_thumbLoaded = 0;
    int32_t m_hasThumb = 0;
    uint32_t m_thumbType = 0;
    int32_t m_audioState = 0;
    int32_t m_hasAudio = 0;
    int32_t m_seenExifIfd = 0;
    int32_t m_seenGpsIfd = 0;
    int32_t m_seenInteropIfd = 0;
    int32_t m_stripThumb = 0;
};

#endif
