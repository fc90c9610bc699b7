#ifndef ZEXIF_EXTENSIONS_READER_IFDS_H
#define ZEXIF_EXTENSIONS_READER_IFDS_H

#include <cstdint>

#include "reader/tiff_chain.h"

class CStreamIO;
struct CExifReader;

// The TIFF data of a reader for the length of one call: a JPEG's Exif block in
// memory, where offsets are plain positions, or a TIFF's file.
struct ReaderTiff {
    ExifBlock m_block;
    CStreamIO *m_stream = nullptr;
    int m_bigEndian = 0;
    int32_t m_firstIfd = 0;
};

// 0 when the reader has no TIFF data that begins with a header.
int OpenReaderTiff(CExifReader *reader, ReaderTiff *tiff);
void CloseReaderTiff(ReaderTiff *tiff);

// Where the IFD of that id begins, found as a load finds it: the chain by its
// links, a sub-IFD by the first tag of its pointer's number that has a
// pointer's form. 0 when there is no such IFD.
int32_t LocateIfd(ReaderTiff *tiff, int ifd);

#endif
