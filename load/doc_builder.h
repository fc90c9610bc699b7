#ifndef ZEXIF_LOAD_DOC_BUILDER_H
#define ZEXIF_LOAD_DOC_BUILDER_H

#include <cstdint>

#include "load/tiff_types.h"

struct CExifDoc;

// Turns parse events into nodes at the document's cursor and keeps the
// document's shortcuts and flags up to date. Lives on the stack of one parse.
// Every event returns 1, or 0 when a node can't be allocated.
class CDocBuilder {
public:
    explicit CDocBuilder(CExifDoc *doc) : m_doc(doc) {}

    int OnMarker(int32_t id, int32_t size, int32_t offset, const unsigned char *signature);
    int OnTiffHeader(const unsigned char *bytes);
    int OnIfdStart(uint32_t index);
    int OnEntryCount(uint32_t count);
    int OnTag(const IfdEntry &entry);
    int OnTagData(const IfdEntry &entry, const unsigned char *bytes);
    int OnNextIfd(uint32_t offset);
    int OnIfdEnd();

    CExifDoc *m_doc;
    // Bytes of the stream the TIFF block is read from, counted from its start.
    int64_t m_streamSize = 0;
    // What tag values may still allocate in this parse; -1 until the first
    // TIFF block sets it from the size of its stream.
    int64_t m_valueBudget = -1;
};

#endif
