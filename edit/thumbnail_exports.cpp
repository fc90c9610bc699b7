#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "edit/thumbnail_edit.h"
#include "platform/failure_reason.h"
#include "platform/handed_blocks.h"
#include "tree/document.h"
#include "zexif.h"

namespace {

// A failed read leaves the caller no stale pointer to free.
int ClearOut(ExifBuffer *out)
{
    out->data = nullptr;
    out->size = 0;
    return -1;
}

int CopyLoadedThumbnail(CExifDoc *doc, ExifBuffer *out)
{
    unsigned char *data = nullptr;
    int32_t size = 0;
    doc->m_thumbTag->GetData(&data, &size);
    if (data == nullptr || size < 1) return ClearOut(out);
    unsigned char *copy = static_cast<unsigned char *>(std::malloc(static_cast<size_t>(size)));
    if (copy == nullptr) {
        NoteFailure(ZEXIF_ERROR_MEMORY);
        return ClearOut(out);
    }
    std::memcpy(copy, data, static_cast<size_t>(size));
    ForgetArrayBlock(copy);
    out->data = copy;
    out->size = static_cast<uint32_t>(size);
    return 0;
}

int ReadFromSource(CExifDoc *doc, ExifBuffer *out)
{
    if (!doc->m_hasThumb) return -1;
    if (!ReadThumbnail(doc, out)) return ClearOut(out);
    ForgetArrayBlock(out->data);
    return 0;
}

int HandOutThumbnail(CExifDoc *doc, ExifBuffer *out, int fromMemory)
{
    int result = fromMemory ? CopyLoadedThumbnail(doc, out) : ReadFromSource(doc, out);
    return result == 0 ? 0 : FailExport(ZEXIF_ERROR_NOT_FOUND);
}

int IsUsableThumbnail(const ExifBuffer *buffer)
{
    return buffer != nullptr && buffer->data != nullptr && buffer->size >= 1 && buffer->size <= INT32_MAX;
}

}  // namespace

int zExifIsThumbnailExist(CExifDoc *doc)
{
    return doc != nullptr ? doc->m_hasThumb : RefuseNullHandle();
}

uint32_t zExifGetThumbType(CExifDoc *doc)
{
    return doc != nullptr ? doc->m_thumbType : static_cast<uint32_t>(RefuseNullHandle());
}

int zExifGetThumbnailData(CExifDoc *doc, ExifBuffer *out)
{
    BeginExport();
    if (doc == nullptr || out == nullptr) return FailExport(ZEXIF_ERROR_ARGUMENT);
    return HandOutThumbnail(doc, out, doc->m_thumbLoaded && doc->m_thumbTag != nullptr);
}

// Only the exact type of the loaded thumbnail is served from memory; any other
// type with the JPEG bit asks the source again.
int zExifGetThumbDataEx(CExifDoc *doc, ExifBuffer *out, uint32_t type)
{
    BeginExport();
    if (doc == nullptr || out == nullptr || (type & THUMB_TYPE_JPEG) == 0) return FailExport(ZEXIF_ERROR_ARGUMENT);
    return HandOutThumbnail(doc, out, doc->m_thumbLoaded && doc->m_thumbTag != nullptr && type == doc->m_thumbType);
}

// An empty thumbnail is refused rather than stored: a tag 513 without bytes
// under a set m_thumbLoaded would give the readers and the save nothing to
// hand out.
int zExifSetThumbnailData(CExifDoc *doc, const ExifBuffer *buffer)
{
    BeginExport();
    if (doc == nullptr || !IsUsableThumbnail(buffer)) return FailExport(ZEXIF_ERROR_ARGUMENT);
    int result = -1;
    if (doc->m_format == FORMAT_TIFF) result = SetTiffThumbnail(doc, buffer);
    if (doc->m_format == FORMAT_JPEG) result = SetJpegThumbnail(doc, buffer);
    return result == 0 ? 0 : FailExport(ZEXIF_ERROR_DAMAGED);
}

// Thumbnails of other types have no place: zExifSetThumbnailData sets the one
// there is.
int zExifSetThumbDataEx(CExifDoc *, const ExifBuffer *, uint32_t)
{
    BeginExport();
    return FailExport(ZEXIF_ERROR_ARGUMENT);
}
