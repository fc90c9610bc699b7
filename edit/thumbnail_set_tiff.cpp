#include "edit/marker_chain.h"
#include "edit/thumbnail_edit.h"
#include "platform/failure_reason.h"
#include "tree/document.h"
#include "tree/walk.h"

namespace {

constexpr int32_t TAG_NEW_SUBFILE_TYPE = 254;
constexpr int32_t TAG_THUMB_LENGTH = 514;
// NewSubfileType's value for a reduced-resolution image.
constexpr uint32_t SUBFILE_REDUCED = 1;

int StoreThumbnailBytes(CExifDoc *doc, const ExifBuffer *buffer)
{
    return doc->m_thumbTag->SetData(buffer->data, static_cast<int32_t>(buffer->size));
}

// The TIFF writer walks the indices from 0 to CountIfds() - 1, so the IFDs
// behind a new one move up and every IFD keeps an index of its own.
void RenumberIfdsBehind(CNode *ifd)
{
    uint32_t index = ifd->m_value;
    for (CNode *node = ifd->m_next; node != nullptr; node = node->m_next) {
        if (node->m_id == NODE_IFD) node->m_value = ++index;
    }
}

// A new IFD 1 for the thumbnail behind IFD 0. Without an IFD 0 there is no
// place for it in the file's chain.
int InsertThumbIfd(CExifDoc *doc, const ExifBuffer *buffer, const JpegFrameSize &frame)
{
    CNode *ifd0 = doc->FindIfd(0);
    if (ifd0 == nullptr) return 0;
    CTag *thumbTag = doc->m_thumbTag;
    CNode *fresh = MakeEmptyIfd(1);
    if (fresh == nullptr) return 0;
    if (!BuildThumbIfd(doc, fresh, &frame) || !StoreThumbnailBytes(doc, buffer)) {
        DestroyDetached(doc, fresh);
        doc->m_thumbTag = thumbTag;
        return 0;
    }
    InsertAfter(ifd0, fresh);
    RenumberIfdsBehind(fresh);
    return 1;
}

// IFD 1 is the thumbnail's already: its entries give way to the fixed ones.
// The old entries are destroyed only once the new ones hold the bytes.
int RebuildThumbIfd(CExifDoc *doc, CNode *ifd1, const ExifBuffer *buffer, const JpegFrameSize &frame)
{
    CTag *thumbTag = doc->m_thumbTag;
    CNode *old = ifd1->m_child;
    ifd1->m_child = nullptr;
    if (!BuildThumbIfd(doc, ifd1, &frame)) {
        ifd1->m_child = old;
        return 0;
    }
    if (!StoreThumbnailBytes(doc, buffer)) {
        CNode *made = ifd1->m_child;
        ifd1->m_child = old;
        DestroyDetached(doc, made);
        doc->m_thumbTag = thumbTag;
        return 0;
    }
    if (old != nullptr) DestroyDetached(doc, old);
    return 1;
}

// An IFD 1 whose NewSubfileType says it is no reduced image (another page,
// say) stays, behind the new one.
int PlaceThumbIfd(CExifDoc *doc, const ExifBuffer *buffer, const JpegFrameSize &frame)
{
    CNode *ifd1 = doc->FindIfd(1);
    if (ifd1 == nullptr) return InsertThumbIfd(doc, buffer, frame);
    CTag *subfile = AsTag(FindInChain(ifd1->m_child, TAG_NEW_SUBFILE_TYPE));
    if (subfile != nullptr && subfile->m_value != SUBFILE_REDUCED) return InsertThumbIfd(doc, buffer, frame);
    return RebuildThumbIfd(doc, ifd1, buffer, frame);
}

}  // namespace

// A TIFF image needs its size, which only a JPEG stream with a frame header
// gives: other bytes are refused. IFD 1 is rebuilt for each new thumbnail,
// so that its size is the new one. The flags say what the tree holds, as
// after a JPEG document's call, so that the readers serve the new thumbnail
// and never read the old one over it.
int SetTiffThumbnail(CExifDoc *doc, const ExifBuffer *buffer)
{
    JpegFrameSize frame;
    if (!ReadJpegFrameSize(buffer->data, buffer->size, &frame)) {
        NoteFailure(ZEXIF_ERROR_ARGUMENT);
        return -1;
    }
    if (!PlaceThumbIfd(doc, buffer, frame)) return -1;
    doc->m_hasThumb = 1;
    doc->m_thumbLoaded = 1;
    doc->m_thumbType = THUMB_TYPE_JPEG;
    CTag *length = AsTag(FindNode(doc->m_thumbTag, TAG_THUMB_LENGTH));
    if (length != nullptr) length->m_value = buffer->size;
    return 0;
}
