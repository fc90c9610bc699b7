#include "edit/tag_delete.h"

#include "edit/ifd_chain.h"
#include "edit/marker_chain.h"
#include "edit/tag_lookup.h"
#include "tree/document.h"
#include "tree/walk.h"
#include "zexif.h"

namespace {

constexpr int32_t TAG_EXIF_IFD = 34665;

// The thumbnail goes with its tag: nothing could read or save it any more.
void ForgetThumbnail(CExifDoc *doc)
{
    doc->m_hasThumb = 0;
    doc->m_thumbLoaded = 0;
    doc->m_thumbType &= ~static_cast<uint32_t>(THUMB_TYPE_JPEG);
}

CNode **OwningLink(CExifDoc *doc, CNode *node)
{
    CNode **link = node->m_parent != nullptr ? &node->m_parent->m_child : &doc->m_root;
    while (*link != nullptr && *link != node) link = &(*link)->m_next;
    return link;
}

}  // namespace

void RemoveNode(CExifDoc *doc, CNode *node)
{
    CNode **link = OwningLink(doc, node);
    if (*link == nullptr) return;
    *link = node->m_next;
    node->m_next = nullptr;
    CTag *thumbTag = doc->m_thumbTag;
    DestroyDetached(doc, node);
    if (thumbTag != nullptr && doc->m_thumbTag == nullptr) ForgetThumbnail(doc);
}

namespace {

// The IFDs of the block that holds ifd, ifd included.
int CountIfdsBeside(CExifDoc *doc, CNode *ifd)
{
    int count = 0;
    CNode *first = ifd->m_parent != nullptr ? ifd->m_parent->m_child : doc->m_root;
    for (CNode *node = first; node != nullptr; node = node->m_next) {
        if (IsIfdNode(node)) count++;
    }
    return count;
}

// An emptied IFD goes. When the emptying began in the Exif IFD and the IFD is
// the only one of its block, the whole APP1 goes instead; a TIFF file keeps
// its IFD, empty.
void RemoveEmptyIfd(CExifDoc *doc, CNode *ifd, int fromExifIfd)
{
    if (!fromExifIfd || CountIfdsBeside(doc, ifd) >= 2) {
        RemoveNode(doc, ifd);
        return;
    }
    if (ifd->m_parent != nullptr) RemoveNode(doc, ifd->m_parent);
}

// A sub-IFD without entries takes its pointer tag with it, since an IFD of no
// entries can't be read back; the IFD that held the pointer may then be empty
// in turn.
void PruneEmptyChains(CExifDoc *doc, CNode *owner)
{
    int fromExifIfd = 0;
    while (owner != nullptr && CountEntries(owner) == 0) {
        CTag *pointer = AsTag(owner);
        if (pointer == nullptr) {
            if (owner->m_id == NODE_IFD) RemoveEmptyIfd(doc, owner, fromExifIfd);
            return;
        }
        if (pointer->m_id == TAG_EXIF_IFD) fromExifIfd = 1;
        CNode *outer = pointer->m_parent;
        RemoveNode(doc, pointer);
        SyncEntryCount(outer);
        owner = outer;
    }
}

}  // namespace

void RemoveEntry(CExifDoc *doc, CTag *tag)
{
    CNode *owner = tag->m_parent;
    RemoveNode(doc, tag);
    SyncEntryCount(owner);
    PruneEmptyChains(doc, owner);
}

int DeleteTag(CExifDoc *doc, uint32_t number, int ifd)
{
    CTag *tag = FindTagFor(doc, number, ifd);
    if (tag == nullptr) return -1;
    RemoveEntry(doc, tag);
    return 0;
}
