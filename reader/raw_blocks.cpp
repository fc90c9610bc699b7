#include <new>

#include "reader/reader.h"
#include "reader/tif_tag_list.h"
#include "streams/stream.h"
#include "zexif.h"

// new[], because zExifInsertExifMarker hands the buffer to a node, which
// releases its data with delete[]. What a truncated file doesn't hold stays
// zero.
int zRExifGetExifMarker(CExifReader *reader, ExifBuffer *out)
{
    if (reader == nullptr || out == nullptr) return -1;
    const ReaderSegment &segment = reader->m_exifSegment;
    if (reader->m_format != FORMAT_JPEG || reader->m_hasExif == 0 || segment.size < 1) return -1;
    unsigned char *buffer = new (std::nothrow) unsigned char[static_cast<uint32_t>(segment.size)]();
    if (buffer == nullptr) return -1;
    reader->m_file.Seek(0, segment.offset);
    reader->m_file.Read(buffer, static_cast<uint32_t>(segment.size));
    if (reader->m_file.HasFailed()) {
        delete[] buffer;
        return -1;
    }
    out->data = buffer;
    out->size = static_cast<uint32_t>(segment.size);
    return 0;
}

// An Exif IFD without entries gives 0 and a null list.
int zRExifGetTIFExifData(CExifReader *reader, TifTagList **out)
{
    if (reader == nullptr || out == nullptr || reader->m_format != FORMAT_TIFF || reader->m_hasExif == 0 || reader->m_exifIfdOffset < 1) return -1;
    reader->m_file.Seek(0, reader->m_exifIfdOffset);
    *out = ReadTifTagList(reader->m_bigEndian, &reader->m_file);
    return 0;
}
