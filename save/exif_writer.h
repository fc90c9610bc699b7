#ifndef ZEXIF_SAVE_EXIF_WRITER_H
#define ZEXIF_SAVE_EXIF_WRITER_H

#include <cstdint>

#include "save/entry_plan.h"

class CNode;
class CStreamIO;

// Writes a TIFF structure from the tree, little-endian whatever the source
// was, with every offset assigned anew. Position 0 of m_out is the block's
// first byte. Layout: the header, then each IFD as entry count, entries and
// link, behind the link its data area: the out-of-line values in entry order
// (the arrays of a multi-strip image among them), its sub-IFDs in the order
// Exif, GPS, Interop, each laid out the same way, then its JPEG stream, then
// its strips. The next IFD follows the data area. No byte is padded, and
// every write is positioned and checked: a block that doesn't fit its stream
// fails instead of being clipped.
class CExifWriter {
public:
    CExifWriter(CStreamIO *out, const BlockSource &source) : m_out(out), m_source(source) {}

    // The whole block of the NODE_TIFF_HEADER node header and the IFDs behind
    // it. An IFD left without entries is not written: a reader refuses an
    // IFD of none. Returns 1, or 0 on any failure.
    int WriteTiff(CNode *header);

    // One IFD (owner is an IFD node or a pointer tag) whose entry count goes
    // at `at`. Sets *end behind its data area and *linkPos on its link, which
    // is written as 0. An owner without entries writes nothing: *end is `at`
    // and *linkPos -1. Returns 1, or 0 on any failure.
    int WriteIfd(CNode *owner, int64_t at, int depth, int64_t *end, int64_t *linkPos);

    int64_t m_end = 0;  // behind the last byte written

private:
    // Where the entries stand that are patched once their data has a place.
    struct ChainSlots;

    int WriteHeader();
    int WriteNextIfd(int64_t linkPos, int64_t next);
    int WriteEntry(const ChainPlan &plan, const PlannedEntry &entry, int64_t pos, int64_t *dataPos,
                   ChainSlots *slots);
    int WriteImageEntry(CTag *tag, int32_t strips, int64_t pos, int64_t *dataPos, int64_t *arrayPos);
    int WriteSubIfd(CTag *pointer, int64_t entryPos, int depth, int64_t *dataPos);
    int WriteThumbnail(const ChainPlan &plan, const ChainSlots &slots, int64_t *dataPos);
    int WriteStrips(const ChainPlan &plan, const ChainSlots &slots, int64_t *dataPos);
    int WriteStripArray(int64_t entryPos, int64_t arrayPos, const uint32_t *values, int32_t count);

    int Put(int64_t pos, const void *data, int64_t size);
    int PutU16(int64_t pos, uint32_t value);
    int PutU32(int64_t pos, uint32_t value);
    int PutEntry(int64_t pos, int32_t tag, uint32_t type, uint32_t count, uint32_t slot);
    int CopyFromSource(int64_t pos, int64_t offset, int64_t size);
    int MoveTo(int64_t pos);

    CStreamIO *m_out;
    BlockSource m_source;
    int64_t m_cursor = 0;  // where m_out stands
};

#endif
