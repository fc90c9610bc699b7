#include "platform/failure_reason.h"
#include "reader/reader.h"
#include "reader/thumbnail.h"
#include "reader/tiff_chain.h"
#include "streams/stream.h"
#include "zexif.h"

namespace {

// A JPEG's thumbnail is searched in its TIFF block, a TIFF file's in the file.
int ScanForThumbnail(CExifReader *reader, int loadData)
{
    if (reader->m_format != FORMAT_JPEG) {
        reader->m_file.Seek(0, 0);
        return ScanThumbnail(&reader->m_file, reader, loadData);
    }
    if (reader->m_exifSegment.size <= EXIF_PREFIX_SIZE) return 0;
    ExifBlock block;
    if (!LoadExifBlock(reader, &block)) return 0;
    int found = ScanThumbnail(block.m_stream, reader, loadData);
    ReleaseExifBlock(&block);
    return found;
}

}  // namespace

// Once a scan has met a tag the reader keeps, tag 513 in any IFD of the chain
// answers; before, a JPEG's IFD 1 is searched at each call.
int zRExifIsThumbnailExist(CExifReader *reader)
{
    if (reader == nullptr) return RefuseNullHandle();
    if (reader->m_tagFound == 0 && reader->m_format == FORMAT_JPEG) ScanForThumbnail(reader, 0);
    return reader->m_hasThumb;
}

int zRExifGetThumbnailData(CExifReader *reader, ExifBuffer *out)
{
    BeginExport();
    if (reader == nullptr || out == nullptr) return FailExport(ZEXIF_ERROR_ARGUMENT);
    if (reader->m_tagFound == 1 && reader->m_hasThumb == 0) return FailExport(ZEXIF_ERROR_NOT_FOUND);
    if (reader->m_thumbLoaded == 0) {
        if (!ScanForThumbnail(reader, 1)) return FailExport(ZEXIF_ERROR_NOT_FOUND);
        if (reader->m_hasThumb == 0 || reader->m_thumbLoaded == 0) return FailExport(ZEXIF_ERROR_NOT_FOUND);
    }
    FetchThumbnail(reader, &out->data, &out->size);
    return 0;
}
