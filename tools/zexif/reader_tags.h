#ifndef ZEXIF_TOOL_READER_TAGS_H
#define ZEXIF_TOOL_READER_TAGS_H

#include "tools/zexif/document_tags.h"

struct CExifReader;

// Whether the read-only family gives the addressed tag as the tree does: the
// Exif IFD's tags always. IFD 0's tags that the reader keeps (Make, Model,
// DateTime, ImageDescription, Orientation) only in a JPEG without thumbnail,
// since the reader answers those from the last IFD of the chain that has
// them, and cameras give the thumbnail's IFD an orientation of its own.
bool ReaderAnswersFor(CExifReader *reader, const TagAddress &address);

// The tag as the reader delivers it; the view points into the reader and
// lives until it ends. false when the file has no such tag.
bool ReaderViewOfTag(CExifReader *reader, const TagAddress &address, TagView *view);

#endif
