#include "extensions/ifd_ids.h"
#include "extensions/reader_ifds.h"
#include "platform/failure_reason.h"
#include "reader/ifd_table.h"
#include "reader/reader.h"
#include "reader/tag_slots.h"
#include "reader/tag_value.h"
#include "reader/tif_tag_list.h"
#include "streams/stream.h"
#include "zexif.h"

namespace {

// The first entry of that number in the IFD at offset, read as a list item.
// Null when there is none, or its value doesn't lie within the data.
TifTagItem *ReadItemAt(ReaderTiff *tiff, int32_t offset, uint32_t tag)
{
    tiff->m_stream->Seek(0, offset);
    int32_t count = ReadEntryCount(tiff->m_stream, tiff->m_bigEndian);
    IfdTable table(tiff->m_stream, count, 0);
    if (table.Bytes() == nullptr) return nullptr;
    uint32_t whole = table.Got() / IFD_ENTRY_SIZE;
    for (uint32_t i = 0; i < whole; i++) {
        const unsigned char *p = table.Bytes() + i * IFD_ENTRY_SIZE;
        if (DecodeEntry(p, tiff->m_bigEndian).tag != tag) continue;
        TifTagItem *item = nullptr;
        return ReadTifTagItem(tiff->m_bigEndian, tiff->m_stream, p, &item) == ITEM_ADDED ? item : nullptr;
    }
    return nullptr;
}

TifTagItem *ReadTagAt(CExifReader *reader, int ifd, uint32_t tag)
{
    ReaderTiff tiff;
    TifTagItem *item = nullptr;
    if (OpenReaderTiff(reader, &tiff)) {
        int32_t offset = LocateIfd(&tiff, ifd);
        if (offset > 0) item = ReadItemAt(&tiff, offset, tag);
    }
    CloseReaderTiff(&tiff);
    return item;
}

void Deliver(const TifTagItem *item, ExifTagValue *out)
{
    out->type = item->type;
    out->count = item->count;
    out->data = item->data;
}

}  // namespace

// A value once found is kept with its IFD, so that it is read once and the
// pointer handed out stays valid.
int zRExifGetTagAt(CExifReader *reader, int ifd, uint32_t tag, ExifTagValue *out)
{
    BeginExport();
    if (reader == nullptr || out == nullptr || !IsIfdId(ifd)) return FailExport(ZEXIF_ERROR_ARGUMENT);
    const TifTagItem *kept = FindTagAt(reader, ifd, tag);
    if (kept == nullptr) {
        TifTagItem *item = ReadTagAt(reader, ifd, tag);
        if (item == nullptr || !KeepTagAt(reader, ifd, item)) return FailExport(ZEXIF_ERROR_NOT_FOUND);
        kept = item;
    }
    Deliver(kept, out);
    return 0;
}

// An IFD without entries or whose table is cut off counts as none.
int zRExifGetTagList(CExifReader *reader, int ifd, TifTagList **out)
{
    BeginExport();
    if (reader == nullptr || out == nullptr || !IsIfdId(ifd)) return FailExport(ZEXIF_ERROR_ARGUMENT);
    ReaderTiff tiff;
    TifTagList *list = nullptr;
    if (OpenReaderTiff(reader, &tiff)) {
        int32_t offset = LocateIfd(&tiff, ifd);
        if (offset > 0) {
            tiff.m_stream->Seek(0, offset);
            list = ReadTifTagList(tiff.m_bigEndian, tiff.m_stream);
        }
    }
    CloseReaderTiff(&tiff);
    if (list == nullptr) return FailExport(ZEXIF_ERROR_NOT_FOUND);
    *out = list;
    return 0;
}
