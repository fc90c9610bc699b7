#include "save/exif_writer.h"

#include <cstddef>
#include <cstring>
#include <new>
#include <utility>
#include <vector>

#include "load/tiff_types.h"
#include "platform/failure_reason.h"
#include "save/checked_io.h"
#include "save/kept_note.h"
#include "save/value_layout.h"
#include "tree/node.h"
#include "zexif.h"

namespace {

constexpr int64_t HEADER_SIZE = 8;
constexpr int64_t FIRST_IFD_FIELD = 4;
constexpr int64_t ENTRY_SIZE = 12;
constexpr int64_t COUNT_SIZE = 2;
constexpr int64_t LINK_SIZE = 4;
constexpr int64_t SLOT_OFFSET = 8;
constexpr uint16_t TIFF_MAGIC = 42;
constexpr uint32_t HEADER_BIG_ENDIAN = 1;

void StoreU16(unsigned char *p, uint32_t v)
{
    p[0] = uint8_t(v);
    p[1] = uint8_t(v >> 8);
}

void StoreU32(unsigned char *p, uint32_t v)
{
    for (int i = 0; i < 4; i++) p[i] = uint8_t(v >> (8 * i));
}

}  // namespace

struct CExifWriter::ChainSlots {
    std::vector<std::pair<CTag *, int64_t>> m_subIfds;
    int64_t m_stream = -1;
    int64_t m_offsetsEntry = -1;
    int64_t m_offsetsArray = -1;
    int64_t m_countsEntry = -1;
    int64_t m_countsArray = -1;
};

// The header's first-IFD field is linked like an IFD's link, so a block
// whose IFDs are all empty says it has none.
int CExifWriter::WriteTiff(CNode *header)
{
    m_bigEndianSource = header->m_value == HEADER_BIG_ENDIAN;
    if (m_keepMakerNote && FindKeptNote(header, m_source.m_size, &m_note) &&
        !CopyFromSource(m_note.m_offset, m_note.m_offset, m_note.m_size)) {
        return 0;
    }
    if (!WriteHeader()) return 0;
    int64_t link = FIRST_IFD_FIELD;
    int64_t cursor = HEADER_SIZE;
    for (CNode *ifd : IfdsOfBlock(header)) {
        int64_t start = -1;
        int64_t linkPos = -1;
        if (!WriteIfd(ifd, &cursor, 0, &start, &linkPos)) return 0;
        if (start < 0) continue;
        if (!WriteNextIfd(link, start)) return 0;
        link = linkPos;
    }
    return 1;
}

int CExifWriter::WriteIfd(CNode *owner, int64_t *cursor, int depth, int64_t *start, int64_t *linkPos)
{
    ChainPlan plan;
    if (!PlanChain(owner, m_source, depth, &plan)) return 0;
    *start = -1;
    *linkPos = -1;
    if (plan.m_entries.empty()) return 1;
    int64_t count = static_cast<int64_t>(plan.m_entries.size());
    int64_t at = Take(cursor, COUNT_SIZE + ENTRY_SIZE * count + LINK_SIZE);
    int64_t link = at + COUNT_SIZE + ENTRY_SIZE * count;
    int64_t *dataPos = cursor;
    ChainSlots slots;
    if (!PutU16(at, static_cast<uint32_t>(count))) return 0;
    for (int64_t k = 0; k < count; k++) {
        int64_t pos = at + COUNT_SIZE + ENTRY_SIZE * k;
        if (!WriteEntry(plan, plan.m_entries[static_cast<size_t>(k)], pos, dataPos, &slots)) return 0;
    }
    if (!WriteNextIfd(link, 0)) return 0;
    for (CTag *pointer : plan.m_subIfds) {
        for (const auto &slot : slots.m_subIfds) {
            if (slot.first == pointer && !WriteSubIfd(pointer, slot.second, depth, dataPos)) return 0;
        }
    }
    if (!WriteThumbnail(plan, slots, dataPos) || !WriteStrips(plan, slots, dataPos)) return 0;
    *start = at;
    *linkPos = link;
    return 1;
}

// The first place of size bytes from *cursor on that keeps off the maker
// note; *cursor moves behind it.
int64_t CExifWriter::Take(int64_t *cursor, int64_t size)
{
    int64_t at = *cursor;
    int64_t noteEnd = m_note.m_offset + m_note.m_size;
    if (m_note.m_tag != nullptr && size > 0 && at < noteEnd && at + size > m_note.m_offset) at = noteEnd;
    *cursor = at + size;
    return at;
}

