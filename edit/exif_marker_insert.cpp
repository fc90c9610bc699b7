#include <cstdint>
#include <cstring>

#include "edit/marker_chain.h"
#include "load/doc_builder.h"
#include "load/tiff_parser.h"
#include "load/tiff_types.h"
#include "platform/failure_reason.h"
#include "platform/handed_blocks.h"
#include "streams/stream.h"
#include "tree/document.h"
#include "tree/walk.h"
#include "zexif.h"

namespace {

constexpr int32_t EXIF_SIGNATURE_SIZE = 6;
constexpr int32_t TIFF_HEADER_SIZE = 8;
constexpr int32_t TAG_THUMB_LENGTH = 514;
// Bits of m_thumbType that go with the APP1 segments.
constexpr uint32_t THUMB_TYPE_APP1_BITS = 0xe00;

// What the parse of the new block changes in the document, kept so that a
// call that can't complete puts it back.
struct Shortcuts {
    CMarker *exifMarker;
    CTag *exifIfdTag;
    CTag *thumbTag;
    int32_t bigEndian;
    int32_t hasExif;
    int32_t hasThumb;
    int32_t thumbLoaded;
    uint32_t thumbType;
};

Shortcuts SaveShortcuts(const CExifDoc *doc)
{
    return {doc->m_exifMarker, doc->m_exifIfdTag, doc->m_thumbTag, doc->m_bigEndian,
            doc->m_hasExif, doc->m_hasThumb, doc->m_thumbLoaded, doc->m_thumbType};
}

void RestoreShortcuts(CExifDoc *doc, const Shortcuts &saved)
{
    doc->m_exifMarker = saved.exifMarker;
    doc->m_exifIfdTag = saved.exifIfdTag;
    doc->m_thumbTag = saved.thumbTag;
    doc->m_bigEndian = saved.bigEndian;
    doc->m_hasExif = saved.hasExif;
    doc->m_hasThumb = saved.hasThumb;
    doc->m_thumbLoaded = saved.thumbLoaded;
    doc->m_thumbType = saved.thumbType;
}

// "Exif", two bytes and at least a TIFF header with its byte-order mark.
// Anything else would stand in the tree as an Exif APP1 without a block.
int IsExifPayload(const ExifBuffer *buffer)
{
    if (buffer->data == nullptr || buffer->size < EXIF_SIGNATURE_SIZE + TIFF_HEADER_SIZE) return 0;
    if (buffer->size > INT32_MAX) return 0;
    const unsigned char *tiff = buffer->data + EXIF_SIGNATURE_SIZE;
    int knownOrder = IsByteOrderMark(tiff);
    return std::memcmp(buffer->data, "Exif", 4) == 0 && knownOrder;
}

// The new block stands in front of any APP1 already there, and it is the one
// that the save rebuilds. Shortcuts into an older block would send lookups,
// edits and the thumbnail to a block that the save copies unchanged.
void ForgetOlderBlock(CExifDoc *doc)
{
    doc->m_exifIfdTag = nullptr;
    doc->m_thumbTag = nullptr;
    doc->m_hasThumb = 0;
    doc->m_thumbLoaded = 0;
    doc->m_thumbType &= ~THUMB_TYPE_APP1_BITS;
}

// The payload is the only place that holds the thumbnail's bytes, so they are
// copied out when offset and length lie inside the block. A thumbnail that
// lies elsewhere is none: nothing would ever find its bytes. Returns 0 only
// when the copy can't be allocated.
int TakeThumbnail(CExifDoc *doc, CMarker *marker, const ExifBuffer *buffer)
{
    CTag *thumb = doc->m_thumbTag;
    if (!doc->m_hasThumb || thumb == nullptr) return 1;
    CTag *length = AsTag(FindNode(thumb, TAG_THUMB_LENGTH));
    if (length == nullptr) length = AsTag(FindNode(marker->m_child, TAG_THUMB_LENGTH));
    int64_t offset = int64_t(thumb->m_value) + EXIF_SIGNATURE_SIZE;
    int64_t size = length != nullptr ? int64_t(length->m_value) : 0;
    if (thumb->m_value == 0 || size < 1 || offset + size > int64_t(buffer->size)) {
        doc->m_hasThumb = 0;
        doc->m_thumbType &= ~THUMB_TYPE_JPEG;
        return 1;
    }
    if (!thumb->SetData(buffer->data + offset, static_cast<int32_t>(size))) return 0;
    doc->m_thumbLoaded = 1;
    return 1;
}

}  // namespace

int zExifInsertExifMarker(CExifDoc *doc, ExifBuffer *buffer)
{
    BeginExport();
    if (doc == nullptr || buffer == nullptr) return FailExport(ZEXIF_ERROR_ARGUMENT);
    if (doc->m_format != FORMAT_JPEG) return FailExport(ZEXIF_ERROR_FORMAT);
    if (!IsExifPayload(buffer)) return FailExport(ZEXIF_ERROR_ARGUMENT);
    CNode *place = FindApp1Place(doc);
    if (place == nullptr) return FailExport(ZEXIF_ERROR_DAMAGED);
    int32_t size = static_cast<int32_t>(buffer->size);
    CMarker *marker = MakeExifMarker(size);
    if (marker == nullptr) return FailExport(ZEXIF_ERROR_MEMORY);
    CStreamIO *block = nullptr;
    if (!CreateMemoryStream(&block, buffer->data + EXIF_SIGNATURE_SIZE, size - EXIF_SIGNATURE_SIZE)) {
        delete marker;
        return FailExport(ZEXIF_ERROR_MEMORY);
    }
    Shortcuts before = SaveShortcuts(doc);
    InsertAfter(place, marker);
    marker->AdoptData(buffer->data, size);
    doc->m_exifMarker = marker;
    ForgetOlderBlock(doc);
    doc->MoveTo(marker);
    CDocBuilder builder(doc);
    // A parse that fails would leave the older block's shortcuts forgotten
    // and the new one half read: as a load, the call fails whole.
    const int parsed = ParseTiff(block, &builder);
    DeleteStream(block);
    if (!parsed || !TakeThumbnail(doc, marker, buffer)) {
        marker->m_data = nullptr;
        RemoveTopLevelNode(doc, marker);
        RestoreShortcuts(doc, before);
        return FailExport(parsed ? ZEXIF_ERROR_MEMORY : ZEXIF_ERROR_DAMAGED);
    }
    ForgetArrayBlock(buffer->data);
    return 0;
}
