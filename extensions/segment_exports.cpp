#include <cstdlib>
#include <cstring>
#include <new>

#include "edit/marker_chain.h"
#include "edit/tag_delete.h"
#include "platform/failure_reason.h"
#include "platform/handed_blocks.h"
#include "save/checked_io.h"
#include "save/exif_rebuild.h"
#include "streams/stream.h"
#include "tree/document.h"
#include "tree/walk.h"
#include "zexif.h"

namespace {

constexpr int32_t MARKER_EOI = 0xD9;
constexpr int32_t MARKER_SOS = 0xDA;
constexpr int32_t MARKER_COM = 0xFE;
constexpr uint32_t SIGNATURE_SIZE = 4;

// The segments are the markers of the top-level chain, counted from SOI.
CMarker *SegmentAt(CExifDoc *doc, int32_t index)
{
    int32_t i = 0;
    for (CNode *node = doc->m_root; node != nullptr && index >= 0; node = node->m_next) {
        CMarker *marker = dynamic_cast<CMarker *>(node);
        if (marker != nullptr && i++ == index) return marker;
    }
    return nullptr;
}

int IsAppOrComment(int32_t marker)
{
    return (marker >= 0xE0 && marker <= 0xEF) || marker == MARKER_COM;
}

int StartsWithExif(const ExifBuffer *data)
{
    return data->size >= SIGNATURE_SIZE && std::memcmp(data->data, "Exif", SIGNATURE_SIZE) == 0;
}

// What the tag, thumbnail and marker calls look after: the frame of the
// image, the document's Exif segment and the audio a save is to write. The
// payload of an APP1 whose block the tree holds is rebuilt from the tree at
// the save, so new bytes given to it would be lost.
int IsLookedAfter(CExifDoc *doc, const CMarker *marker, int writing)
{
    switch (marker->m_id) {
    case MARKER_SOI: case MARKER_EOI: case MARKER_SOS: case MARKER_SCAN_DATA:
        return 1;
    default:
        break;
    }
    if (marker->m_audioChunk || marker == doc->m_exifMarker) return 1;
    return writing && BlockHeaderOf(const_cast<CMarker *>(marker)) != nullptr;
}

int IsUsableData(const ExifBuffer *data)
{
    return data != nullptr && (data->data != nullptr || data->size == 0);
}

// An Exif payload goes in through zExifInsertExifMarker, which makes its tree.
int FitsMarker(int32_t marker, const ExifBuffer *data)
{
    return !(marker == MARKER_APP1 && StartsWithExif(data));
}

// The marker takes a copy of the bytes, and an APPn the first four of them as
// its signature. 0 with the marker unchanged when there is no memory.
int StorePayload(CMarker *marker, const ExifBuffer *data)
{
    const int32_t size = static_cast<int32_t>(data->size);
    unsigned char *copy = size > 0 ? new (std::nothrow) unsigned char[data->size] : nullptr;
    char *signature = marker->m_id != MARKER_COM ? static_cast<char *>(std::calloc(8, 1)) : nullptr;
    if ((size > 0 && copy == nullptr) || (marker->m_id != MARKER_COM && signature == nullptr)) {
        delete[] copy;
        std::free(signature);
        return NoteFailure(ZEXIF_ERROR_MEMORY);
    }
    if (size > 0) std::memcpy(copy, data->data, data->size);
    if (signature != nullptr) std::memcpy(signature, data->data, data->size < SIGNATURE_SIZE ? data->size : SIGNATURE_SIZE);
    std::free(marker->m_sig);
    marker->m_sig = signature;
    marker->AdoptData(copy, size);
    marker->m_offset = 0;
    return 1;
}

// Behind the last APPn or COM segment in front of the first other one.
CNode *InsertPlace(CExifDoc *doc)
{
    CNode *place = nullptr;
    for (CNode *node = doc->m_root; node != nullptr; node = node->m_next) {
        if (node->m_id != MARKER_SOI && !IsAppOrComment(node->m_id)) break;
        place = node;
    }
    return place;
}

// A segment still on file is read from the source; a short read fails.
int CopyPayload(CExifDoc *doc, const CMarker *marker, unsigned char *copy)
{
    uint32_t size = static_cast<uint32_t>(marker->m_size);
    if (marker->m_state == BLOCK_IN_MEMORY) {
        std::memcpy(copy, marker->m_data, size);
        return 1;
    }
    CStreamIO *source = doc->m_stream;
    if (source == nullptr || !SeekTo(source, marker->m_offset) || source->Read(copy, size) != size) {
        return NoteFailure(ZEXIF_ERROR_READ);
    }
    return 1;
}

// 1 when a segment call can go on: a JPEG document and the other arguments
// given. Otherwise the failure is recorded.
int IsJpegCall(const CExifDoc *doc, int argumentsGiven)
{
    if (doc != nullptr && argumentsGiven && doc->m_format == FORMAT_JPEG) return 1;
    FailExport(doc == nullptr || !argumentsGiven ? ZEXIF_ERROR_ARGUMENT : ZEXIF_ERROR_FORMAT);
    return 0;
}

}  // namespace

