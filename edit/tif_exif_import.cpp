#include "edit/exif_ifd_tags.h"
#include "edit/tag_insert.h"
#include "load/tiff_types.h"
#include "platform/failure_reason.h"
#include "reader/tif_tag_list.h"
#include "tree/document.h"
#include "zexif.h"

namespace {

// An Exif IFD tag whose data holds the bytes its type and count need. Other
// numbers have no place in the Exif IFD and are passed over without a word.
int IsImportable(const TifTagItem *item)
{
    if (item == nullptr || !IsExifIfdTag(item->tag)) return 0;
    return item->data != nullptr || TiffTypeSize(item->type) == 0 || item->count == 0;
}

}  // namespace

// The list is released only when all of it went in. A failure (no IFD 0 to
// hang the Exif IFD in, no memory) stops at that item: the items before it
// stay set, and since setting a tag again replaces it, the caller may pass
// the list again.
int zExifSetTIFExifData(CExifDoc *doc, TifTagList *list)
{
    BeginExport();
    if (doc == nullptr || list == nullptr) return FailExport(ZEXIF_ERROR_ARGUMENT);
    if (doc->m_format != FORMAT_TIFF) return FailExport(ZEXIF_ERROR_FORMAT);
    for (int32_t i = 0; i < list->count && list->items != nullptr; i++) {
        const TifTagItem *item = list->items[i];
        if (!IsImportable(item)) continue;
        ExifTagValue value = {item->type, item->count, item->data};
        if (SetTiffExifTag(doc, item->tag, &value) != 0) return FailExport(ZEXIF_ERROR_NOT_FOUND);
    }
    FreeTifTagList(list);
    return 0;
}
