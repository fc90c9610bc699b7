#ifndef ZEXIF_EDIT_TAG_DELETE_H
#define ZEXIF_EDIT_TAG_DELETE_H

#include <cstdint>

struct CExifDoc;

// Removes a caller's tag, found as zExifGetTag finds it, and what that leaves
// empty. 0, or -1 with nothing changed when there is no such tag.
int DeleteTag(CExifDoc *doc, uint32_t number, int ifd);

#endif
