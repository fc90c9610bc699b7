#ifndef ZEXIF_SAVE_STRIP_LIST_H
#define ZEXIF_SAVE_STRIP_LIST_H

struct CExifDoc;
class CNode;

// Image data is what a rewrite must carry and the tree doesn't hold. These
// turn the strip tags of each IFD behind a header into a NODE_STRIP_LIST with
// one NODE_STRIP per strip (its offset and size in the source), placed at
// the end of the IFD's own chain. Only the IFD's own tags count: 273 and 279,
// else the tiles' 324 and 325; SHORT and LONG values alike. An IFD that has a
// list already keeps it, so that a second save finds the strips of the first.
// Return 1, or 0 when the tags can't describe strips (other types, counts
// that differ, values beyond 31 bits) or a node can't be made; the IFDs done
// by then keep their lists.

int PrepareStrips(CNode *header);

// The IFDs of a TIFF file.
int PrepareTiffStrips(CExifDoc *doc);

// The IFDs of an Exif block, where strips hold an uncompressed thumbnail:
// the rewrite copies them from the block's old payload. Sets m_stripThumb
// when there is one.
int LoadStripThumbnail(CExifDoc *doc, CNode *header);

#endif
