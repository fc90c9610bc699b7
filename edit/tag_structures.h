#ifndef ZEXIF_EDIT_TAG_STRUCTURES_H
#define ZEXIF_EDIT_TAG_STRUCTURES_H

#include <cstdint>

#include "zexif.h"

struct CExifDoc;
class CMarker;
class CNode;
class CTag;

// What a new tag brings with it. An entry is made first, with the sub-IFDs
// that hold it; each routine below takes one, null for one that couldn't be
// made, and puts it into the tree or destroys it. Each makes every node it
// needs before it links any into the tree, and returns 0, or -1 with the tree
// unchanged. An Exif pointer that holds a new Exif IFD is recorded by the
// document as its Exif IFD.

// A new tag with that number and value, or null.
CTag *MakeValueTag(uint32_t number, const ExifTagValue *value);

// A new pointer tag of that number whose new sub-IFD holds entry. Null, with
// entry destroyed, when a node can't be made.
CTag *WrapInSubIfd(uint32_t pointer, CTag *entry);

// An Exif pointer that holds an Exif IFD is the document's Exif IFD from now.
void NoteSubIfd(CExifDoc *doc, CTag *entry);

// The tag, wrapped in a new Exif IFD when inExifIfd is set.
CTag *MakeEntry(uint32_t number, const ExifTagValue *value, int inExifIfd);

// Entry in owner's chain (an IFD's or a pointer tag's) at its sorted place.
// A childless owner gets a chain of its own; a chain that doesn't begin with
// an entry count is refused.
int PlaceEntry(CExifDoc *doc, CNode *owner, CTag *entry);

// The tag in owner's chain.
int AddEntry(CExifDoc *doc, CNode *owner, uint32_t number, const ExifTagValue *value);

// A new Exif IFD holding the tag, its pointer sorted into ifd's chain.
int AddExifIfd(CExifDoc *doc, CNode *ifd, uint32_t number, const ExifTagValue *value);

// A new IFD of that index behind place, holding entry.
int AddIfd(CExifDoc *doc, CNode *place, uint32_t index, CTag *entry);

// A little-endian TIFF block, header and an IFD 0 holding entry, below an
// APP1 that has none.
int AddBlock(CExifDoc *doc, CMarker *app1, CTag *entry);

// A new Exif APP1 holding such a block, behind the first APP0, else behind SOI.
int AddApp1(CExifDoc *doc, CTag *entry);

#endif
