#include "edit/tag_structures.h"

#include <new>

#include "edit/ifd_chain.h"
#include "edit/marker_chain.h"
#include "edit/thumbnail_edit.h"
#include "load/tiff_types.h"
#include "tree/document.h"
#include "tree/walk.h"

namespace {

constexpr int32_t TAG_EXIF_IFD = 34665;

// Every new chain starts out with a single entry.
CNode *MakeCount()
{
    return NewStructuralNode(NODE_ENTRY_COUNT, KIND_IFD_CONTENT, 1);
}

CNode *MakeLink()
{
    return NewStructuralNode(NODE_NEXT_IFD, KIND_PLAIN, 0);
}

CTag *MakeValueTag(uint32_t number, const ExifTagValue *value)
{
    CTag *tag = new (std::nothrow) CTag();
    if (tag == nullptr) return nullptr;
    tag->m_id = static_cast<int32_t>(number);
    if (!tag->SetValue(value)) {
        delete tag;
        return nullptr;
    }
    return tag;
}

// Its value is a placeholder: the save writes the Exif IFD's offset.
CTag *MakeExifPointer()
{
    CTag *tag = new (std::nothrow) CTag();
    if (tag == nullptr) return nullptr;
    tag->m_id = TAG_EXIF_IFD;
    tag->m_type = TIFF_LONG;
    tag->m_count = 1;
    return tag;
}

// 1 when every node was made. Otherwise all of them are destroyed, with what
// already hangs below them; none is in the tree yet.
int AllMade(CNode *const *nodes, int count)
{
    for (int i = 0; i < count; i++) {
        if (nodes[i] != nullptr) continue;
        for (int j = 0; j < count; j++) DeleteTree(nodes[j]);
        return 0;
    }
    return 1;
}

void LinkChain(CNode *owner, CNode *count, CNode *entry, CNode *link)
{
    owner->m_child = count;
    owner->m_hasChild = 1;
    count->m_next = entry;
    entry->m_next = link;
    for (CNode *node = count; node != nullptr; node = node->m_next) node->m_parent = owner;
}

// The entry for a new chain: the tag, or an Exif pointer whose new Exif IFD
// holds the tag. Null when a node can't be made.
CTag *MakeEntry(uint32_t number, const ExifTagValue *value, int inExifIfd)
{
    CTag *tag = MakeValueTag(number, value);
    if (!inExifIfd || tag == nullptr) return tag;
    CTag *pointer = MakeExifPointer();
    CNode *nodes[4] = {tag, pointer, MakeCount(), MakeLink()};
    if (!AllMade(nodes, 4)) return nullptr;
    LinkChain(pointer, nodes[2], tag, nodes[3]);
    return pointer;
}

void NoteExifIfd(CExifDoc *doc, CTag *pointer)
{
    doc->m_exifIfdTag = pointer;
    doc->m_hasExif = 1;
}

// Takes entry: it ends in the tree, or destroyed.
int PlaceEntry(CNode *owner, CTag *entry, uint32_t number)
{
    if (entry == nullptr) return -1;
    if (owner->m_child != nullptr && !IsCountNode(owner->m_child)) {
        DeleteTree(entry);
        return -1;
    }
    if (owner->m_child == nullptr) {
        CNode *nodes[3] = {entry, MakeCount(), MakeLink()};
        if (!AllMade(nodes, 3)) return -1;
        LinkChain(owner, nodes[1], entry, nodes[2]);
        return 0;
    }
    InsertAfter(FindInsertPoint(owner->m_child, number), entry);
    SyncEntryCount(owner);
    return 0;
}

}  // namespace

int AddEntry(CNode *owner, uint32_t number, const ExifTagValue *value)
{
    return PlaceEntry(owner, MakeValueTag(number, value), number);
}

int AddExifIfd(CExifDoc *doc, CNode *ifd, uint32_t number, const ExifTagValue *value)
{
    CTag *pointer = MakeEntry(number, value, 1);
    if (PlaceEntry(ifd, pointer, TAG_EXIF_IFD) != 0) return -1;
    NoteExifIfd(doc, pointer);
    return 0;
}

int AddIfd(CExifDoc *doc, CNode *place, uint32_t index, uint32_t number, const ExifTagValue *value,
           int inExifIfd)
{
    CTag *entry = MakeEntry(number, value, inExifIfd);
    CNode *ifd = MakeEmptyIfd(index);
    CNode *nodes[4] = {entry, ifd, MakeCount(), MakeLink()};
    if (!AllMade(nodes, 4)) return -1;
    LinkChain(ifd, nodes[2], entry, nodes[3]);
    InsertAfter(place, ifd);
    if (inExifIfd) NoteExifIfd(doc, entry);
    return 0;
}

int AddBlock(CExifDoc *doc, CMarker *app1, uint32_t number, const ExifTagValue *value, int inExifIfd)
{
    CTag *entry = MakeEntry(number, value, inExifIfd);
    CNode *header = MakeTiffHeaderNode();
    CNode *ifd = MakeEmptyIfd(0);
    CNode *nodes[5] = {entry, header, ifd, MakeCount(), MakeLink()};
    if (!AllMade(nodes, 5)) return -1;
    LinkChain(ifd, nodes[3], entry, nodes[4]);
    app1->m_child = header;
    app1->m_hasChild = 1;
    header->m_next = ifd;
    header->m_parent = app1;
    ifd->m_parent = app1;
    doc->m_bigEndian = 0;
    if (inExifIfd) NoteExifIfd(doc, entry);
    return 0;
}

// The new marker is the document's Exif APP1, so m_exifMarker names it.
int AddApp1(CExifDoc *doc, uint32_t number, const ExifTagValue *value, int inExifIfd)
{
    CNode *place = FindApp1Place(doc);
    if (place == nullptr) return -1;
    CMarker *app1 = MakeExifMarker(0);
    if (app1 == nullptr) return -1;
    if (AddBlock(doc, app1, number, value, inExifIfd) != 0) {
        delete app1;
        return -1;
    }
    InsertAfter(place, app1);
    doc->m_exifMarker = app1;
    return 0;
}
