#ifndef ZEXIF_TOOL_DOCUMENT_WALK_H
#define ZEXIF_TOOL_DOCUMENT_WALK_H

#include <cstdint>
#include <string>

#include "zexif/value_meaning.h"

struct CExifDoc;
struct CExifReader;

// A JPEG segment, or the entropy-coded data behind SOS (code 0).
struct MarkerInfo {
    int32_t code = 0;
    bool hasPayload = false;
    int32_t offset = 0;
    int32_t size = 0;
    bool hasSignature = false;  // an APPn's: its first four payload bytes
    std::string signature;
};

struct IfdInfo {
    std::string name;   // "IFD 0", "Exif IFD", "GPS IFD"
    std::string label;  // "0", "exif", "gps", as the JSON output names IFDs
    int32_t entries = 0;
    uint32_t next = 0;
};

// What the walk meets, in file order: markers with the TIFF block below an
// Exif APP1, IFDs with their tags, a sub-IFD between the Begin and End of the
// tag that points to it. A TIFF file has no markers.
class DocumentVisitor {
public:
    virtual ~DocumentVisitor() = default;
    virtual void BeginMarker(const MarkerInfo &marker) = 0;
    virtual void EndMarker() = 0;
    virtual void TiffHeader(bool bigEndian) = 0;
    virtual void BeginIfd(const IfdInfo &ifd) = 0;
    virtual void EndIfd() = 0;
    virtual void BeginTag(const TagView &tag) = 0;
    virtual void EndTag() = 0;
};

// A file as dump shows it, through the library's public calls: a JPEG's
// segments from a loaded document, and each TIFF block (a JPEG's Exif
// segment, a TIFF file) through a reader of its own, with the sub-IFDs the
// library names.
class DumpedFile {
public:
    DumpedFile() = default;
    ~DumpedFile();
    DumpedFile(const DumpedFile &) = delete;
    DumpedFile &operator=(const DumpedFile &) = delete;

    // false, with message "cannot load PATH: REASON", for a file that can't
    // be read.
    bool Open(const std::string &path, std::string *message);
    // The same for bytes in memory, which must outlive the object.
    bool OpenMemory(const std::string &name, const unsigned char *data, uint32_t size);
    int Format() const;
    void Walk(DocumentVisitor &visitor) const;

private:
    std::string m_path;
    CExifReader *m_reader = nullptr;
    CExifDoc *m_doc = nullptr;
};

const char *FormatName(int32_t format);

#endif
