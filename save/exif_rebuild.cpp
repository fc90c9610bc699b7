#include "save/exif_rebuild.h"

#include <cstring>
#include <new>

#include "platform/failure_reason.h"
#include "save/block_size.h"
#include "save/checked_io.h"
#include "save/exif_writer.h"
#include "save/strip_list.h"
#include "save/thumbnail_bytes.h"
#include "streams/memory_stream.h"
#include "tree/document.h"
#include "tree/walk.h"
#include "zexif.h"

namespace {

constexpr int32_t EXIF_SIGNATURE_SIZE = 6;
constexpr unsigned char EXIF_SIGNATURE[EXIF_SIGNATURE_SIZE] = {'E', 'x', 'i', 'f', 0, 0};

// A marker made by an edit has no payload yet; one that was loaded holds a
// whole TIFF header behind its signature, or it would have no tree.
int HasOldBlock(const CMarker *marker)
{
    return marker->m_data != nullptr;
}

// The bulk data of the old payload is copied as the writer asks for it; a
// thumbnail that lies outside it is left out, never read from elsewhere.
int WriteNewBlock(CNode *header, const BlockSource &source, unsigned char *block, int64_t size, int keepMakerNote)
{
    CStreamObj out(block + EXIF_SIGNATURE_SIZE, static_cast<int32_t>(size));
    CExifWriter writer(&out, source, keepMakerNote);
    return writer.WriteTiff(header) && writer.m_end == size;
}

int FitsSegment(int64_t size)
{
    return size >= 1 && size + EXIF_SIGNATURE_SIZE <= MAX_SEGMENT_PAYLOAD;
}

// A maker note kept at its old offset may push the block past one segment
// where edits grew what goes in front of it; the note then moves, as the
// only way to save the block at all. A block that couldn't be measured keeps
// its note where it is, or fails.
int BuildPayload(CExifDoc *doc, CMarker *marker, CNode *header, const BlockSource &source,
                 unsigned char **payload, int32_t *payloadSize)
{
    if (!LoadStripThumbnail(doc, header) || !BringThumbnailIn(doc, source, marker)) return 0;
    int keepMakerNote = 1;
    int64_t size = ComputeExifSize(source, header, keepMakerNote);
    if (size > 0 && !FitsSegment(size)) size = ComputeExifSize(source, header, keepMakerNote = 0);
    if (!FitsSegment(size)) return NoteFailure(ZEXIF_ERROR_LIMIT);
    int32_t total = static_cast<int32_t>(size + EXIF_SIGNATURE_SIZE);
    unsigned char *block = new (std::nothrow) unsigned char[static_cast<size_t>(total)]();
    if (block == nullptr) return NoteFailure(ZEXIF_ERROR_MEMORY);
    std::memcpy(block, EXIF_SIGNATURE, EXIF_SIGNATURE_SIZE);
    if (!WriteNewBlock(header, source, block, size, keepMakerNote)) {
        delete[] block;
        return 0;
    }
    *payload = block;
    *payloadSize = total;
    return 1;
}

}  // namespace

CNode *BlockHeaderOf(CNode *marker)
{
    CNode *header = FindInChain(marker->m_child, NODE_TIFF_HEADER);
    return header != nullptr && AsTag(header) == nullptr ? header : nullptr;
}

int RebuildExifMarker(CExifDoc *doc, CMarker *marker, unsigned char **payload, int32_t *size)
{
    doc->m_bigEndian = 0;
    CNode *header = BlockHeaderOf(marker);
    if (header == nullptr || !LoadChecked(marker, doc->m_stream)) return 0;
    BlockSource source;
    if (!HasOldBlock(marker)) return BuildPayload(doc, marker, header, source, payload, size);
    CStreamObj old(marker->m_data + EXIF_SIGNATURE_SIZE, marker->m_size - EXIF_SIGNATURE_SIZE);
    source.m_stream = &old;
    source.m_size = marker->m_size - EXIF_SIGNATURE_SIZE;
    return BuildPayload(doc, marker, header, source, payload, size);
}
