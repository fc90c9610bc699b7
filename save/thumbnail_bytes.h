#ifndef ZEXIF_SAVE_THUMBNAIL_BYTES_H
#define ZEXIF_SAVE_THUMBNAIL_BYTES_H

#include "save/entry_plan.h"

struct CExifDoc;
class CNode;

// Reads the document's JPEG thumbnail into m_thumbTag when the tag lies in
// the block being written (below top; anywhere for a null top) and the
// source holds its bytes, and marks it loaded. The document keeps serving its
// thumbnail after the save has closed the source. A thumbnail the source
// doesn't hold is left as it is, for the writer to leave out. Returns 1, or 0
// when the bytes can't be read or kept.
int BringThumbnailIn(CExifDoc *doc, const BlockSource &source, const CNode *top);

#endif
