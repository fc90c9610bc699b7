#ifndef ZEXIF_SAVE_SAVE_DOCUMENT_H
#define ZEXIF_SAVE_SAVE_DOCUMENT_H

struct CExifDoc;
class CStreamIO;

// Writes the document's new file to out, opening and closing the audio file
// that planned segments take their bytes from. Returns 1, or 0 when a read,
// a write or a bound failed; what was written is then no file.
int WriteDocumentTo(CExifDoc *doc, CStreamIO *out);

#endif
