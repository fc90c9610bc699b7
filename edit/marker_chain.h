#ifndef ZEXIF_EDIT_MARKER_CHAIN_H
#define ZEXIF_EDIT_MARKER_CHAIN_H

#include <cstdint>

struct CExifDoc;
class CMarker;
class CNode;

constexpr int32_t MARKER_SOI = 0xD8;
constexpr int32_t MARKER_APP0 = 0xE0;
constexpr int32_t MARKER_APP1 = 0xE1;

// The first marker of that code. Markers stand in the top-level chain only: a
// walk of the whole tree could meet a tag of the same number first.
CMarker *FindTopLevelMarker(CExifDoc *doc, int32_t code);

// The top-level marker above node: in a JPEG document the APP1 whose block
// holds it. Null when the top of node's tree is no marker.
CMarker *HoldingMarker(CNode *node);

// The TIFF header of the first APP1 that holds a TIFF block, or null.
CNode *FindFirstBlockHeader(CExifDoc *doc);

// The marker behind which a new APP1 goes: the first APP0, else SOI. Null in
// a chain that has neither.
CNode *FindApp1Place(CExifDoc *doc);

// A new APP1 marker labelled "Exif" whose payload is of that size and on no
// file. Null when it can't be made.
CMarker *MakeExifMarker(int32_t size);

// Destroys a chain that has been unlinked from the tree, with all below it.
// The document's shortcuts and cursor are taken off its nodes first, so that
// none of them is left dangling.
void DestroyDetached(CExifDoc *doc, CNode *chain);

// Unlinks a node of the top-level chain and destroys it with its subtree.
void RemoveTopLevelNode(CExifDoc *doc, CNode *node);

#endif
