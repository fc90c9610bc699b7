#include "edit/marker_chain.h"
#include "edit/thumbnail_edit.h"
#include "platform/failure_reason.h"
#include "tree/document.h"
#include "tree/walk.h"

namespace {

constexpr int32_t TAG_THUMB_LENGTH = 514;

int32_t SizeOf(const ExifBuffer *buffer)
{
    return static_cast<int32_t>(buffer->size);
}

CNode *FindIfdBehind(CNode *header, uint32_t index)
{
    for (CNode *node = header; node != nullptr; node = node->m_next) {
        if (node->m_id == NODE_IFD && node->m_value == index) return node;
    }
    return nullptr;
}

// Destroys the nodes made for a thumbnail that can't go in, and gives
// m_thumbTag back the tag it had.
int DropUnplaced(CExifDoc *doc, CTag *thumbTag, CNode *const *nodes, int count)
{
    for (int i = 0; i < count; i++) {
        if (nodes[i] != nullptr) DestroyDetached(doc, nodes[i]);
    }
    doc->m_thumbTag = thumbTag;
    return -1;
}

int LimitPassed()
{
    NoteFailure(ZEXIF_ERROR_LIMIT);
    return -1;
}

int FinishThumbnail(CExifDoc *doc, const ExifBuffer *buffer)
{
    doc->m_hasThumb = 1;
    doc->m_thumbLoaded = 1;
    doc->m_thumbType = THUMB_TYPE_JPEG;
    CTag *length = FindThumbLengthTag(doc);
    if (length != nullptr) length->m_value = buffer->size;
    return 0;
}

// Two estimates must hold: the payload of the APP1 that holds the thumbnail as
// the source had it, with the old thumbnail's bytes swapped for the new ones,
// and the payload that the tree would give.
int ReplaceThumbnail(CExifDoc *doc, CMarker *app1, const ExifBuffer *buffer)
{
    CTag *length = AsTag(FindNode(doc->m_thumbTag, TAG_THUMB_LENGTH));
    int64_t old = length != nullptr ? length->m_value : 0;
    if (int64_t(buffer->size) - old + app1->m_size > THUMB_APP1_LIMIT) return LimitPassed();
    if (!FitsWithThumbnail(doc, buffer->size)) return LimitPassed();
    if (!doc->m_thumbTag->SetData(buffer->data, SizeOf(buffer))) return -1;
    return FinishThumbnail(doc, buffer);
}

// What gives way to the new IFDs: everything behind IFD 0 when there is an
// IFD 1, everything behind the header when there is no IFD 0.
CNode *IfdsGivingWay(CNode *header, CNode *ifd0)
{
    if (ifd0 == nullptr) return header->m_next;
    return FindIfdBehind(header, 1) != nullptr ? ifd0->m_next : nullptr;
}

// The new IFD 1 takes the place of the old one and of all behind it. Without
// an IFD 0 a minimal one is made in front of it. All nodes and the copy are
// made, and the size of the rebuilt payload checked, before the tree changes.
// This path gets the test of a replacement with an old size of 0, as a
// rebuilt segment has to fit all the same.
int AddThumbnailToBlock(CExifDoc *doc, CNode *header, const ExifBuffer *buffer)
{
    CMarker *app1 = HoldingMarker(header);
    if (app1 == nullptr) return -1;
    if (int64_t(buffer->size) + app1->m_size > THUMB_APP1_LIMIT) return LimitPassed();
    CNode *ifd0 = FindIfdBehind(header, 0);
    CTag *thumbTag = doc->m_thumbTag;
    CNode *made[2] = {MakeEmptyIfd(1), ifd0 == nullptr ? MakeEmptyIfd(0) : nullptr};
    CNode *newIfd1 = made[0];
    CNode *newIfd0 = made[1];
    if (newIfd1 == nullptr || (ifd0 == nullptr && newIfd0 == nullptr)) return DropUnplaced(doc, thumbTag, made, 2);
    if (!BuildThumbIfd(doc, newIfd1, nullptr)) return DropUnplaced(doc, thumbTag, made, 2);
    if (newIfd0 != nullptr && !BuildIfd0(doc, newIfd0)) return DropUnplaced(doc, thumbTag, made, 2);
    if (!doc->m_thumbTag->SetData(buffer->data, SizeOf(buffer))) return DropUnplaced(doc, thumbTag, made, 2);
    CNode *dropped = IfdsGivingWay(header, ifd0);
    if (!FitsAfterSwap(header, dropped, made, 2)) {
        LimitPassed();
        return DropUnplaced(doc, thumbTag, made, 2);
    }

    CNode *place = ifd0 != nullptr ? ifd0 : header;
    if (dropped != nullptr) place->m_next = nullptr;
    if (newIfd0 != nullptr) {
        InsertAfter(place, newIfd0);
        place = newIfd0;
    }
    InsertAfter(place, newIfd1);
    if (dropped != nullptr) DestroyDetached(doc, dropped);
    return FinishThumbnail(doc, buffer);
}

// A JPEG without a TIFF block gets an APP1 for one: TIFF header, a minimal
// IFD 0 and the thumbnail's IFD 1. An APP1 of another kind (XMP) stays behind
// it as it is.
int AddThumbnailWithApp1(CExifDoc *doc, const ExifBuffer *buffer)
{
    if (int64_t(buffer->size) > THUMB_NEW_LIMIT) return LimitPassed();
    CNode *place = FindApp1Place(doc);
    if (place == nullptr) return -1;
    CTag *thumbTag = doc->m_thumbTag;
    CMarker *marker = MakeExifMarker(0);
    CNode *made[4] = {marker, MakeTiffHeaderNode(), MakeEmptyIfd(0), MakeEmptyIfd(1)};
    for (CNode *node : made) {
        if (node == nullptr) return DropUnplaced(doc, thumbTag, made, 4);
    }
    if (!BuildIfd0(doc, made[2]) || !BuildThumbIfd(doc, made[3], nullptr)) return DropUnplaced(doc, thumbTag, made, 4);
    if (!doc->m_thumbTag->SetData(buffer->data, SizeOf(buffer))) return DropUnplaced(doc, thumbTag, made, 4);

    InsertAfter(place, marker);
    doc->MoveTo(marker);
    doc->AddChild(made[1]);
    doc->AddSibling(made[2]);
    doc->AddSibling(made[3]);
    doc->m_bigEndian = 0;
    doc->m_exifMarker = marker;
    return FinishThumbnail(doc, buffer);
}

// A tag 513 without a length in its IFD is no thumbnail a save writes, so a
// new one is not put in its place.
int HasLengthBeside(const CTag *thumb)
{
    return thumb != nullptr && thumb->m_parent != nullptr &&
           AsTag(FindInChain(thumb->m_parent->m_child, TAG_THUMB_LENGTH)) != nullptr;
}

}  // namespace

// The thumbnail goes where the save writes it: into the block that holds the
// thumbnail's tag, else into the first APP1 that holds a block.
int SetJpegThumbnail(CExifDoc *doc, const ExifBuffer *buffer)
{
    if (doc->m_hasThumb && HasLengthBeside(doc->m_thumbTag)) {
        CMarker *holder = HoldingMarker(doc->m_thumbTag);
        if (holder != nullptr && holder->m_id == MARKER_APP1) return ReplaceThumbnail(doc, holder, buffer);
    }
    CNode *header = FindFirstBlockHeader(doc);
    if (header == nullptr) return AddThumbnailWithApp1(doc, buffer);
    return AddThumbnailToBlock(doc, header, buffer);
}
