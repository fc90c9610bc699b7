#include <new>

#include "load/tiff_types.h"
#include "reader/cached_file.h"
#include "reader/jpeg_scan.h"
#include "reader/reader.h"
#include "reader/tag_slots.h"
#include "reader/thumbnail.h"
#include "reader/tiff_chain.h"
#include "streams/stream.h"
#include "zexif.h"

namespace {

int IsJpegStart(const unsigned char *bytes)
{
    return bytes[0] == 0xFF && bytes[1] == 0xD8;
}

int IsTiffStart(const unsigned char *bytes)
{
    return IsByteOrderMark(bytes);
}

void ReleaseReader(CExifReader *reader)
{
    DeleteStream(reader->m_stream);
    ReleaseTagSlot(reader->m_dateTime);
    ReleaseTagSlot(reader->m_make);
    ReleaseTagSlot(reader->m_model);
    ReleaseTagSlot(reader->m_orientation);
    ReleaseTagSlot(reader->m_imageDescription);
    ReleaseTagSlot(reader->m_wantedTags);
    ReleaseThumbnail(reader);
    delete reader;
}

// The file, read through a cache of its head; null when it can't be opened.
CStreamIO *OpenReaderFile(const void *path)
{
    CStreamIO *file = nullptr;
    if (!CreateFileStream(&file, path, STREAM_READ)) return nullptr;
    CStreamIO *cached = new (std::nothrow) CCachedFileObj(file);
    if (cached == nullptr) DeleteStream(file);
    return cached;
}

}  // namespace

// The FPXR table is left uncleared by the allocation: a reader costs no more
// than the segments its scan records.
CExifReader *zRExifBeginRead(const void *path)
{
    CExifReader *reader = new (std::nothrow) CExifReader;
    if (reader == nullptr) return nullptr;
    CStreamIO *stream = OpenReaderFile(path);
    if (stream == nullptr) {
        delete reader;
        return nullptr;
    }
    reader->m_path = path;
    reader->m_stream = stream;
    unsigned char start[4] = {};
    stream->Read(start, 4);
    stream->Seek(0, 0);
    if (IsJpegStart(start)) {
        reader->m_format = FORMAT_JPEG;
        ScanJpegSegments(stream, reader);
        return reader;
    }
    if (IsTiffStart(start)) {
        reader->m_format = FORMAT_TIFF;
        ScanTiffChain(stream, reader);
        return reader;
    }
    ReleaseReader(reader);
    return nullptr;
}

void zRExifEndRead(CExifReader *reader)
{
    ReleaseReader(reader);
}

int zRExifGetFileFormat(CExifReader *reader)
{
    return reader->m_format;
}

int zRExifIsExifExist(CExifReader *reader)
{
    return reader->m_hasExif;
}
