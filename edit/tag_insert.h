#ifndef ZEXIF_EDIT_TAG_INSERT_H
#define ZEXIF_EDIT_TAG_INSERT_H

#include <cstdint>

#include "zexif.h"

struct CExifDoc;

// Set a caller's tag: a tag that is found takes the new value in place, a
// missing one goes in at its sorted place with whatever structure it needs.
// The Exif variants are for the tags of the Exif IFD. 0, or -1 with the tree
// unchanged.
int SetTiffTag(CExifDoc *doc, uint32_t number, const ExifTagValue *value, int ifd);
int SetTiffExifTag(CExifDoc *doc, uint32_t number, const ExifTagValue *value);
int SetJpegTag(CExifDoc *doc, uint32_t number, const ExifTagValue *value, int ifd);
int SetJpegExifTag(CExifDoc *doc, uint32_t number, const ExifTagValue *value);

class CTag;

// Puts entry (see tag_structures.h) into a new IFD of that index in a JPEG's
// block, the one whose IFDs lookups walk. A JPEG without a block gets one,
// its IFD 0 taking entry whatever the index. 0, or -1 with entry destroyed
// and the tree unchanged when the index lies beyond the IFDs there are.
int AddJpegChainIfd(CExifDoc *doc, uint32_t index, CTag *entry);

#endif
