#ifndef ZEXIF_SAVE_KEPT_NOTE_H
#define ZEXIF_SAVE_KEPT_NOTE_H

#include <cstdint>

class CNode;
class CTag;

// Many makers count the offsets inside their note from the block's header,
// and some reach past its end into the values around it: the note keeps its
// meaning only where it keeps its place and its surroundings. So a rewrite
// keeps the stretch of the source from the note on, up to the next IFD,
// link, thumbnail or strip the source holds there or as far as the note's
// own values reach, whichever is further, byte for byte; the values that lie
// in that stretch stay in it, and all else goes around it.
struct KeptNote {
    const CTag *m_tag = nullptr;  // null: no stretch is kept
    int64_t m_offset = 0;         // where the stretch starts, in source and output alike
    int64_t m_size = 0;
};

// The stretch of the maker note of the block behind header, where the note
// still holds the source's bytes and the offset a load left in its entry (a
// value set anew has none); it ends at sourceSize at the latest. Returns 1
// with *kept filled, or 0 for none.
int FindKeptNote(CNode *header, int64_t sourceSize, KeptNote *kept);

// 1 when the tag's out-of-line value lies wholly in the kept stretch, where
// the source holds it.
int IsKeptInPlace(const KeptNote &kept, const CTag *tag);

// A note that opens with an IFD (behind a few bytes of signature at most)
// follows the byte order of its block. From a big-endian block, the IFD's
// count, entries and link, and the values it holds inside the note, are
// turned little-endian in note, a copy of the note's bytes that stands at
// offset noteAt, as the block that takes it is little-endian.
void TurnNoteLittleEndian(unsigned char *note, int64_t size, int64_t noteAt);

#endif
