#ifndef ZEXIF_SAVE_JPEG_SAVE_H
#define ZEXIF_SAVE_JPEG_SAVE_H

struct CExifDoc;
class CStreamIO;

// Writes a JPEG document to out: the top-level markers in their order, each
// segment with the bytes it has in the tree or in the source, every APP1 that
// holds a TIFF block in the tree rebuilt from it, and the planned audio
// segments filled from the audio file. What is still on file is copied from
// the source in chunks and stays there: the document's source closes after
// the save, so a second save of a document that needs it fails. Returns 1, or
// 0 when a segment can't be read whole, wouldn't fit its length field, or a
// write fails.
int SaveJpeg(CExifDoc *doc, CStreamIO *out);

#endif
