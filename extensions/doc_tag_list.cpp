#include <cstdlib>

#include "edit/ifd_chain.h"
#include "extensions/doc_ifds.h"
#include "extensions/ifd_ids.h"
#include "load/tiff_types.h"
#include "platform/failure_reason.h"
#include "reader/tif_tag_list.h"
#include "tree/document.h"
#include "tree/walk.h"
#include "zexif.h"

namespace {

// The tag as the reader lists it: a 1-byte value gets a NUL behind it.
TifTagItem *ItemOf(CTag *tag)
{
    TifTagItem *item = AllocTifTagItem(0);
    if (item == nullptr || !tag->CopyValue(&item->data)) {
        FreeTifTagItem(item);
        return nullptr;
    }
    item->tag = static_cast<uint32_t>(tag->m_id);
    item->type = tag->m_type;
    item->count = static_cast<uint32_t>(tag->m_count);
    if (TiffTypeSize(tag->m_type) != 1) return item;
    size_t size = item->count;
    void *text = std::realloc(item->data, size + 1);
    if (text == nullptr) {
        FreeTifTagItem(item);
        NoteFailure(ZEXIF_ERROR_MEMORY);
        return nullptr;
    }
    static_cast<unsigned char *>(text)[size] = 0;
    item->data = text;
    return item;
}

TifTagList *ListOf(CNode *owner)
{
    TifTagList *list = AllocTifTagList(CountEntries(owner));
    for (CNode *node = owner->m_child; list != nullptr && node != nullptr; node = node->m_next) {
        CTag *tag = AsTag(node);
        if (tag == nullptr) continue;
        TifTagItem *item = ItemOf(tag);
        if (item == nullptr) {
            FreeTifTagList(list);
            return nullptr;
        }
        AddTifTagItem(list, item);
    }
    return list;
}

}  // namespace

int zExifGetTagList(CExifDoc *doc, int ifd, TifTagList **out)
{
    BeginExport();
    if (doc == nullptr || out == nullptr || !IsIfdId(ifd)) return FailExport(ZEXIF_ERROR_ARGUMENT);
    CNode *owner = FindIfdOwner(doc, ifd);
    if (owner == nullptr) return FailExport(ZEXIF_ERROR_NOT_FOUND);
    TifTagList *list = ListOf(owner);
    if (list == nullptr) return FailExport(ZEXIF_ERROR_MEMORY);
    *out = list;
    return 0;
}
