#include "save/kept_note.h"

#include <algorithm>

#include "load/tiff_types.h"
#include "streams/byte_order.h"
#include "save/entry_plan.h"
#include "save/value_layout.h"
#include "tree/node.h"

namespace {

constexpr int32_t TAG_MAKER_NOTE = 37500;
constexpr int64_t HEADER_SIZE = 8;
constexpr int64_t ENTRY_SIZE = 12;
// Where an IFD may open a note: at its start or behind a signature.
constexpr int64_t NOTE_IFD_STARTS[] = {0, 6, 8, 10, 12, 14, 18};
constexpr uint32_t MOST_NOTE_ENTRIES = 512;

// The source offset of something the writer lays out anew, where the tree
// knows one: a sub-IFD, a link, a thumbnail, a strip.
int64_t MovedOffsetOf(const CNode *node)
{
    const CTag *tag = dynamic_cast<const CTag *>(node);
    if (tag == nullptr) return node->m_id == NODE_NEXT_IFD ? int64_t(node->m_value) : -1;
    if (tag->m_kind != KIND_IFD_CONTENT) return tag->m_offset;
    if (tag->m_child != nullptr || tag->m_id == TAG_STREAM_OFFSET) return tag->m_value;
    return -1;
}

// The nearest of those at or behind from, in a chain and all below it.
void NearestMoved(const CNode *first, int64_t from, int64_t *next)
{
    for (const CNode *node = first; node != nullptr; node = node->m_next) {
        int64_t offset = MovedOffsetOf(node);
        if (offset >= from) *next = std::min(*next, offset);
        NearestMoved(node->m_child, from, next);
    }
}

// A value that a load left with its source offset and its bytes.
int HoldsSourceValue(const CTag *tag, int64_t size)
{
    return size > 0 && tag->m_value >= HEADER_SIZE && tag->m_data != nullptr && tag->m_size >= size;
}

// Where the note's IFD opens, read in its block's byte order: the first
// place at which a count stands whose entries all fit the note and are all
// of a known type; -1 for none.
int64_t FindNoteIfd(const unsigned char *note, int64_t size, int bigEndian)
{
    for (int64_t at : NOTE_IFD_STARTS) {
        if (at + 2 > size) break;
        uint32_t count = ReadU16(note + at, bigEndian);
        if (count == 0 || count > MOST_NOTE_ENTRIES || at + 2 + ENTRY_SIZE * count > size) continue;
        int known = 1;
        for (uint32_t i = 0; known && i < count; i++) {
            known = TiffTypeSize(ReadU16(note + at + 2 + ENTRY_SIZE * i + 2, bigEndian)) != 0;
        }
        if (known) return at;
    }
    return -1;
}

// How far the values of the note's IFD reach, where its offsets count from
// the block's header: some notes keep values behind their own end. Only
// values behind the note's start and within the source count; 0 for a note
// without such an IFD.
int64_t NoteReach(const CTag *note, int64_t size, int bigEndian, int64_t sourceSize)
{
    int64_t at = FindNoteIfd(note->m_data, size, bigEndian);
    int64_t reach = 0;
    for (uint32_t i = 0; at >= 0 && i < ReadU16(note->m_data + at, bigEndian); i++) {
        const unsigned char *entry = note->m_data + at + 2 + ENTRY_SIZE * i;
        uint32_t type = ReadU16(entry + 2, bigEndian);
        int64_t bytes = EntryDataSize(type, ReadU32(entry + 4, bigEndian));
        int64_t offset = ReadU32(entry + 8, bigEndian);
        if (bytes > 4 && offset >= note->m_value && offset + bytes <= sourceSize) reach = std::max(reach, offset + bytes);
    }
    return reach;
}

// Reverses every whole unit of a value's bytes: its 16- or 32-bit numbers,
// each half of an 8-byte one.
void TurnValue(unsigned char *bytes, int64_t size, uint32_t type)
{
    int unit = TiffTypeSize(type) == 2 ? 2 : TiffTypeSize(type) >= 4 ? 4 : 1;
    for (int64_t i = 0; i + unit <= size; i += unit) std::reverse(bytes + i, bytes + i + unit);
}

void TurnEntry(unsigned char *note, int64_t size, int64_t noteAt, unsigned char *entry)
{
    uint32_t type = ReadU16(entry + 2, 1);
    int64_t bytes = EntryDataSize(type, ReadU32(entry + 4, 1));
    uint32_t offset = ReadU32(entry + 8, 1);
    TurnValue(entry, 2, TIFF_SHORT);
    TurnValue(entry + 2, 2, TIFF_SHORT);
    TurnValue(entry + 4, 4, TIFF_LONG);
    if (bytes <= 4 && TiffTypeSize(type) != 8) {
        TurnValue(entry + 8, bytes, type);
        return;
    }
    TurnValue(entry + 8, 4, TIFF_LONG);
    int64_t at = int64_t(offset) - noteAt;
    if (at >= 0 && at + bytes <= size) TurnValue(note + at, bytes, type);
}

}  // namespace

void TurnNoteLittleEndian(unsigned char *note, int64_t size, int64_t noteAt)
{
    int64_t at = FindNoteIfd(note, size, 1);
    if (at < 0) return;
    uint32_t count = ReadU16(note + at, 1);
    TurnValue(note + at, 2, TIFF_SHORT);
    for (uint32_t i = 0; i < count; i++) TurnEntry(note, size, noteAt, note + at + 2 + ENTRY_SIZE * i);
    int64_t link = at + 2 + ENTRY_SIZE * count;
    if (link + 4 <= size) TurnValue(note + link, 4, TIFF_LONG);
}

int FindKeptNote(CNode *header, int64_t sourceSize, KeptNote *kept)
{
    int bigEndian = header->m_value == 1;
    for (CNode *ifd : IfdsOfBlock(header)) {
        CTag *exif = FindChainEntry(ifd, TAG_EXIF_IFD);
        CTag *note = exif != nullptr ? FindChainEntry(exif, TAG_MAKER_NOTE) : nullptr;
        int64_t size = note != nullptr ? OutOfLineSize(note) : 0;
        if (note == nullptr || !HoldsSourceValue(note, size)) continue;
        int64_t end = note->m_value + size;
        int64_t next = std::max(sourceSize, end);
        NearestMoved(header, end, &next);
        next = std::max(next, NoteReach(note, size, bigEndian, sourceSize));
        kept->m_tag = note;
        kept->m_offset = note->m_value;
        kept->m_size = next - note->m_value;
        return 1;
    }
    return 0;
}

int IsKeptInPlace(const KeptNote &kept, const CTag *tag)
{
    int64_t size = OutOfLineSize(tag);
    return kept.m_tag != nullptr && HoldsSourceValue(tag, size) && tag->m_value >= kept.m_offset &&
           tag->m_value + size <= kept.m_offset + kept.m_size;
}
