#ifndef ZEXIF_READER_THUMBNAIL_H
#define ZEXIF_READER_THUMBNAIL_H

#include <cstdint>

class CStreamIO;
struct CExifReader;

// Reads a TIFF header at the stream's position and searches IFD 1 for the
// thumbnail: loadData 0 stops at tag 513, 1 loads the bytes that 513 and 514
// locate. 1 when header and IFD 0 offset passed, whatever IFD 1 held.
int ScanThumbnail(CStreamIO *stream, CExifReader *reader, int loadData);

// The search itself, the stream standing on IFD 0.
void ScanThumbnailIfd(int bigEndian, CStreamIO *stream, CExifReader *reader, int loadData);

// Copies size bytes into the buffer of m_thumb. 0 for a size of 0, which
// leaves an empty buffer, or for no memory.
int StoreThumbnail(CExifReader *reader, const unsigned char *data, uint32_t size);
int FetchThumbnail(CExifReader *reader, unsigned char **outData, uint32_t *outSize);
void ReleaseThumbnail(CExifReader *reader);

#endif
