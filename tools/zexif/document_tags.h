#ifndef ZEXIF_TOOL_DOCUMENT_TAGS_H
#define ZEXIF_TOOL_DOCUMENT_TAGS_H

#include <cstdint>

#include "tools/zexif/value_meaning.h"

struct CExifDoc;
class CNode;
class CTag;

// Where a command looks for a tag: a TIFF tag in the IFD of that index, any
// other in the sub-IFD of its group below IFD 0.
struct TagAddress {
    TagGroup group = GROUP_TIFF;
    uint32_t ifd = 0;
    uint32_t number = 0;
};

// The node whose child chain is the addressed IFD: the IFD node, or the
// pointer tag of the Exif, GPS or Interoperability IFD. Null when the
// document has no such IFD.
CNode *FindIfdOwner(CExifDoc *doc, TagGroup group, uint32_t ifd);

// The entry of that number in owner's own chain, not in its sub-IFDs.
CTag *FindEntryIn(const CNode *owner, uint32_t number);

// The addressed entry itself, or null.
CTag *FindAddressedTag(CExifDoc *doc, const TagAddress &address);

// A tag of the tree for showing: its value where the tree holds it, and the
// value of the Ref tag of a GPS coordinate from the same chain. false when
// the value was left on file, its bytes not read at the load.
bool ViewOfTag(const CTag &tag, TagGroup group, TagView *view);

#endif