int CExifWriter::WriteHeader()
{
    unsigned char header[HEADER_SIZE] = {'I', 'I'};
    StoreU16(header + 2, TIFF_MAGIC);
    return Put(0, header, HEADER_SIZE);
}

int CExifWriter::WriteNextIfd(int64_t linkPos, int64_t next)
{
    return PutU32(linkPos, static_cast<uint32_t>(next));
}

// Entries whose data is placed later get a slot of 0 for now; the strip
// arrays of a multi-strip image are reserved here, among the values.
int CExifWriter::WriteEntry(const ChainPlan &plan, const PlannedEntry &entry, int64_t pos, int64_t *dataPos,
                            ChainSlots *slots)
{
    CTag *tag = entry.m_tag;
    switch (entry.m_role) {
    case ROLE_SUB_IFD:
        slots->m_subIfds.push_back({tag, pos});
        return PutEntry(pos, tag->m_id, TIFF_LONG, 1, 0);
    case ROLE_IMAGE_OFFSETS:
        slots->m_offsetsEntry = pos;
        return WriteImageEntry(tag, plan.m_stripCount, pos, dataPos, &slots->m_offsetsArray);
    case ROLE_IMAGE_COUNTS:
        slots->m_countsEntry = pos;
        return WriteImageEntry(tag, plan.m_stripCount, pos, dataPos, &slots->m_countsArray);
    case ROLE_STREAM_OFFSET:
        slots->m_stream = pos;
        return PutEntry(pos, tag->m_id, TIFF_LONG, 1, 0);
    case ROLE_STREAM_LENGTH:
        return PutEntry(pos, tag->m_id, TIFF_LONG, 1, static_cast<uint32_t>(plan.m_streamSize));
    case ROLE_VALUE:
        break;
    }
    uint32_t count = static_cast<uint32_t>(tag->m_count);
    if (FitsInline(tag)) return PutEntry(pos, tag->m_id, tag->m_type, count, tag->m_value);
    int64_t size = OutOfLineSize(tag);
    int64_t at = IsKeptInPlace(m_note, tag) ? int64_t(tag->m_value) : Take(dataPos, size);
    if (!PutEntry(pos, tag->m_id, tag->m_type, count, static_cast<uint32_t>(at))) return 0;
    return tag == m_note.m_tag && m_bigEndianSource ? PutTurnedNote(at, size) : Put(at, tag->m_data, size);
}

// A measure takes the place only: it must not fail where the write won't.
int CExifWriter::PutTurnedNote(int64_t at, int64_t size)
{
    if (m_out == nullptr) return Put(at, nullptr, size);
    unsigned char *note = new (std::nothrow) unsigned char[static_cast<size_t>(size)];
    if (note == nullptr) return NoteFailure(ZEXIF_ERROR_MEMORY);
    std::memcpy(note, m_note.m_tag->m_data, static_cast<size_t>(size));
    TurnNoteLittleEndian(note, size, at);
    int ok = Put(at, note, size);
    delete[] note;
    return ok;
}

// Strip tags become LONGs whatever type the source gave them: a SHORT can't
// hold the offsets of a larger file.
int CExifWriter::WriteImageEntry(CTag *tag, int32_t strips, int64_t pos, int64_t *dataPos, int64_t *arrayPos)
{
    *arrayPos = strips > 1 ? Take(dataPos, 4 * int64_t(strips)) : 0;
    return PutEntry(pos, tag->m_id, TIFF_LONG, static_cast<uint32_t>(strips), static_cast<uint32_t>(*arrayPos));
}

int CExifWriter::WriteSubIfd(CTag *pointer, int64_t entryPos, int depth, int64_t *dataPos)
{
    int64_t start = -1;
    int64_t linkPos = -1;
    if (!WriteIfd(pointer, dataPos, depth + 1, &start, &linkPos)) return 0;
    return start < 0 || PutU32(entryPos + SLOT_OFFSET, static_cast<uint32_t>(start));
}

int CExifWriter::WriteThumbnail(const ChainPlan &plan, const ChainSlots &slots, int64_t *dataPos)
{
    CTag *stream = plan.m_stream;
    if (stream == nullptr || slots.m_stream < 0) return 1;
    int64_t at = Take(dataPos, plan.m_streamSize);
    if (!PutU32(slots.m_stream + SLOT_OFFSET, static_cast<uint32_t>(at))) return 0;
    return stream->m_data != nullptr ? Put(at, stream->m_data, plan.m_streamSize)
                                     : CopyFromSource(at, plan.m_streamOffset, plan.m_streamSize);
}

