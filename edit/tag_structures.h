#ifndef ZEXIF_EDIT_TAG_STRUCTURES_H
#define ZEXIF_EDIT_TAG_STRUCTURES_H

#include <cstdint>

#include "zexif.h"

struct CExifDoc;
class CMarker;
class CNode;

// What a new tag brings with it. Each of these makes every node it needs
// before it links any into the tree, and returns 0, or -1 with the tree
// unchanged. With inExifIfd the tag goes into a new Exif IFD, whose pointer
// tag stands where the tag would have stood, and the document records it.

// The tag in owner's chain (an IFD's or a pointer tag's) at its sorted place.
// A childless owner gets a chain of its own; a chain that doesn't begin with
// an entry count is refused.
int AddEntry(CNode *owner, uint32_t number, const ExifTagValue *value);

// A new Exif IFD holding the tag, its pointer sorted into ifd's chain.
int AddExifIfd(CExifDoc *doc, CNode *ifd, uint32_t number, const ExifTagValue *value);

// A new IFD of that index behind place, holding the tag.
int AddIfd(CExifDoc *doc, CNode *place, uint32_t index, uint32_t number, const ExifTagValue *value,
           int inExifIfd);

// A little-endian TIFF block, header and an IFD 0 holding the tag, below an
// APP1 that has none.
int AddBlock(CExifDoc *doc, CMarker *app1, uint32_t number, const ExifTagValue *value, int inExifIfd);

// A new Exif APP1 holding such a block, behind the first APP0, else behind SOI.
int AddApp1(CExifDoc *doc, uint32_t number, const ExifTagValue *value, int inExifIfd);

#endif
