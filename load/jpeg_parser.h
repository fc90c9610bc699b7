#ifndef ZEXIF_LOAD_JPEG_PARSER_H
#define ZEXIF_LOAD_JPEG_PARSER_H

class CStreamIO;
class CDocBuilder;

// Walks a JPEG file from its first byte to its end and reports it as a chain
// of markers. Returns 1, also for a damaged file, and 0 only when an Exif
// block is refused by ParseTiff.
int ParseJpeg(CStreamIO *stream, CDocBuilder *builder);

#endif
