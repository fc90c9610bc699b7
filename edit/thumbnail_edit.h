#ifndef ZEXIF_EDIT_THUMBNAIL_EDIT_H
#define ZEXIF_EDIT_THUMBNAIL_EDIT_H

#include <cstdint>

#include "edit/jpeg_frame.h"
#include "zexif.h"

struct CExifDoc;
class CNode;
class CTag;

// Bound on the estimated APP1 payload when a thumbnail goes into an APP1 that
// stands, and on the thumbnail itself when the APP1 has to be made for it.
// Both leave room below the 65,533 bytes that a segment can carry.
constexpr int64_t THUMB_APP1_LIMIT = 63900;
constexpr int64_t THUMB_NEW_LIMIT = 63500;

// The tag 514 that goes with m_thumbTag: behind it in its walk, else the first
// of the tree. Null when there is none.
CTag *FindThumbLengthTag(CExifDoc *doc);

// Reads the thumbnail that m_thumbTag and its tag 514 locate into a new malloc
// block for out, and keeps a copy in m_thumbTag unless that already holds the
// document's thumbnail. Returns 1, or 0 with out untouched.
int ReadThumbnail(CExifDoc *doc, ExifBuffer *out);

// Fill a childless IFD node with the tags of a thumbnail's IFD (as a reduced
// image of the frame's size in a TIFF file, for a frame; as an Exif
// thumbnail's for none) or of a minimal IFD 0. The node gets its children
// only when all of them could be made; BuildThumbIfd then points m_thumbTag
// at its tag 513. Return 1, or 0 with nothing changed.
int BuildThumbIfd(CExifDoc *doc, CNode *node, const JpegFrameSize *frame);
int BuildIfd0(CExifDoc *doc, CNode *node);

// A new NODE_IFD node with that index and no children, or null.
CNode *MakeEmptyIfd(uint32_t index);
// A new little-endian NODE_TIFF_HEADER node, or null.
CNode *MakeTiffHeaderNode();

// Whether the APP1 payload that a save rebuilds from the tree stays within
// THUMB_APP1_LIMIT: with the IFDs of the chain dropped swapped for the
// detached IFD nodes added, or with m_thumbTag holding newSize bytes.
int FitsAfterSwap(CNode *header, CNode *dropped, CNode *const *added, int addedCount);
int FitsWithThumbnail(CExifDoc *doc, int64_t newSize);

// Put buffer's bytes into the document as its thumbnail. 0, or -1 with the
// document unchanged.
int SetJpegThumbnail(CExifDoc *doc, const ExifBuffer *buffer);
int SetTiffThumbnail(CExifDoc *doc, const ExifBuffer *buffer);

#endif
