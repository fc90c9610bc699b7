#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "edit/thumbnail_edit.h"
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
    if (copy == nullptr) return ClearOut(out);
    std::memcpy(copy, data, static_cast<size_t>(size));
    out->data = copy;
    out->size = static_cast<uint32_t>(size);
    return 0;
}

int ReadFromSource(CExifDoc *doc, ExifBuffer *out)
{
    if (!doc->m_hasThumb) return -1;
    return ReadThumbnail(doc, out) ? 0 : ClearOut(out);
}

int IsUsableThumbnail(const ExifBuffer *buffer)
{
    return buffer != nullptr && buffer->data != nullptr && buffer->size >= 1 && buffer->size <= INT32_MAX;
}

}  // namespace

int zExifIsThumbnailExist(CExifDoc *doc)
{
    return doc != nullptr ? doc->m_hasThumb : 0;
}

uint32_t zExifGetThumbType(CExifDoc *doc)
{
    return doc != nullptr ? doc->m_thumbType : 0;
}

int zExifGetThumbnailData(CExifDoc *doc, ExifBuffer *out)
{
    if (doc == nullptr || out == nullptr) return -1;
    if (doc->m_thumbLoaded && doc->m_thumbTag != nullptr) return CopyLoadedThumbnail(doc, out);
    return ReadFromSource(doc, out);
}

// Only the exact type of the loaded thumbnail is served from memory; any other
// type with the JPEG bit asks the source again.
int zExifGetThumbDataEx(CExifDoc *doc, ExifBuffer *out, uint32_t type)
{
    if (doc == nullptr || out == nullptr || (type & THUMB_TYPE_JPEG) == 0) return -1;
    if (doc->m_thumbLoaded && doc->m_thumbTag != nullptr && type == doc->m_thumbType) {
        return CopyLoadedThumbnail(doc, out);
    }
    return ReadFromSource(doc, out);
}

// An empty thumbnail is refused rather than stored: a tag 513 without bytes
// under a set m_thumbLoaded would give the readers and the save nothing to
// hand out.
int zExifSetThumbnailData(CExifDoc *doc, const ExifBuffer *buffer)
{
    if (doc == nullptr || !IsUsableThumbnail(buffer)) return -1;
    if (doc->m_format == FORMAT_TIFF) return SetTiffThumbnail(doc, buffer);
    if (doc->m_format == FORMAT_JPEG) return SetJpegThumbnail(doc, buffer);
    return -1;
}

int zExifSetThumbDataEx(CExifDoc *, const ExifBuffer *, uint32_t)
{
    return -1;
}
