#ifndef ZEXIF_SAVE_EXIF_REBUILD_H
#define ZEXIF_SAVE_EXIF_REBUILD_H

#include <cstdint>

struct CExifDoc;
class CMarker;
class CNode;

// The most bytes a JPEG segment carries behind its length field.
constexpr int32_t MAX_SEGMENT_PAYLOAD = 65533;

// The TIFF header node below an APP1 marker whose block the tree holds, or
// null: an APP1 of XMP or the like has none, and is copied as it came.
CNode *BlockHeaderOf(CNode *marker);

// Builds the new payload of an Exif APP1 from its tree: "Exif", two NULs, the
// TIFF block of CExifWriter. The marker keeps its old payload, loaded from
// the source if it wasn't, because the tree's offsets (thumbnail, strips)
// name places in it, at this save and at any later one. Sets *payload to a
// new[] block of *size bytes. Returns 1, or 0 when the old payload can't be
// read, the block can't be written, or it wouldn't fit one segment.
int RebuildExifMarker(CExifDoc *doc, CMarker *marker, unsigned char **payload, int32_t *size);

#endif
