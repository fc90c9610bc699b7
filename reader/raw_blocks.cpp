#include <new>

#include "platform/failure_reason.h"
#include "platform/handed_blocks.h"
#include "reader/reader.h"
#include "reader/tif_tag_list.h"
#include "streams/stream.h"
#include "zexif.h"

// new[], because zExifInsertExifMarker hands the buffer to a node, which
// releases its data with delete[]. What a truncated file doesn't hold stays
// zero.
int zRExifGetExifMarker(CExifReader *reader, ExifBuffer *out)
{
    BeginExport();
    if (reader == nullptr || out == nullptr) return FailExport(ZEXIF_ERROR_ARGUMENT);
    const ReaderSegment &segment = reader->m_exifSegment;
    if (reader->m_format != FORMAT_JPEG) return FailExport(ZEXIF_ERROR_FORMAT);
    if (reader->m_hasExif == 0 || segment.size < 1) return FailExport(ZEXIF_ERROR_NOT_FOUND);
    unsigned char *buffer = new (std::nothrow) unsigned char[static_cast<uint32_t>(segment.size)]();
    if (buffer == nullptr) return FailExport(ZEXIF_ERROR_MEMORY);
    reader->m_file.Seek(0, segment.offset);
    reader->m_file.Read(buffer, static_cast<uint32_t>(segment.size));
    if (reader->m_file.HasFailed() || !RecordArrayBlock(buffer)) {
        delete[] buffer;
        return FailExport(reader->m_file.HasFailed() ? ZEXIF_ERROR_READ : ZEXIF_ERROR_MEMORY);
    }
    out->data = buffer;
    out->size = static_cast<uint32_t>(segment.size);
    return 0;
}

// An Exif IFD without entries gives 0 and a null list.
int zRExifGetTIFExifData(CExifReader *reader, TifTagList **out)
{
    BeginExport();
    if (reader == nullptr || out == nullptr) return FailExport(ZEXIF_ERROR_ARGUMENT);
    if (reader->m_format != FORMAT_TIFF) return FailExport(ZEXIF_ERROR_FORMAT);
    if (reader->m_hasExif == 0 || reader->m_exifIfdOffset < 1) return FailExport(ZEXIF_ERROR_NOT_FOUND);
    reader->m_file.Seek(0, reader->m_exifIfdOffset);
    *out = ReadTifTagList(reader->m_bigEndian, &reader->m_file);
    return 0;
}
