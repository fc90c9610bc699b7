#ifndef ZEXIF_READER_IFD_SCAN_H
#define ZEXIF_READER_IFD_SCAN_H

#include <cstdint>

class CStreamIO;
struct CExifReader;

// Reads the IFD at the stream's position and acts on the tags the reader
// keeps: the five cached tags, 513, 34665, 34853 and, when wantedTag isn't 0,
// that tag, whose scan ends where it is found. exifRelative 1 says the stream
// is the file and value offsets count from the TIFF block of the Exif
// segment. Returns the next-IFD link; 0 when the IFD is empty, can't be read,
// holds an entry of type 0, or the file ends where the link should stand.
int32_t ScanIfd(int bigEndian, CStreamIO *stream, CExifReader *reader, uint32_t wantedTag, int exifRelative);

#endif
