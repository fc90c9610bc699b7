#include "load/tiff_parser.h"

#include <cstring>
#include <new>

#include "load/doc_builder.h"
#include "load/ifd_entry_decode.h"
#include "platform/failure_reason.h"
#include "streams/byte_order.h"
#include "streams/stream.h"
#include "streams/stream_size.h"
#include "tree/document.h"
#include "tree/walk.h"
#include "zexif.h"

namespace {

constexpr int ENTRY_SIZE = 12;
constexpr int32_t IFD_FAILED = -1;

// Reads a value's bytes into a zero-filled buffer, so that whatever lies
// behind the end of the stream reads as zeros. Returns null when the value
// would exceed what this parse may still allocate.
unsigned char *FetchValue(const IfdEntry &entry, int bigEndian, CStreamIO *stream, CDocBuilder *builder)
{
    int64_t size = EntryDataSize(entry.type, entry.count);
    if (size > builder->m_valueBudget) {
        NoteFailure(ZEXIF_ERROR_LIMIT);
        return nullptr;
    }
    builder->m_valueBudget -= size;
    unsigned char *bytes = new (std::nothrow) unsigned char[static_cast<size_t>(size)]();
    if (bytes == nullptr) {
        NoteFailure(ZEXIF_ERROR_MEMORY);
        return nullptr;
    }
    if (int64_t(entry.value) < builder->m_streamSize) {
        stream->Seek(0, static_cast<int32_t>(entry.value));
        stream->Read(bytes, static_cast<uint32_t>(size));
    }
    if (bigEndian) SwapValueBytes(bytes, size, entry.type);
    return bytes;
}

int AddTag(const IfdEntry &entry, int bigEndian, CStreamIO *stream, CDocBuilder *builder)
{
    if (!ValueIsOutOfLine(entry)) return builder->OnTag(entry);
    unsigned char *bytes = FetchValue(entry, bigEndian, stream, builder);
    if (bytes == nullptr) return 0;
    int ok = builder->OnTag(entry) && builder->OnTagData(entry, bytes);
    delete[] bytes;
    return ok;
}

int32_t *SeenFlagOf(CExifDoc *doc, uint16_t tag)
{
    switch (tag) {
    case 34665: return &doc->m_seenExifIfd;
    case 34853: return &doc->m_seenGpsIfd;
    case 40965: return &doc->m_seenInteropIfd;
    default: return nullptr;
    }
}

// Follows a pointer tag into its sub-IFD once per block, so that a pointer
// inside the sub-IFD itself can't start an endless descent. A tag of a
// pointer's number that holds no single offset points at nothing: it stays a
// plain tag. A pointer past the end of the stream names an IFD that can't be
// read, which fails like any other sub-IFD that fails.
int FollowSubIfd(const IfdEntry &entry, int bigEndian, CStreamIO *stream, CDocBuilder *builder)
{
    int32_t *seen = SeenFlagOf(builder->m_doc, entry.tag);
    if (seen == nullptr || *seen || !IsIfdPointer(entry.type, entry.count)) return 1;
    *seen = 1;
    if (int64_t(entry.value) >= builder->m_streamSize) return 0;
    stream->Seek(0, static_cast<int32_t>(entry.value));
    return ParseIfd(bigEndian, stream, builder) >= 0;
}

// An entry is kept when its value could lie in the stream at all; a value
// larger than the whole stream is a damaged count, and allocating for it
// would only waste memory on zeros.
int IsPlausible(const IfdEntry &entry, const CDocBuilder *builder)
{
    return !ValueIsOutOfLine(entry) || EntryDataSize(entry.type, entry.count) <= builder->m_streamSize;
}

// Decodes the complete entries of a table; entries cut off by the end of the
// stream are not acted on. Returns the number kept, or -1 for an entry of
// type 0, which fails the IFD.
int DecodeTable(const unsigned char *table, uint32_t complete, int bigEndian, const CDocBuilder *builder,
                IfdEntry *entries)
{
    int kept = 0;
    for (uint32_t i = 0; i < complete; i++) {
        IfdEntry entry = DecodeIfdEntry(table + i * ENTRY_SIZE, bigEndian);
        if (entry.type == 0) return -1;
        if (IsPlausible(entry, builder)) entries[kept++] = entry;
    }
    return kept;
}

uint32_t ReadLink(int bigEndian, CStreamIO *stream)
{
    unsigned char raw[4];
    if (stream->Read(raw, 4) != 4) return 0;
    return ReadU32(raw, bigEndian);
}

// The offsets of the chain's IFDs read so far, to tell a link that loops.
struct VisitedIfds {
    uint32_t offsets[MAX_CHAINED_IFDS];
    int count = 0;

