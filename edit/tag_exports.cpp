#include "edit/exif_ifd_tags.h"
#include "edit/tag_delete.h"
#include "edit/tag_insert.h"
#include "edit/tag_lookup.h"
#include "platform/failure_reason.h"
#include "tree/document.h"
#include "zexif.h"

// The copy is made before value is touched, so a failed allocation leaves it
// as the caller had it.
int zExifGetTag(CExifDoc *doc, uint32_t tag, ExifTagValue *value, int ifd)
{
    BeginExport();
    if (doc == nullptr || value == nullptr) return FailExport(ZEXIF_ERROR_ARGUMENT);
    CTag *found = FindTagFor(doc, tag, ifd);
    if (found == nullptr) return FailExport(ZEXIF_ERROR_NOT_FOUND);
    void *data = value->data;
    if (!found->CopyValue(&data)) return FailExport(ZEXIF_ERROR_MEMORY);
    value->type = found->m_type;
    value->count = static_cast<uint32_t>(found->m_count);
    value->data = data;
    return 0;
}

int zExifDelTag(CExifDoc *doc, uint32_t tag, int ifd)
{
    BeginExport();
    if (doc == nullptr) return FailExport(ZEXIF_ERROR_ARGUMENT);
    return DeleteTag(doc, tag, ifd) == 0 ? 0 : FailExport(ZEXIF_ERROR_NOT_FOUND);
}

// A failure that nothing deeper explains is an IFD that isn't there and
// can't be made.
int zExifSetTag(CExifDoc *doc, uint32_t tag, const ExifTagValue *value, int ifd)
{
    BeginExport();
    if (doc == nullptr || !IsSettableTag(tag, value)) return FailExport(ZEXIF_ERROR_ARGUMENT);
    int inExifIfd = IsExifIfdTag(tag);
    int result = -1;
    if (doc->m_format == FORMAT_TIFF) {
        result = inExifIfd ? SetTiffExifTag(doc, tag, value) : SetTiffTag(doc, tag, value, ifd);
    } else if (doc->m_format == FORMAT_JPEG) {
        result = inExifIfd ? SetJpegExifTag(doc, tag, value) : SetJpegTag(doc, tag, value, ifd);
    }
    return result == 0 ? 0 : FailExport(ZEXIF_ERROR_NOT_FOUND);
}
