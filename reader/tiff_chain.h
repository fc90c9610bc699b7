#ifndef ZEXIF_READER_TIFF_CHAIN_H
#define ZEXIF_READER_TIFF_CHAIN_H

#include <cstdint>

class CStreamIO;
struct CExifReader;

// IFDs a chain walk visits at most; every offset visited is remembered, so a
// link that points back ends the walk at once.
constexpr int MAX_CHAIN_IFDS = 1024;

// The TIFF block of the Exif segment in memory, for the length of one call.
// m_data is the copy the block was read into, null when the stream looks at
// the reader's head of the file.
struct ExifBlock {
    CStreamIO *m_stream = nullptr;
    unsigned char *m_data = nullptr;
};

// Reads "II" or "MM" and the first IFD offset at the stream's position and
// sets m_bigEndian. 0 for another byte order mark, the mark staying as it
// was, or for a header that the stream cuts off.
int ReadTiffHeader(CStreamIO *stream, CExifReader *reader, int32_t *firstIfd);

// Walks the IFD chain from the TIFF header at the stream's position with the
// general scan: the five cached tags, 513, 34665 and 34853.
void ScanTiffChain(CStreamIO *stream, CExifReader *reader);

// The bytes of the TIFF block that the file really holds, on a memory stream.
// 0 for a segment without a block or no memory.
int LoadExifBlock(CExifReader *reader, ExifBlock *block);
void ReleaseExifBlock(ExifBlock *block);

#endif
