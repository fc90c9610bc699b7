#ifndef ZEXIF_READER_READER_H
#define ZEXIF_READER_READER_H

#include <cstdint>

#include "reader/cached_file.h"
#include "zexif.h"

// FPXR segments a reader records; a file with more gets the first ones only.
// The table grows as segments come, since most files have none.
constexpr int READER_MAX_FPXR_SEGMENTS = 3000;

// The "Exif" signature and the two bytes behind it, before the TIFF block.
constexpr int32_t EXIF_PREFIX_SIZE = 6;

// One APP segment of a JPEG file. offset is the file position of the first
// payload byte; size counts the payload, signature included.
struct ReaderSegment {
    char signature[12];
    int32_t size;
    int32_t offset;
};

// Bytes of a value that a slot holds in itself: names and dates fit as a
// rule. A longer value gets a new[] copy.
constexpr uint32_t SLOT_VALUE_IN_PLACE = 32;

// A cached tag value. data points to inPlace or to a new[] copy, in the form
// handed to callers: numbers in host order, 1-byte values in file order. tag
// is 0 while the slot is empty.
struct ReaderTagSlot {
    uint32_t tag = 0;
    uint32_t type = 0;
    uint32_t count = 0;
    int32_t handedOut = 0;  // its value went to a caller, so it is kept as it is
    unsigned char *data = nullptr;
    ReaderTagSlot *next = nullptr;
    unsigned char inPlace[SLOT_VALUE_IN_PLACE];
};

// A value of one tag of one IFD that zRExifGetTagAt handed out, kept as it
// was until the reader ends.
struct ReaderTagAt {
    int32_t ifd = 0;
    TifTagItem *item = nullptr;
    ReaderTagAt *next = nullptr;
};

// The read-only handle: the open file, where its segments lie and a small
// cache. Flags go from 0 to 1 and stay there until the reader ends.
struct CExifReader {
    int32_t m_bigEndian = 0;
    const void *m_path = nullptr;
    // The file, through a cache of its head that lives in the same allocation.
    CCachedFileObj m_file;
    int32_t m_format = 0;
    ReaderSegment m_exifSegment = {};
    int32_t m_fpxrCount = 0;
    int32_t m_fpxrCapacity = 0;
    // new[], left uncleared: only entries below m_fpxrCount are ever read.
    ReaderSegment *m_fpxrSegments = nullptr;
    int32_t m_tagFound = 0;
    int32_t m_hasDateTime = 0;
    int32_t m_hasMake = 0;
    int32_t m_hasModel = 0;
    int32_t m_hasImageDescription = 0;
    int32_t m_hasOrientation = 0;
    int32_t m_hasExif = 0;
    int32_t m_hasAudio = 0;
    int32_t m_hasThumb = 0;
    int32_t m_thumbLoaded = 0;
    int32_t m_exifIfdOffset = -1;
    int32_t m_gpsIfdOffset = -1;
    ReaderTagSlot m_dateTime;
    ReaderTagSlot m_make;
    ReaderTagSlot m_model;
    ReaderTagSlot m_orientation;
    ReaderTagSlot m_imageDescription;
    // Every other tag asked for, one slot each: a value handed out must stay
    // valid until the reader ends, so a slot is never refilled once asked for.
    ReaderTagSlot *m_wantedTags = nullptr;
    ReaderTagAt *m_tagsAt = nullptr;
    ExifBuffer *m_thumb = nullptr;
};

// Scans the file that a new reader has opened. The reader, or null when the
// file is no JPEG or TIFF or can't be scanned: the reader is released then.
CExifReader *ScanNewReader(CExifReader *reader);

#endif
