#include "save/strip_list.h"

#include <new>

#include "save/entry_plan.h"
#include "save/tag_numbers.h"
#include "tree/document.h"
#include "tree/walk.h"

namespace {

CNode *MakeStripList()
{
    CNode *list = new (std::nothrow) CNode;
    if (list == nullptr) return nullptr;
    list->m_id = NODE_STRIP_LIST;
    list->m_kind = KIND_PLAIN;
    list->m_hasChild = 1;
    return list;
}

CTag *MakeStrip(uint32_t offset, uint32_t size)
{
    if (offset > uint32_t(INT32_MAX) || size > uint32_t(INT32_MAX)) return nullptr;
    CTag *strip = new (std::nothrow) CTag;
    if (strip == nullptr) return nullptr;
    strip->m_id = NODE_STRIP;
    strip->m_kind = KIND_PLAIN;
    strip->m_offset = static_cast<int32_t>(offset);
    strip->m_size = static_cast<int32_t>(size);
    return strip;
}

int FillStripList(CNode *list, const CTag *offsets, const CTag *counts)
{
    if (offsets->m_count != counts->m_count || offsets->m_count < 0) return 0;
    CNode **link = &list->m_child;
    for (int32_t k = 0; k < offsets->m_count; k++) {
        uint32_t offset = 0;
        uint32_t size = 0;
        if (!ReadNumber(offsets, k, &offset) || !ReadNumber(counts, k, &size)) return 0;
        CTag *strip = MakeStrip(offset, size);
        if (strip == nullptr) return 0;
        strip->m_parent = list;
        *link = strip;
        link = &strip->m_next;
    }
    return 1;
}

CNode *LastOfChain(CNode *ifd)
{
    CNode *node = ifd->m_child;
    while (node != nullptr && node->m_next != nullptr) node = node->m_next;
    return node;
}

int PrepareIfd(CNode *ifd)
{
    CTag *offsets = nullptr;
    CTag *counts = nullptr;
    if (FindStripList(ifd) != nullptr || !PickImageTags(ifd, &offsets, &counts)) return 1;
    CNode *list = MakeStripList();
    if (list == nullptr) return 0;
    CNode *last = LastOfChain(ifd);
    if (last == nullptr || !FillStripList(list, offsets, counts)) {
        DeleteTree(list);
        return 0;
    }
    return InsertAfter(last, list);
}

}  // namespace

int PrepareStrips(CNode *header)
{
    for (CNode *ifd : IfdsOfBlock(header)) {
        if (!PrepareIfd(ifd)) return 0;
    }
    return 1;
}

int PrepareTiffStrips(CExifDoc *doc)
{
    CNode *header = FindInChain(doc->m_root, NODE_TIFF_HEADER);
    return header == nullptr || PrepareStrips(header);
}

int LoadStripThumbnail(CExifDoc *doc, CNode *header)
{
    if (!PrepareStrips(header)) return 0;
    for (CNode *ifd : IfdsOfBlock(header)) {
        if (FindStripList(ifd) != nullptr) doc->m_stripThumb = 1;
    }
    return 1;
}
