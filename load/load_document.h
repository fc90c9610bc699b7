#ifndef ZEXIF_LOAD_LOAD_DOCUMENT_H
#define ZEXIF_LOAD_LOAD_DOCUMENT_H

struct CExifDoc;

// Builds the tree of a new document from its source, m_stream, by the first
// bytes: a JPEG or a TIFF file. Returns the document, or null with the
// document deleted and the failure recorded for the export that loads.
CExifDoc *ParseNewDocument(CExifDoc *doc);

#endif
