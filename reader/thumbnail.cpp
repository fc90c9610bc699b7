#include "reader/thumbnail.h"

#include <cstring>
#include <new>

#include "platform/failure_reason.h"
#include "reader/ifd_table.h"
#include "reader/reader.h"
#include "reader/tag_value.h"
#include "reader/tiff_chain.h"
#include "streams/byte_order.h"
#include "streams/stream.h"
#include "zexif.h"

namespace {

constexpr uint16_t TAG_THUMB_OFFSET = 513;
constexpr uint16_t TAG_THUMB_LENGTH = 514;

// Offsets of a JPEG's Exif data count from its TIFF block and stay within the
// segment's payload; a TIFF file's count from the file's start, and an IFD
// behind its end is found empty.
int64_t ThumbnailBase(const CExifReader *reader)
{
    if (reader->m_format != FORMAT_JPEG) return 0;
    return int64_t(reader->m_exifSegment.offset) + EXIF_PREFIX_SIZE;
}

int OffsetInBounds(const CExifReader *reader, int32_t offset)
{
    return offset >= 0 && (reader->m_format != FORMAT_JPEG || offset <= reader->m_exifSegment.size);
}

// Passes IFD 0's entries and gives its link, or 0 when there is none.
int32_t ReadIfd1Offset(CStreamIO *stream, int bigEndian)
{
    int32_t count = ReadEntryCount(stream, bigEndian);
    if (count < 1) return 0;
    stream->Seek(1, static_cast<int32_t>(static_cast<uint32_t>(count) * IFD_ENTRY_SIZE));
    unsigned char link[4];
    if (stream->Read(link, 4) < 4) return 0;
    return static_cast<int32_t>(ReadU32(link, bigEndian));
}

// A thumbnail already loaded stays: the pointer handed out for it lives until
// the reader ends. The bytes have to lie wholly in the file.
void LoadThumbnail(CExifReader *reader, int32_t offset, uint32_t length)
{
    int32_t position;
    if (reader->m_thumbLoaded) return;
    if (!LocateValue(&reader->m_file, ThumbnailBase(reader), static_cast<uint32_t>(offset), length, &position)) return;
    unsigned char *bytes = nullptr;
    if (length > 0) {
        bytes = new (std::nothrow) unsigned char[length];
        if (bytes == nullptr || !ReadValueAt(&reader->m_file, position, bytes, length)) {
            delete[] bytes;
            return;
        }
    }
    reader->m_thumb = new (std::nothrow) ExifBuffer();
    if (reader->m_thumb != nullptr && (StoreThumbnail(reader, bytes, length) || length == 0)) {
        reader->m_hasThumb = 1;
        reader->m_thumbLoaded = 1;
    } else {
        ReleaseThumbnail(reader);
    }
    delete[] bytes;
}

// Entries in ascending tag order are relied on: 514 counts only behind 513.
void SearchIfd1(int bigEndian, const unsigned char *table, uint32_t entries, CExifReader *reader, int loadData)
{
    int32_t thumbOffset = 0;
    for (uint32_t i = 0; i < entries; i++) {
        const unsigned char *p = table + i * IFD_ENTRY_SIZE;
        IfdEntry entry = DecodeEntry(p, bigEndian);
        uint32_t value = EntryNumber(EntryField(p), entry.type, entry.count, bigEndian);
        if (entry.tag == TAG_THUMB_OFFSET) {
            thumbOffset = static_cast<int32_t>(value);
            reader->m_hasThumb = 1;
            if (!loadData) return;
        } else if (entry.tag == TAG_THUMB_LENGTH && thumbOffset > 0) {
            LoadThumbnail(reader, thumbOffset, value);
            return;
        }
    }
}

}  // namespace

int ScanThumbnail(CStreamIO *stream, CExifReader *reader, int loadData)
{
    int32_t offset = 0;
    if (!ReadTiffHeader(stream, reader, &offset) || !OffsetInBounds(reader, offset)) return 0;
    stream->Seek(0, offset);
    ScanThumbnailIfd(reader->m_bigEndian, stream, reader, loadData);
    return 1;
}

// Entries that a short read left out of IFD 1's table count as absent.
void ScanThumbnailIfd(int bigEndian, CStreamIO *stream, CExifReader *reader, int loadData)
{
    int32_t link = ReadIfd1Offset(stream, bigEndian);
    if (link < 1 || !OffsetInBounds(reader, link)) return;
    stream->Seek(0, link);
    int32_t count = ReadEntryCount(stream, bigEndian);
    IfdTable table(stream, count, 0);
    if (table.Bytes() == nullptr) return;
    SearchIfd1(bigEndian, table.Bytes(), table.Got() / IFD_ENTRY_SIZE, reader, loadData);
}

int StoreThumbnail(CExifReader *reader, const unsigned char *data, uint32_t size)
{
    ExifBuffer *thumb = reader->m_thumb;
    delete[] thumb->data;
    thumb->data = nullptr;
    thumb->size = 0;
    if (size == 0) return 0;
    thumb->data = new (std::nothrow) unsigned char[size];
    if (thumb->data == nullptr) return NoteFailure(ZEXIF_ERROR_MEMORY);
    std::memcpy(thumb->data, data, size);
    thumb->size = size;
    return 1;
}

int FetchThumbnail(CExifReader *reader, unsigned char **outData, uint32_t *outSize)
{
    *outData = reader->m_thumb->data;
    *outSize = reader->m_thumb->size;
    return 1;
}

void ReleaseThumbnail(CExifReader *reader)
{
    if (reader->m_thumb == nullptr) return;
    delete[] reader->m_thumb->data;
    delete reader->m_thumb;
    reader->m_thumb = nullptr;
}
