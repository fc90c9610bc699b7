#ifndef ZEXIF_READER_JPEG_SCAN_H
#define ZEXIF_READER_JPEG_SCAN_H

class CCachedFileObj;
struct CExifReader;

// Walks the JPEG segments from the file's position up to the first SOS and
// records the Exif APP1 segment (the last one counts) and the FPXR APP2
// segments, up to the table's limit. 0 when the table can't grow.
int ScanJpegSegments(CCachedFileObj *file, CExifReader *reader);

#endif
