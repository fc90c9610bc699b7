#include "edit/tag_structures.h"

#include <new>

#include "edit/ifd_chain.h"
#include "edit/marker_chain.h"
#include "edit/thumbnail_edit.h"
#include "load/tiff_types.h"
#include "platform/failure_reason.h"
#include "tree/document.h"
#include "tree/walk.h"
#include "zexif.h"

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

// Its value is a placeholder: the save writes the sub-IFD's offset.
CTag *MakePointer(uint32_t number)
{
    CTag *tag = new (std::nothrow) CTag();
    if (tag == nullptr) {
        NoteFailure(ZEXIF_ERROR_MEMORY);
        return nullptr;
    }
    tag->m_id = static_cast<int32_t>(number);
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

}  // namespace

void NoteSubIfd(CExifDoc *doc, CTag *entry)
{
    if (entry->m_id != TAG_EXIF_IFD || !IsCountNode(entry->m_child)) return;
    doc->m_exifIfdTag = entry;
    doc->m_hasExif = 1;
}

CTag *MakeValueTag(uint32_t number, const ExifTagValue *value)
{
    CTag *tag = new (std::nothrow) CTag();
    if (tag == nullptr) {
        NoteFailure(ZEXIF_ERROR_MEMORY);
        return nullptr;
    }
    tag->m_id = static_cast<int32_t>(number);
    if (!tag->SetValue(value)) {
        delete tag;
        return nullptr;
    }
    return tag;
}

CTag *WrapInSubIfd(uint32_t pointer, CTag *entry)
{
    if (entry == nullptr) return nullptr;
    CTag *wrapper = MakePointer(pointer);
    CNode *nodes[4] = {entry, wrapper, MakeCount(), MakeLink()};
    if (!AllMade(nodes, 4)) return nullptr;
    LinkChain(wrapper, nodes[2], entry, nodes[3]);
    return wrapper;
}

CTag *MakeEntry(uint32_t number, const ExifTagValue *value, int inExifIfd)
{
    CTag *tag = MakeValueTag(number, value);
    return inExifIfd ? WrapInSubIfd(TAG_EXIF_IFD, tag) : tag;
}

int PlaceEntry(CExifDoc *doc, CNode *owner, CTag *entry)
{
    if (entry == nullptr) return -1;
    if (owner->m_child != nullptr && !IsCountNode(owner->m_child)) {
        DeleteTree(entry);
        NoteFailure(ZEXIF_ERROR_DAMAGED);
        return -1;
    }
    if (owner->m_child == nullptr) {
        CNode *nodes[3] = {entry, MakeCount(), MakeLink()};
        if (!AllMade(nodes, 3)) return -1;
        LinkChain(owner, nodes[1], entry, nodes[2]);
    } else {
        InsertAfter(FindInsertPoint(owner->m_child, static_cast<uint32_t>(entry->m_id)), entry);
        SyncEntryCount(owner);
    }
    NoteSubIfd(doc, entry);
    return 0;
}

int AddEntry(CExifDoc *doc, CNode *owner, uint32_t number, const ExifTagValue *value)
{
    return PlaceEntry(doc, owner, MakeValueTag(number, value));
}

int AddExifIfd(CExifDoc *doc, CNode *ifd, uint32_t number, const ExifTagValue *value)
{
    return PlaceEntry(doc, ifd, MakeEntry(number, value, 1));
}

int AddIfd(CExifDoc *doc, CNode *place, uint32_t index, CTag *entry)
{
    CNode *ifd = MakeEmptyIfd(index);
    CNode *nodes[4] = {entry, ifd, MakeCount(), MakeLink()};
    if (!AllMade(nodes, 4)) return -1;
    LinkChain(ifd, nodes[2], entry, nodes[3]);
    InsertAfter(place, ifd);
    NoteSubIfd(doc, entry);
    return 0;
}

int AddBlock(CExifDoc *doc, CMarker *app1, CTag *entry)
{
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
    NoteSubIfd(doc, entry);
    return 0;
}

// The new marker is the document's Exif APP1, so m_exifMarker names it.
int AddApp1(CExifDoc *doc, CTag *entry)
{
    CNode *place = FindApp1Place(doc);
    CMarker *app1 = place != nullptr ? MakeExifMarker(0) : nullptr;
    if (app1 == nullptr) {
        if (place == nullptr) NoteFailure(ZEXIF_ERROR_DAMAGED);
        DeleteTree(entry);
        return -1;
    }
    if (AddBlock(doc, app1, entry) != 0) {
        delete app1;
        return -1;
    }
    InsertAfter(place, app1);
    doc->m_exifMarker = app1;
    return 0;
}
