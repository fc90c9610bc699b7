#include "extensions/ifd_ids.h"
#include "extensions/reader_ifds.h"
#include "platform/failure_reason.h"
#include "reader/ifd_table.h"
#include "reader/reader.h"
#include "reader/tag_slots.h"
#include "reader/tag_value.h"
#include "reader/tif_tag_list.h"
#include "streams/byte_order.h"
#include "streams/stream.h"
#include "zexif.h"

namespace {

// The first entry of that number in an IFD's table, read as a list item.
// Null when there is none, or its value doesn't lie within the data.
TifTagItem *ReadItemIn(ReaderTiff *tiff, const IfdTable &table, uint32_t tag)
{
    if (table.Bytes() == nullptr) return nullptr;
    uint32_t whole = table.Got() / IFD_ENTRY_SIZE;
    for (uint32_t i = 0; i < whole; i++) {
        const unsigned char *p = table.Bytes() + i * IFD_ENTRY_SIZE;
        if (ReadU16(p, tiff->m_bigEndian) != tag) continue;
        TifTagItem *item = nullptr;
        return ReadTifTagItem(tiff->m_bigEndian, tiff->m_stream, p, &item) == ITEM_ADDED ? item : nullptr;
    }
    return nullptr;
}

// Tags looked up in a row: the TIFF data is opened for the first tag that
// isn't kept yet, and the table of the IFD last looked in is kept at hand, so
// that a run of tags of one IFD costs one open, one walk to the IFD and one
// read of its table.
class CTagLookup {
public:
    explicit CTagLookup(CExifReader *reader) : m_reader(reader) {}
    ~CTagLookup() { CloseReaderTiff(&m_tiff); }
    CTagLookup(const CTagLookup &) = delete;
    CTagLookup &operator=(const CTagLookup &) = delete;

    // The tag's item, read and kept with its IFD when first asked for, so
    // that it is read once and the pointer handed out stays valid. Null when
    // there is none, or when memory runs out (noted).
    const TifTagItem *Find(int ifd, uint32_t tag);

private:
    const IfdTable &TableOf(int ifd);

    CExifReader *m_reader;
    ReaderTiff m_tiff;
    IfdTable m_table;
    int m_opened = 0;
    int m_ifd = -1;
};

const TifTagItem *CTagLookup::Find(int ifd, uint32_t tag)
{
    const TifTagItem *kept = FindTagAt(m_reader, ifd, tag);
    if (kept != nullptr) return kept;
    TifTagItem *item = ReadItemIn(&m_tiff, TableOf(ifd), tag);
    return item != nullptr && KeepTagAt(m_reader, ifd, item) ? item : nullptr;
}

// No bytes for an IFD the data doesn't have, or a reader without TIFF data.
const IfdTable &CTagLookup::TableOf(int ifd)
{
    if (m_opened == 0) m_opened = OpenReaderTiff(m_reader, &m_tiff) ? 1 : -1;
    if (m_opened < 0 || ifd == m_ifd) return m_table;
    m_ifd = ifd;
    int32_t offset = LocateIfd(&m_tiff, ifd);
    int32_t count = 0;
    if (offset > 0) {
        m_tiff.m_stream->Seek(0, offset);
        count = ReadEntryCount(m_tiff.m_stream, m_tiff.m_bigEndian);
    }
    m_table.Load(m_tiff.m_stream, count, 0);
    return m_table;
}

void Deliver(const TifTagItem *item, ExifTagValue *out)
{
    out->type = item->type;
    out->count = item->count;
    out->data = item->data;
}

}  // namespace

int zRExifGetTagAt(CExifReader *reader, int ifd, uint32_t tag, ExifTagValue *out)
{
    BeginExport();
    if (reader == nullptr || out == nullptr || !IsIfdId(ifd)) return FailExport(ZEXIF_ERROR_ARGUMENT);
    const TifTagItem *item = CTagLookup(reader).Find(ifd, tag);
    if (item == nullptr) return FailExport(ZEXIF_ERROR_NOT_FOUND);
    Deliver(item, out);
    return 0;
}

// A tag that isn't there is an answer; only a failure that may have hidden a
// tag fails the call.
int zRExifGetTagsAt(CExifReader *reader, const ExifTagKey *keys, int32_t count, ExifTagValue *out)
{
    BeginExport();
    if (reader == nullptr || count < 0 || (count > 0 && (keys == nullptr || out == nullptr))) {
        return FailExport(ZEXIF_ERROR_ARGUMENT);
    }
    CTagLookup lookup(reader);
    int found = 0;
    for (int32_t i = 0; i < count; i++) {
        const TifTagItem *item = IsIfdId(keys[i].ifd) ? lookup.Find(keys[i].ifd, keys[i].tag) : nullptr;
        out[i] = ExifTagValue{0, 0, nullptr};
        if (item == nullptr) continue;
        Deliver(item, &out[i]);
        found++;
    }
    if (NotedFailure() != ZEXIF_ERROR_NONE) return FailExport(ZEXIF_ERROR_MEMORY);
    return found;
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
