#ifndef ZEXIF_SAVE_JPEG_SAVE_H
#define ZEXIF_SAVE_JPEG_SAVE_H

struct CExifDoc;
class CStreamIO;

// Writes a JPEG document to out: the top-level markers in their order, each
// segment with the bytes it has in the tree or in the source, every APP1 that
// holds a TIFF block in the tree rebuilt from it, and the planned audio
// segments filled from the audio file. Segments read from the source stay
// in memory, so that a later save needs no source. Returns 1, or 0 when a
// segment can't be read whole, wouldn't fit its length field, or a write
// fails.
int SaveJpeg(CExifDoc *doc, CStreamIO *out);

#endif
