#ifndef ZEXIF_READER_JPEG_SCAN_H
#define ZEXIF_READER_JPEG_SCAN_H

class CStreamIO;
struct CExifReader;

// Walks the JPEG segments from the stream's position up to the first SOS and
// records the Exif APP1 segment (the last one counts) and the FPXR APP2
// segments, as many as the reader's table holds.
void ScanJpegSegments(CStreamIO *stream, CExifReader *reader);

#endif
