#ifndef ZEXIF_SAVE_TIFF_SAVE_H
#define ZEXIF_SAVE_TIFF_SAVE_H

struct CExifDoc;
class CStreamIO;

// Writes a TIFF document to out anew with CExifWriter: header, IFDs, and
// behind each IFD its strips or tiles, copied from the source a chunk at a
// time. Returns 1, or 0 when the source is gone or doesn't hold the image
// data, when the output would pass 2 GiB, or when a big-endian source has
// samples wider than a byte: those keep their byte order in the strips,
// which a little-endian header would misread.
int SaveTiff(CExifDoc *doc, CStreamIO *out);

#endif
