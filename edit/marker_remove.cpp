#include "edit/marker_chain.h"
#include "platform/failure_reason.h"
#include "tree/document.h"
#include "zexif.h"

namespace {

// Bits of m_thumbType that go with the APP1 segments.
constexpr uint32_t THUMB_TYPE_APP1_BITS = 0xe00;

// The first four payload bytes as a little-endian number, the first byte low.
int SignatureMatches(const CMarker *marker, uint32_t signature)
{
    if (marker->m_sig == nullptr) return 0;
    const unsigned char *sig = reinterpret_cast<const unsigned char *>(marker->m_sig);
    uint32_t value = uint32_t(sig[0]) | uint32_t(sig[1]) << 8 | uint32_t(sig[2]) << 16 | uint32_t(sig[3]) << 24;
    return value == signature;
}

// Every APP1 goes, whatever it holds, and with it the document's thumbnail
// and Exif shortcuts. m_hasExif keeps saying what the file had.
void RemoveAllApp1(CExifDoc *doc)
{
    for (CMarker *app1 = FindTopLevelMarker(doc, MARKER_APP1); app1 != nullptr;
         app1 = FindTopLevelMarker(doc, MARKER_APP1)) {
        RemoveTopLevelNode(doc, app1);
    }
    doc->m_thumbType &= ~THUMB_TYPE_APP1_BITS;
    doc->m_thumbLoaded = 0;
    doc->m_hasThumb = 0;
    doc->m_exifMarker = nullptr;
    doc->m_exifIfdTag = nullptr;
    doc->m_thumbTag = nullptr;
}

}  // namespace

// Only markers are removed: the search keeps to the top-level chain, where a
// tag of the same number never stands.
int zExifRemoveMarker(CExifDoc *doc, int marker, uint32_t signature)
{
    BeginExport();
    if (doc == nullptr) return FailExport(ZEXIF_ERROR_ARGUMENT);
    if (doc->m_format != FORMAT_JPEG) return FailExport(ZEXIF_ERROR_FORMAT);
    CMarker *found = FindTopLevelMarker(doc, marker);
    if (found == nullptr) return FailExport(ZEXIF_ERROR_NOT_FOUND);
    if (SignatureMatches(found, signature)) RemoveTopLevelNode(doc, found);
    if (marker == MARKER_APP1) RemoveAllApp1(doc);
    return 0;
}
