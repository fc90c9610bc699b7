#include "extensions/doc_ifds.h"

#include "edit/ifd_chain.h"
#include "edit/tag_insert.h"
#include "edit/tag_structures.h"
#include "extensions/ifd_ids.h"
#include "load/tiff_types.h"
#include "platform/failure_reason.h"
#include "save/entry_plan.h"
#include "tree/document.h"
#include "tree/walk.h"

namespace {

// The first tag of that number in owner's chain that holds a sub-IFD.
CTag *SubIfdOf(CNode *owner, uint32_t pointer)
{
    for (CNode *node = owner->m_child; node != nullptr; node = node->m_next) {
        CTag *tag = AsTag(node);
        if (tag != nullptr && static_cast<uint32_t>(tag->m_id) == pointer && IsCountNode(tag->m_child)) return tag;
    }
    return nullptr;
}

CNode *FindChainIfd(CExifDoc *doc, uint32_t index)
{
    CNode *ifd = doc->FindIfd(index);
    return IsIfdNode(ifd) ? ifd : nullptr;
}

// A TIFF's chain IFDs each describe an image, which tags alone don't make.
int AddChainIfd(CExifDoc *doc, uint32_t index, CTag *entry)
{
    if (doc->m_format != FORMAT_JPEG || index > static_cast<uint32_t>(doc->CountIfds())) {
        DeleteTree(entry);
        NoteFailure(doc->m_format != FORMAT_JPEG ? ZEXIF_ERROR_FORMAT : ZEXIF_ERROR_NOT_FOUND);
        return -1;
    }
    return AddJpegChainIfd(doc, index, entry);
}

// A pointer tag that holds no sub-IFD yet (a second one, or one a load didn't
// follow) takes entry as the first tag of its new sub-IFD, and the form of a
// pointer.
int GiveSubIfd(CExifDoc *doc, CTag *pointer, CTag *entry)
{
    if (PlaceEntry(doc, pointer, entry) != 0) return -1;
    pointer->m_type = TIFF_LONG;
    pointer->m_count = 1;
    NoteSubIfd(doc, pointer);
    return 0;
}

}  // namespace

CNode *FindIfdOwner(CExifDoc *doc, int ifd)
{
    if (IsChainIfd(ifd)) return FindChainIfd(doc, static_cast<uint32_t>(ifd));
    uint32_t path[2];
    const int depth = SubIfdPath(ifd, path);
    CNode *owner = FindChainIfd(doc, 0);
    for (int i = 0; owner != nullptr && i < depth; i++) owner = SubIfdOf(owner, path[i]);
    return owner;
}

// The sub-IFDs on the way that exist are followed; the entry is wrapped in
// the ones that don't, and goes where the way ends.
int AddTagWithIfd(CExifDoc *doc, int ifd, uint32_t number, const ExifTagValue *value)
{
    CTag *entry = MakeValueTag(number, value);
    if (IsChainIfd(ifd)) return AddChainIfd(doc, static_cast<uint32_t>(ifd), entry);
    uint32_t path[2];
    const int depth = SubIfdPath(ifd, path);
    CNode *owner = FindChainIfd(doc, 0);
    int level = 0;
    for (CTag *next; owner != nullptr && level < depth && (next = SubIfdOf(owner, path[level])) != nullptr; level++) {
        owner = next;
    }
    for (int i = depth - 1; i > level; i--) entry = WrapInSubIfd(path[i], entry);
    CTag *idle = owner != nullptr ? FindChainEntry(owner, static_cast<int32_t>(path[level])) : nullptr;
    if (idle != nullptr) return GiveSubIfd(doc, idle, entry);
    entry = WrapInSubIfd(path[level], entry);
    if (owner != nullptr) return PlaceEntry(doc, owner, entry);
    return AddChainIfd(doc, 0, entry);
}
