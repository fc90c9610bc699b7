#include "edit/exif_ifd_tags.h"
#include "edit/tag_delete.h"
#include "edit/tag_insert.h"
#include "edit/tag_lookup.h"
#include "tree/document.h"
#include "zexif.h"

namespace {

// An IFD entry holds a 16-bit tag number; a larger one would be written as
// another tag. Type 0 is no type: a file holding it can't be read back.
constexpr uint32_t MAX_TAG_NUMBER = 0xFFFF;

}  // namespace

// The copy is made before value is touched, so a failed allocation leaves it
// as the caller had it.
int zExifGetTag(CExifDoc *doc, uint32_t tag, ExifTagValue *value, int ifd)
{
    if (doc == nullptr || value == nullptr) return -1;
    CTag *found = FindTagFor(doc, tag, ifd);
    if (found == nullptr) return -1;
    void *data = value->data;
    if (!found->CopyValue(&data)) return -1;
    value->type = found->m_type;
    value->count = static_cast<uint32_t>(found->m_count);
    value->data = data;
    return 0;
}

int zExifDelTag(CExifDoc *doc, uint32_t tag, int ifd)
{
    if (doc == nullptr) return -1;
    return DeleteTag(doc, tag, ifd);
}

int zExifSetTag(CExifDoc *doc, uint32_t tag, const ExifTagValue *value, int ifd)
{
    if (doc == nullptr || value == nullptr || tag > MAX_TAG_NUMBER || value->type == 0) return -1;
    int inExifIfd = IsExifIfdTag(tag);
    if (doc->m_format == FORMAT_TIFF) {
        return inExifIfd ? SetTiffExifTag(doc, tag, value) : SetTiffTag(doc, tag, value, ifd);
    }
    if (doc->m_format == FORMAT_JPEG) {
        return inExifIfd ? SetJpegExifTag(doc, tag, value) : SetJpegTag(doc, tag, value, ifd);
    }
    return -1;
}
