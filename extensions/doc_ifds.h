#ifndef ZEXIF_EXTENSIONS_DOC_IFDS_H
#define ZEXIF_EXTENSIONS_DOC_IFDS_H

#include <cstdint>

#include "zexif.h"

class CNode;

// The node whose child chain is the IFD of that id in a document: the IFD
// node of that index, or the pointer tag of a sub-IFD. Null when the document
// has no such IFD.
CNode *FindIfdOwner(CExifDoc *doc, int ifd);

// Adds the tag to the IFD of that id, which the document lacks: the IFD is
// made, and whatever it hangs from. A pointer of the right number that points
// nowhere yet takes the new sub-IFD. 0, or -1 with the tree unchanged.
int AddTagWithIfd(CExifDoc *doc, int ifd, uint32_t number, const ExifTagValue *value);

#endif
