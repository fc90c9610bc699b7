#ifndef ZEXIF_TOOL_DOCUMENT_WALK_H
#define ZEXIF_TOOL_DOCUMENT_WALK_H

#include <cstdint>
#include <string>

#include "tools/zexif/value_meaning.h"

struct CExifDoc;

// A JPEG segment, or the entropy-coded data behind SOS (code 0).
struct MarkerInfo {
    int32_t code = 0;
    bool hasPayload = false;
    int32_t offset = 0;
    int32_t size = 0;
    const char *signature = nullptr;  // the first four payload bytes of an APPn
};

struct IfdInfo {
    std::string name;   // "IFD 0", "Exif IFD", "GPS IFD"
    std::string label;  // "0", "exif", "gps", as the JSON output names IFDs
    int32_t entries = -1;
    uint32_t next = 0;
};

// What the walk meets, in file order: markers with the TIFF block below an
// APP1, IFDs with their tags, a sub-IFD between the Begin and End of the tag
// that points to it. A TIFF file has no markers.
class DocumentVisitor {
public:
    virtual ~DocumentVisitor() = default;
    virtual void BeginMarker(const MarkerInfo &marker) = 0;
    virtual void EndMarker() = 0;
    virtual void TiffHeader(bool bigEndian) = 0;
    virtual void BeginIfd(const IfdInfo &ifd) = 0;
    virtual void EndIfd() = 0;
    // read is false for a value left on file at offset.
    virtual void BeginTag(const TagView &tag, bool read, uint32_t offset) = 0;
    virtual void EndTag() = 0;
};

void WalkDocument(const CExifDoc &doc, DocumentVisitor &visitor);

const char *FormatName(int32_t format);

#endif