    int Contains(uint32_t offset) const
    {
        for (int i = 0; i < count; i++) {
            if (offsets[i] == offset) return 1;
        }
        return 0;
    }
};

// An IFD whose parse stops part way keeps the tags added so far; its count
// is set to them, so that whoever keeps such a tree can lay it out.
int32_t FailAfterCount(CNode *countNode)
{
    uint32_t tags = 0;
    for (CNode *node = countNode->m_next; node != nullptr; node = node->m_next) {
        if (AsTag(node) != nullptr) tags++;
    }
    countNode->m_value = tags;
    return IFD_FAILED;
}

}  // namespace

int32_t ParseIfd(int bigEndian, CStreamIO *stream, CDocBuilder *builder)
{
    unsigned char raw[2];
    if (stream->Read(raw, 2) != 2) return IFD_FAILED;
    uint32_t count = ReadU16(raw, bigEndian);
    if (count == 0) return IFD_FAILED;
    if (count > MAX_IFD_ENTRIES) {
        NoteFailure(ZEXIF_ERROR_LIMIT);
        return IFD_FAILED;
    }

    unsigned char table[MAX_IFD_ENTRIES * ENTRY_SIZE];
    uint32_t complete = stream->Read(table, count * ENTRY_SIZE) / ENTRY_SIZE;
    int32_t linkPosition = stream->Tell();
    IfdEntry entries[MAX_IFD_ENTRIES];
    int kept = DecodeTable(table, complete, bigEndian, builder, entries);
    if (kept <= 0) return IFD_FAILED;

    if (!builder->OnEntryCount(static_cast<uint32_t>(kept))) return IFD_FAILED;
    CNode *countNode = builder->m_doc->m_cur;
    for (int i = 0; i < kept; i++) {
        if (!AddTag(entries[i], bigEndian, stream, builder)) return FailAfterCount(countNode);
        if (!FollowSubIfd(entries[i], bigEndian, stream, builder)) return FailAfterCount(countNode);
    }
    stream->Seek(0, linkPosition);
    uint32_t link = complete == count ? ReadLink(bigEndian, stream) : 0;
    if (!builder->OnNextIfd(link)) return FailAfterCount(countNode);
    return static_cast<int32_t>(link);
}

int ParseTiff(CStreamIO *stream, CDocBuilder *builder)
{
    unsigned char header[4];
    if (stream->Read(header, 4) != 4) return 0;
    int bigEndian;
    if (!ReadByteOrderMark(header, &bigEndian)) return 0;
    builder->m_streamSize = StreamSize(stream);
    if (builder->m_valueBudget < 0) {
        builder->m_valueBudget = VALUE_BUDGET_FACTOR * builder->m_streamSize + VALUE_BUDGET_EXTRA;
    }
    if (!builder->OnTiffHeader(header)) return 0;
    unsigned char raw[4];
    if (stream->Read(raw, 4) != 4) return 0;
    uint32_t offset = ReadU32(raw, bigEndian);

    builder->m_doc->m_seenExifIfd = 0;
    builder->m_doc->m_seenGpsIfd = 0;
    builder->m_doc->m_seenInteropIfd = 0;
    // A link back to an IFD already read, or past the end of the stream, is
    // taken for the end of the chain: cameras leave junk in the last link,
    // and what was read so far is worth keeping.
    VisitedIfds visited;
    for (uint32_t index = 1; offset != 0; index++) {
        if (offset > uint32_t(INT32_MAX)) return 0;
        if (int64_t(offset) >= builder->m_streamSize || visited.Contains(offset)) break;
        if (visited.count == MAX_CHAINED_IFDS) break;
        visited.offsets[visited.count++] = offset;
        stream->Seek(0, static_cast<int32_t>(offset));
        if (!builder->OnIfdStart(index)) return 0;
        int32_t next = ParseIfd(bigEndian, stream, builder);
        if (next < 0) return 0;
        offset = static_cast<uint32_t>(next);
    }
    return builder->OnIfdEnd();
}
