#include <new>

#include "load/tiff_types.h"
#include "platform/failure_reason.h"
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
    delete[] reader->m_fpxrSegments;
    ReleaseTagSlots(reader);
    ReleaseThumbnail(reader);
    delete reader;
}

}  // namespace

CExifReader *ScanNewReader(CExifReader *reader)
{
    CCachedFileObj &file = reader->m_file;
    unsigned char start[4] = {};
    file.Read(start, 4);
    file.Seek(0, 0);
    if (IsJpegStart(start)) {
        reader->m_format = FORMAT_JPEG;
        if (ScanJpegSegments(&file, reader)) return reader;
        NoteFailure(ZEXIF_ERROR_MEMORY);
    } else if (IsTiffStart(start)) {
        reader->m_format = FORMAT_TIFF;
        ScanTiffChain(&file, reader);
        return reader;
    }
    ReleaseReader(reader);
    FailExport(ZEXIF_ERROR_FORMAT);
    return nullptr;
}

// One allocation holds the reader and the head of its file; the head's buffer
// is left uncleared, as only bytes read into it are ever looked at. The first
// read brings in the head: the rest of the scan costs no system call as a rule.
CExifReader *zRExifBeginRead(const void *path)
{
    BeginExport();
    if (path == nullptr) {
        FailExport(ZEXIF_ERROR_ARGUMENT);
        return nullptr;
    }
    CExifReader *reader = new (std::nothrow) CExifReader;
    if (reader == nullptr) {
        FailExport(ZEXIF_ERROR_MEMORY);
        return nullptr;
    }
    if (!reader->m_file.Open(path)) {
        delete reader;
        FailExport(ZEXIF_ERROR_OPEN);
        return nullptr;
    }
    reader->m_path = path;
    return ScanNewReader(reader);
}

void zRExifEndRead(CExifReader *reader)
{
    if (reader == nullptr) return;
    ReleaseReader(reader);
}

int zRExifGetFileFormat(CExifReader *reader)
{
    return reader == nullptr ? RefuseNullHandle() : reader->m_format;
}

int zRExifIsExifExist(CExifReader *reader)
{
    return reader == nullptr ? RefuseNullHandle() : reader->m_hasExif;
}
