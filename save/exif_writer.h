#ifndef ZEXIF_SAVE_EXIF_WRITER_H
#define ZEXIF_SAVE_EXIF_WRITER_H

#include <cstdint>

#include "save/entry_plan.h"
#include "save/kept_note.h"

class CNode;
class CStreamIO;

// Writes a TIFF structure from the tree, little-endian whatever the source
// was, with every offset assigned anew. Position 0 of m_out is the block's
// first byte. Layout: the header, then each IFD as entry count, entries and
// link, behind the link its data area: the out-of-line values in entry order
// (the arrays of a multi-strip image among them), its sub-IFDs in the order
// Exif, GPS, Interop, each laid out the same way, then its JPEG stream, then
// its strips. The next IFD follows the data area. No byte is padded, but for
// one exception: a maker note keeps the offset it had in the source, since
// many makers' notes count their own offsets from the block's header, and
// whatever would fall on it goes behind it. Every write is positioned and
// checked: a block that doesn't fit its stream fails instead of being
// clipped. A writer without a stream writes nothing and only measures.
class CExifWriter {
public:
    CExifWriter(CStreamIO *out, const BlockSource &source, int keepMakerNote = 1)
        : m_out(out), m_source(source), m_keepMakerNote(keepMakerNote) {}

    // The whole block of the NODE_TIFF_HEADER node header and the IFDs behind
    // it. An IFD left without entries is not written: a reader refuses an
    // IFD of none. Returns 1, or 0 on any failure.
    int WriteTiff(CNode *header);

    // One IFD (owner is an IFD node or a pointer tag), its table at the first
    // free place from *cursor on, its data area behind; *cursor moves behind
    // all of it. Sets *start on its entry count and *linkPos on its link,
    // which is written as 0. An owner without entries writes nothing: both
    // are -1. Returns 1, or 0 on any failure.
    int WriteIfd(CNode *owner, int64_t *cursor, int depth, int64_t *start, int64_t *linkPos);

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
    int PutTurnedNote(int64_t at, int64_t size);
    int64_t Take(int64_t *cursor, int64_t size);
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
    int m_keepMakerNote;
    KeptNote m_note;
    int m_bigEndianSource = 0;
    int64_t m_cursor = 0;  // where m_out stands
};

#endif
