#include "load/doc_builder.h"
#include "load/tiff_parser.h"
#include "streams/stream.h"
#include "tree/document.h"
#include "tree/walk.h"

// The Exif APP1 payload: "Exif", two bytes, then the TIFF block.
static constexpr int EXIF_SIGNATURE_SIZE = 6;

// A block that has been parsed into the tree is never parsed again: the tree
// is what edits and deletions changed, and rebuilding it from the stored
// payload would undo them and leave m_thumbTag on discarded nodes. Only a
// marker that never got a tree (its block could not be parsed at load) is
// parsed here.
CTag *CExifDoc::FindExifTag(uint32_t tag)
{
    if (m_exifIfdTag != nullptr) return AsTag(FindNode(m_exifIfdTag, static_cast<int32_t>(tag)));
    if (m_exifMarker == nullptr || m_exifMarker->m_child != nullptr) return nullptr;
    unsigned char *data = nullptr;
    int32_t size = 0;
    if (!m_exifMarker->Load(m_stream, &data, &size) || size <= EXIF_SIGNATURE_SIZE) return nullptr;
    MoveTo(m_exifMarker);
    CStreamIO *block = nullptr;
    if (!CreateMemoryStream(&block, data + EXIF_SIGNATURE_SIZE, size - EXIF_SIGNATURE_SIZE)) return nullptr;
    CDocBuilder builder(this);
    ParseTiff(block, &builder);
    DeleteStream(block);
    if (m_exifIfdTag == nullptr) return nullptr;
    return AsTag(FindNode(m_exifIfdTag, static_cast<int32_t>(tag)));
}
