#include "edit/exif_ifd_tags.h"
#include "platform/failure_reason.h"
#include "reader/ifd_scan.h"
#include "reader/reader.h"
#include "reader/tag_slots.h"
#include "reader/tiff_chain.h"
#include "streams/stream.h"
#include "zexif.h"

namespace {

int Deliver(CExifReader *reader, uint32_t tag, ExifTagValue *out)
{
    return FetchTagSlot(reader, tag, &out->type, &out->data, &out->count) ? 0 : FailExport(ZEXIF_ERROR_NOT_FOUND);
}

// A JPEG's chain is walked on a memory copy of its TIFF block, which goes as
// soon as the walk is done. 0 when there is no block to walk.
int WalkExifBlock(CExifReader *reader)
{
    if (reader->m_format != FORMAT_JPEG || reader->m_exifSegment.size <= EXIF_PREFIX_SIZE) return 0;
    ExifBlock block;
    if (!LoadExifBlock(reader, &block)) return 0;
    ScanTiffChain(block.m_stream, reader);
    ReleaseExifBlock(&block);
    return 1;
}

// The Exif IFD is read straight from the file; in a JPEG its offsets count
// from the TIFF block. 0 when there is no Exif IFD to read.
int ScanExifIfdFor(CExifReader *reader, uint32_t tag)
{
    if (reader->m_exifIfdOffset < 1) return 0;
    int exifRelative = reader->m_format == FORMAT_JPEG;
    int64_t position = reader->m_exifIfdOffset;
    if (exifRelative) {
        if (reader->m_exifSegment.offset < 1) return 0;
        position += int64_t(reader->m_exifSegment.offset) + EXIF_PREFIX_SIZE;
    }
    if (position > INT32_MAX) return 0;
    reader->m_file.Seek(0, static_cast<int32_t>(position));
    ScanIfd(reader->m_bigEndian, &reader->m_file, reader, tag, exifRelative);
    return 1;
}

}  // namespace

// Cache first, then the table of Exif IFD tags, then the Exif IFD itself. A
// JPEG whose chain holds nothing the reader keeps loads its block again at
// every call, since nothing marks it as walked.
int zRExifGetTag(CExifReader *reader, uint32_t tag, ExifTagValue *out)
{
    BeginExport();
    if (reader == nullptr || out == nullptr) return FailExport(ZEXIF_ERROR_ARGUMENT);
    if (reader->m_tagFound == 0 && !WalkExifBlock(reader)) return FailExport(ZEXIF_ERROR_NOT_FOUND);
    if (IsTagCached(reader, tag)) return Deliver(reader, tag, out);
    if (!IsExifIfdTag(tag) || !ScanExifIfdFor(reader, tag)) return FailExport(ZEXIF_ERROR_NOT_FOUND);
    return Deliver(reader, tag, out);
}
