#include "edit/tag_insert.h"

#include "edit/ifd_chain.h"
#include "edit/marker_chain.h"
#include "edit/tag_lookup.h"
#include "edit/tag_structures.h"
#include "platform/failure_reason.h"
#include "tree/document.h"
#include "tree/walk.h"
#include "zexif.h"

namespace {

constexpr int32_t TAG_THUMB_OFFSET = 513;

int Replace(CTag *tag, const ExifTagValue *value)
{
    return tag->SetValue(value) ? 0 : -1;
}

// The header of the block whose IFDs FindIfd walks, so that a new IFD lands
// where lookups see it; without any IFD, the header of the first APP1 that
// has a block. An APP1 holding XMP or the like has none.
CNode *FindBlockHeader(CExifDoc *doc)
{
    CNode *ifd = FindNode(doc->m_root, NODE_IFD);
    if (IsIfdNode(ifd)) {
        CNode *first = ifd->m_parent != nullptr ? ifd->m_parent->m_child : doc->m_root;
        return FindInChain(first, NODE_TIFF_HEADER);
    }
    for (CNode *marker = doc->m_root; marker != nullptr; marker = marker->m_next) {
        if (marker->m_id != MARKER_APP1) continue;
        CNode *header = FindInChain(marker->m_child, NODE_TIFF_HEADER);
        if (header != nullptr) return header;
    }
    return nullptr;
}

uint32_t CountIfdsBehind(CNode *header)
{
    uint32_t count = 0;
    for (CNode *node = header->m_next; node != nullptr; node = node->m_next) {
        if (IsIfdNode(node)) count++;
    }
    return count;
}

CNode *FindIfdBehind(CNode *header, uint32_t index)
{
    for (CNode *node = header->m_next; node != nullptr; node = node->m_next) {
        if (IsIfdNode(node) && node->m_value == index) return node;
    }
    return nullptr;
}

// Behind the last IFD of a lower index, else right behind the header.
CNode *FindIfdPlace(CNode *header, uint32_t index)
{
    CNode *place = header;
    for (CNode *node = header->m_next; node != nullptr; node = node->m_next) {
        if (IsIfdNode(node) && node->m_value < index) place = node;
    }
    return place;
}

void ShiftIfdIndices(CNode *from)
{
    for (CNode *node = from; node != nullptr; node = node->m_next) {
        if (IsIfdNode(node)) node->m_value++;
    }
}

int HoldsThumbnail(CNode *ifd)
{
    return AsTag(FindInChain(ifd->m_child, TAG_THUMB_OFFSET)) != nullptr;
}

// A JPEG without a TIFF block gets one: in its Exif APP1 when that never had
// a tree, else in a new APP1.
int AddExifBlock(CExifDoc *doc, CTag *entry)
{
    CMarker *app1 = doc->m_exifMarker;
    if (app1 != nullptr && app1->m_child == nullptr) return AddBlock(doc, app1, entry);
    return AddApp1(doc, entry);
}

// An IFD that stands beyond the block's number of IFDs would be skipped by
// the save, which visits the indices up to that number only.
int AddJpegIfd(CExifDoc *doc, CNode *header, uint32_t index, CTag *entry)
{
    if (index > CountIfdsBehind(header)) {
        DeleteTree(entry);
        NoteFailure(ZEXIF_ERROR_NOT_FOUND);
        return -1;
    }
    return AddIfd(doc, FindIfdPlace(header, index), index, entry);
}

// An IFD 0 that holds the thumbnail's offset becomes IFD 1, where the save
// writes a thumbnail, and the Exif IFD goes into a new IFD 0 in front of it.
// Every IFD behind the new one moves up by one.
int AddExifIfdInFront(CExifDoc *doc, CNode *header, CTag *entry)
{
    if (AddIfd(doc, header, 0, entry) != 0) return -1;
    ShiftIfdIndices(header->m_next->m_next);
    return 0;
}

}  // namespace

int AddJpegChainIfd(CExifDoc *doc, uint32_t index, CTag *entry)
{
    CNode *header = FindBlockHeader(doc);
    if (header != nullptr) return AddJpegIfd(doc, header, index, entry);
    return AddExifBlock(doc, entry);
}

// The whole tree is searched for the tag, not only the IFD named.
int SetTiffTag(CExifDoc *doc, uint32_t number, const ExifTagValue *value, int ifd)
{
    CNode *target = doc->FindIfd(static_cast<uint32_t>(ifd));
    if (target == nullptr) return -1;
    CTag *found = FindEntry(doc->m_root, number);
    if (found != nullptr) return Replace(found, value);
    return AddEntry(doc, target, number, value);
}

// No IFD is made for a TIFF file: without an IFD 0 there is no place for the
// Exif IFD.
int SetTiffExifTag(CExifDoc *doc, uint32_t number, const ExifTagValue *value)
{
    CTag *found = FindExifEntry(doc, number);
    if (found != nullptr) return Replace(found, value);
    if (doc->m_exifIfdTag != nullptr) return AddEntry(doc, doc->m_exifIfdTag, number, value);
    CNode *ifd0 = doc->FindIfd(0);
    if (ifd0 == nullptr) return -1;
    return AddExifIfd(doc, ifd0, number, value);
}

int SetJpegTag(CExifDoc *doc, uint32_t number, const ExifTagValue *value, int ifd)
{
    uint32_t index = static_cast<uint32_t>(ifd);
    CNode *target = doc->FindIfd(index);
    if (target != nullptr) {
        CTag *found = FindEntry(target, number);
        if (found != nullptr) return Replace(found, value);
        return AddEntry(doc, target, number, value);
    }
    return AddJpegChainIfd(doc, index, MakeValueTag(number, value));
}

// An Exif IFD that exists takes the tag, wherever it stands, so that no
// second one hides the tags of the first.
int SetJpegExifTag(CExifDoc *doc, uint32_t number, const ExifTagValue *value)
{
    CTag *found = FindExifEntry(doc, number);
    if (found != nullptr) return Replace(found, value);
    if (doc->m_exifIfdTag != nullptr) return AddEntry(doc, doc->m_exifIfdTag, number, value);
    CNode *header = FindBlockHeader(doc);
    CTag *entry = MakeEntry(number, value, 1);
    if (header == nullptr) return AddExifBlock(doc, entry);
    CNode *ifd0 = FindIfdBehind(header, 0);
    if (ifd0 == nullptr) return AddIfd(doc, header, 0, entry);
    if (HoldsThumbnail(ifd0)) return AddExifIfdInFront(doc, header, entry);
    return PlaceEntry(doc, ifd0, entry);
}