int zExifGetSegmentList(CExifDoc *doc, ExifSegment **out, int32_t *count)
{
    BeginExport();
    if (!IsJpegCall(doc, out != nullptr && count != nullptr)) return -1;
    int32_t n = 0;
    for (CNode *node = doc->m_root; node != nullptr; node = node->m_next) n += dynamic_cast<CMarker *>(node) != nullptr;
    ExifSegment *list = static_cast<ExifSegment *>(std::malloc(sizeof(ExifSegment) * static_cast<size_t>(n + 1)));
    if (list == nullptr) return FailExport(ZEXIF_ERROR_MEMORY);
    ExifSegment *next = list;
    for (CNode *node = doc->m_root; node != nullptr; node = node->m_next) {
        const CMarker *marker = dynamic_cast<CMarker *>(node);
        if (marker == nullptr) continue;
        next->marker = marker->m_id;
        next->offset = marker->m_audioChunk ? 0 : static_cast<uint32_t>(marker->m_offset);
        next->size = static_cast<uint32_t>(marker->m_size);
        next++;
    }
    *out = list;
    *count = n;
    return 0;
}

int zExifGetSegmentData(CExifDoc *doc, int32_t index, ExifBuffer *out)
{
    BeginExport();
    if (!IsJpegCall(doc, out != nullptr)) return -1;
    const CMarker *marker = SegmentAt(doc, index);
    if (marker == nullptr) return FailExport(ZEXIF_ERROR_NOT_FOUND);
    if (marker->m_audioChunk) return FailExport(ZEXIF_ERROR_ARGUMENT);
    const int32_t size = marker->m_state == BLOCK_NOTHING ? 0 : marker->m_size;
    unsigned char *copy = size > 0 ? static_cast<unsigned char *>(std::malloc(static_cast<size_t>(size))) : nullptr;
    if (size > 0 && copy == nullptr) return FailExport(ZEXIF_ERROR_MEMORY);
    if (size > 0 && !CopyPayload(doc, marker, copy)) {
        std::free(copy);
        return FailExport(ZEXIF_ERROR_READ);
    }
    ForgetArrayBlock(copy);
    out->data = copy;
    out->size = static_cast<uint32_t>(size);
    return 0;
}

int zExifSetSegmentData(CExifDoc *doc, int32_t index, const ExifBuffer *data)
{
    BeginExport();
    if (!IsJpegCall(doc, IsUsableData(data))) return -1;
    CMarker *marker = SegmentAt(doc, index);
    if (marker == nullptr) return FailExport(ZEXIF_ERROR_NOT_FOUND);
    if (IsLookedAfter(doc, marker, 1) || !FitsMarker(marker->m_id, data)) return FailExport(ZEXIF_ERROR_ARGUMENT);
    if (data->size > MAX_SEGMENT_PAYLOAD) return FailExport(ZEXIF_ERROR_LIMIT);
    return StorePayload(marker, data) ? 0 : FailExport(ZEXIF_ERROR_MEMORY);
}

int zExifInsertSegment(CExifDoc *doc, int32_t marker, const ExifBuffer *data)
{
    BeginExport();
    if (!IsJpegCall(doc, IsUsableData(data))) return -1;
    if (!IsAppOrComment(marker) || !FitsMarker(marker, data)) return FailExport(ZEXIF_ERROR_ARGUMENT);
    if (data->size > MAX_SEGMENT_PAYLOAD) return FailExport(ZEXIF_ERROR_LIMIT);
    CNode *place = InsertPlace(doc);
    if (place == nullptr) return FailExport(ZEXIF_ERROR_DAMAGED);
    CMarker *segment = new (std::nothrow) CMarker(marker, 0, 0);
    if (segment == nullptr || !StorePayload(segment, data)) {
        delete segment;
        return FailExport(ZEXIF_ERROR_MEMORY);
    }
    InsertAfter(place, segment);
    return 0;
}

int zExifRemoveSegment(CExifDoc *doc, int32_t index)
{
    BeginExport();
    if (!IsJpegCall(doc, 1)) return -1;
    CMarker *marker = SegmentAt(doc, index);
    if (marker == nullptr) return FailExport(ZEXIF_ERROR_NOT_FOUND);
    if (IsLookedAfter(doc, marker, 0)) return FailExport(ZEXIF_ERROR_ARGUMENT);
    RemoveNode(doc, marker);
    return 0;
}
