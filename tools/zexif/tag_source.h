#ifndef ZEXIF_TOOL_TAG_SOURCE_H
#define ZEXIF_TOOL_TAG_SOURCE_H

#include <string>

#include "tools/zexif/document_tags.h"

struct CExifDoc;
struct CExifReader;

// The tags of one file, for the commands that only look at them: read through
// the read-only family where it gives what the tree would, and from the tree,
// loaded at the first tag that needs it, for the rest. The reader gives the
// Exif IFD's tags always; IFD 0's tags that it keeps (Make, Model, DateTime,
// ImageDescription, Orientation) only in a JPEG without thumbnail, since it
// answers those from the last IFD of the chain that has them, and cameras
// give the thumbnail's IFD an orientation of its own. The views found point
// into the reader or the document and live as long as the source.
class TagSource {
public:
    // Opens the file with the read-only family; when it can't, Reader() is
    // null and message says why.
    TagSource(const std::string &path, std::string *message);
    ~TagSource();
    TagSource(const TagSource &) = delete;
    TagSource &operator=(const TagSource &) = delete;

    CExifReader *Reader() const { return m_reader; }

    // false when the file has no such tag. message says why when the tree
    // was needed and the file doesn't load, and stays as it was otherwise.
    bool Find(const TagAddress &address, TagView *view, std::string *message);

private:
    bool ReaderAnswersFor(const TagAddress &address) const;
    bool FindInReader(const TagAddress &address, TagView *view) const;

    const std::string m_path;
    CExifReader *m_reader;
    CExifDoc *m_doc = nullptr;
};

#endif