// The strips follow each other in the order of the list, whatever their
// order in the source.
int CExifWriter::WriteStrips(const ChainPlan &plan, const ChainSlots &slots, int64_t *dataPos)
{
    int32_t count = plan.m_stripCount;
    if (plan.m_strips == nullptr || count == 0) return 1;
    // Known before a byte is copied, so that an image that would pass 2 GiB
    // is refused at once rather than after gigabytes.
    if (*dataPos + StripListBytes(plan.m_strips) > INT32_MAX) return 0;
    uint32_t *values = new (std::nothrow) uint32_t[2 * static_cast<size_t>(count)];
    if (values == nullptr) return NoteFailure(ZEXIF_ERROR_MEMORY);
    uint32_t *offsets = values;
    uint32_t *counts = values + count;
    int ok = 1;
    int32_t k = 0;
    for (CNode *node = plan.m_strips->m_child; ok && node != nullptr; node = node->m_next, k++) {
        const CTag *strip = static_cast<const CTag *>(node);
        int64_t at = Take(dataPos, strip->m_size);
        offsets[k] = static_cast<uint32_t>(at);
        counts[k] = static_cast<uint32_t>(strip->m_size);
        ok = CopyFromSource(at, strip->m_offset, strip->m_size);
    }
    ok = ok && WriteStripArray(slots.m_offsetsEntry, slots.m_offsetsArray, offsets, count) &&
         WriteStripArray(slots.m_countsEntry, slots.m_countsArray, counts, count);
    delete[] values;
    return ok;
}

// A single value stands in the entry's slot, several in the reserved array.
int CExifWriter::WriteStripArray(int64_t entryPos, int64_t arrayPos, const uint32_t *values, int32_t count)
{
    if (count == 1) return PutU32(entryPos + SLOT_OFFSET, values[0]);
    unsigned char *bytes = new (std::nothrow) unsigned char[4 * static_cast<size_t>(count)];
    if (bytes == nullptr) return NoteFailure(ZEXIF_ERROR_MEMORY);
    for (int32_t k = 0; k < count; k++) StoreU32(bytes + 4 * k, values[k]);
    int ok = Put(arrayPos, bytes, 4 * int64_t(count));
    delete[] bytes;
    return ok;
}

// Offsets in the output are 32-bit and the streams' positions signed: nothing
// goes beyond 2 GiB.
int CExifWriter::Put(int64_t pos, const void *data, int64_t size)
{
    if (pos < 0 || size < 0 || pos + size > INT32_MAX) return 0;
    if (size == 0) return 1;
    if (m_out != nullptr && (!MoveTo(pos) || !WriteAll(m_out, data, size))) return 0;
    m_cursor = pos + size;
    if (m_cursor > m_end) m_end = m_cursor;
    return 1;
}

int CExifWriter::PutU16(int64_t pos, uint32_t value)
{
    if (value > 0xFFFF) return 0;
    unsigned char bytes[2];
    StoreU16(bytes, value);
    return Put(pos, bytes, 2);
}

int CExifWriter::PutU32(int64_t pos, uint32_t value)
{
    unsigned char bytes[4];
    StoreU32(bytes, value);
    return Put(pos, bytes, 4);
}

int CExifWriter::PutEntry(int64_t pos, int32_t tag, uint32_t type, uint32_t count, uint32_t slot)
{
    unsigned char entry[ENTRY_SIZE];
    StoreU16(entry, static_cast<uint32_t>(tag));
    StoreU16(entry + 2, type);
    StoreU32(entry + 4, count);
    StoreU32(entry + 8, slot);
    return Put(pos, entry, ENTRY_SIZE);
}

int CExifWriter::CopyFromSource(int64_t pos, int64_t offset, int64_t size)
{
    if (size == 0) return 1;
    if (pos + size > INT32_MAX) return 0;
    if (m_out != nullptr && (!MoveTo(pos) || !CopyBytes(m_source.m_stream, offset, size, m_out))) return 0;
    m_cursor = pos + size;
    if (m_cursor > m_end) m_end = m_cursor;
    return 1;
}

// A file stream flushes its buffer at every seek, so the writer seeks only
// where it doesn't stand already.
int CExifWriter::MoveTo(int64_t pos)
{
    if (pos == m_cursor) return 1;
    if (!SeekTo(m_out, pos)) return 0;
    m_cursor = pos;
    return 1;
}
