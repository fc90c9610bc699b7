#include "edit/tag_delete.h"
#include "edit/tag_lookup.h"
#include "edit/tag_structures.h"
#include "extensions/doc_ifds.h"
#include "extensions/ifd_ids.h"
#include "platform/failure_reason.h"
#include "save/entry_plan.h"
#include "tree/document.h"
#include "zexif.h"

namespace {

// The entry of that number in exactly the IFD of that id, sub-IFDs not
// entered; null, with the reason noted, when there is none.
CTag *FindTagAt(CExifDoc *doc, int ifd, uint32_t tag)
{
    CNode *owner = FindIfdOwner(doc, ifd);
    CTag *found = owner != nullptr ? FindChainEntry(owner, static_cast<int32_t>(tag)) : nullptr;
    if (found == nullptr) NoteFailure(ZEXIF_ERROR_NOT_FOUND);
    return found;
}

int IsDocumentFormat(const CExifDoc *doc)
{
    return doc->m_format == FORMAT_JPEG || doc->m_format == FORMAT_TIFF;
}

}  // namespace

int zExifGetTagAt(CExifDoc *doc, int ifd, uint32_t tag, ExifTagValue *value)
{
    BeginExport();
    if (doc == nullptr || value == nullptr || !IsIfdId(ifd)) return FailExport(ZEXIF_ERROR_ARGUMENT);
    CTag *found = FindTagAt(doc, ifd, tag);
    void *data = nullptr;
    if (found == nullptr || !found->CopyValue(&data)) return FailExport(ZEXIF_ERROR_NOT_FOUND);
    value->type = found->m_type;
    value->count = static_cast<uint32_t>(found->m_count);
    value->data = data;
    return 0;
}

int zExifSetTagAt(CExifDoc *doc, int ifd, uint32_t tag, const ExifTagValue *value)
{
    BeginExport();
    if (doc == nullptr || !IsIfdId(ifd) || !IsSettableTag(tag, value) || !IsDocumentFormat(doc)) {
        return FailExport(ZEXIF_ERROR_ARGUMENT);
    }
    CNode *owner = FindIfdOwner(doc, ifd);
    if (owner == nullptr) return AddTagWithIfd(doc, ifd, tag, value) == 0 ? 0 : FailExport(ZEXIF_ERROR_NOT_FOUND);
    CTag *found = FindChainEntry(owner, static_cast<int32_t>(tag));
    if (found != nullptr) return found->SetValue(value) ? 0 : FailExport(ZEXIF_ERROR_MEMORY);
    return AddEntry(doc, owner, tag, value) == 0 ? 0 : FailExport(ZEXIF_ERROR_MEMORY);
}

int zExifDelTagAt(CExifDoc *doc, int ifd, uint32_t tag)
{
    BeginExport();
    if (doc == nullptr || !IsIfdId(ifd)) return FailExport(ZEXIF_ERROR_ARGUMENT);
    CTag *found = FindTagAt(doc, ifd, tag);
    if (found == nullptr) return FailExport(ZEXIF_ERROR_NOT_FOUND);
    RemoveEntry(doc, found);
    return 0;
}
