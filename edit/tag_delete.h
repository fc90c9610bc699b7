#ifndef ZEXIF_EDIT_TAG_DELETE_H
#define ZEXIF_EDIT_TAG_DELETE_H

#include <cstdint>

struct CExifDoc;

// Removes a caller's tag, found as zExifGetTag finds it, and what that leaves
// empty. 0, or -1 with nothing changed when there is no such tag.
int DeleteTag(CExifDoc *doc, uint32_t number, int ifd);

class CNode;
class CTag;

// Removes an entry of the tree and what that leaves empty, as DeleteTag does.
void RemoveEntry(CExifDoc *doc, CTag *tag);

// Unlinks node, of any chain, and destroys it with its subtree. The
// document's shortcuts into it are cleared on the way, and a thumbnail whose
// tag goes is forgotten.
void RemoveNode(CExifDoc *doc, CNode *node);

#endif
