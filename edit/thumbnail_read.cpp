#include <cstdlib>
#include <cstring>

#include "edit/marker_chain.h"
#include "edit/thumbnail_edit.h"
#include "platform/failure_reason.h"
#include "save/tag_numbers.h"
#include "streams/stream.h"
#include "streams/stream_size.h"
#include "tree/document.h"
#include "tree/walk.h"
#include "zexif.h"

namespace {

constexpr int32_t TAG_THUMB_LENGTH = 514;
constexpr int32_t EXIF_SIGNATURE_SIZE = 6;

// Where the TIFF block that the thumbnail's offset counts in lies: a payload
// in memory, or a stream with the block's first byte at base. avail is what
// the block holds from its first byte on.
struct ThumbSource {
    const unsigned char *bytes = nullptr;
    CStreamIO *stream = nullptr;
    int64_t base = 0;
    int64_t avail = 0;
};

int OnStream(CStreamIO *stream, int64_t base, ThumbSource *source)
{
    if (stream == nullptr) return 0;
    source->stream = stream;
    source->base = base;
    source->avail = StreamSize(stream) - base;
    return 1;
}

// A TIFF file counts offsets from its first byte. In a JPEG file they count
// in the block of the APP1 that holds the tag, which is not always the first
// APP1. A payload in memory is the one that the tree's offsets name (a save
// keeps the old one, a payload handed over is the tree's own), so it serves
// when it holds the bytes; the source file serves thumbnails that lie beyond
// the segment, as long as it is open.
int LocateSource(CExifDoc *doc, int64_t end, ThumbSource *source)
{
    if (doc->m_format == FORMAT_TIFF) return OnStream(doc->m_stream, 0, source);
    CMarker *holder = HoldingMarker(doc->m_thumbTag);
    if (holder == nullptr || holder->m_id != MARKER_APP1) return 0;
    if (holder->m_data != nullptr && end <= int64_t(holder->m_size) - EXIF_SIGNATURE_SIZE) {
        source->bytes = holder->m_data + EXIF_SIGNATURE_SIZE;
        source->avail = holder->m_size - EXIF_SIGNATURE_SIZE;
        return 1;
    }
    if (holder->m_offset < 1) return 0;
    return OnStream(doc->m_stream, int64_t(holder->m_offset) + EXIF_SIGNATURE_SIZE, source);
}

int CopyFromSource(const ThumbSource &source, int64_t offset, int32_t size, unsigned char *block)
{
    if (source.bytes != nullptr) {
        std::memcpy(block, source.bytes + offset, static_cast<size_t>(size));
        return 1;
    }
    source.stream->Seek(0, static_cast<int32_t>(source.base + offset));
    return source.stream->Read(block, static_cast<uint32_t>(size)) == static_cast<uint32_t>(size);
}

}  // namespace

CTag *FindThumbLengthTag(CExifDoc *doc)
{
    CTag *length = AsTag(FindNode(doc->m_thumbTag, TAG_THUMB_LENGTH));
    return length != nullptr ? length : AsTag(FindNode(doc->m_root, TAG_THUMB_LENGTH));
}

// Offset and length come from the file, so the bytes must lie inside what the
// source holds before anything is allocated for them, and each must be one
// number, as a save wants it: a thumbnail of another form is none. A block
// that holds the document's thumbnail already (a replaced one, say) is not
// overwritten with the file's old bytes.
int ReadThumbnail(CExifDoc *doc, ExifBuffer *out)
{
    CTag *thumb = doc->m_thumbTag;
    if (thumb == nullptr || !IsSingleNumber(thumb)) return 0;
    CTag *lengthTag = FindThumbLengthTag(doc);
    if (lengthTag == nullptr || !IsSingleNumber(lengthTag)) return 0;
    int64_t offset = static_cast<int32_t>(thumb->m_value);
    int64_t size = static_cast<int32_t>(lengthTag->m_value);
    ThumbSource source;
    if (offset < 1 || size < 1 || !LocateSource(doc, offset + size, &source) || offset + size > source.avail) return 0;
    unsigned char *block = static_cast<unsigned char *>(std::malloc(static_cast<size_t>(size)));
    if (block == nullptr) return NoteFailure(ZEXIF_ERROR_MEMORY);
    if (!CopyFromSource(source, offset, static_cast<int32_t>(size), block)) {
        std::free(block);
        return 0;
    }
    if (!doc->m_thumbLoaded && thumb->SetData(block, static_cast<int32_t>(size))) doc->m_thumbLoaded = 1;
    out->data = block;
    out->size = static_cast<uint32_t>(size);
    return 1;
}
