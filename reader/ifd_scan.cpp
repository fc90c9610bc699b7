#include "reader/ifd_scan.h"

#include "reader/ifd_table.h"
#include "reader/reader.h"
#include "reader/small_buffer.h"
#include "reader/tag_slots.h"
#include "reader/tag_value.h"
#include "streams/byte_order.h"

namespace {

// What a scan of one IFD needs beside the entry at hand.
struct IfdScan {
    int m_bigEndian;
    CStreamIO *m_stream;
    CExifReader *m_reader;
    uint32_t m_wantedTag;
    int64_t m_base;  // where value offsets count from
};

// An entry's value as far as the scan could have it. A name or a date from
// IFD 0 or the Exif IFD is fetched without an allocation as a rule.
struct EntryValue {
    int m_present = 0;
    const unsigned char *m_data = nullptr;
    uint32_t m_size = 0;
    unsigned char m_inline[4] = {};
    SmallBuffer<64> m_fetched;
};

// A value that doesn't lie within the stream stays absent.
void FetchValue(const IfdScan &scan, const IfdEntry &entry, int64_t size, EntryValue *value)
{
    int32_t position;
    if (!LocateValue(scan.m_stream, scan.m_base, entry.value, size, &position)) return;
    uint32_t bytes = static_cast<uint32_t>(size);
    unsigned char *buffer = value->m_fetched.Reserve(bytes);
    if (buffer == nullptr || !ReadValueAt(scan.m_stream, position, buffer, bytes)) return;
    DecodeValueBytes(buffer, bytes, entry.type, scan.m_bigEndian);
    value->m_present = 1;
    value->m_data = buffer;
    value->m_size = bytes;
}

// Only a selected value is fetched from outside the entry. A type outside 1
// to 12 is never fetched: beyond the four bytes of its field it is absent.
void GetValue(const IfdScan &scan, const IfdEntry &entry, const unsigned char *field, int selected, EntryValue *value)
{
    int64_t size = EntryDataSize(entry.type, entry.count);
    if (size == 0) {
        value->m_present = 1;
    } else if (size <= 4) {
        DecodeInlineValue(field, entry.type, scan.m_bigEndian, value->m_inline);
        value->m_present = 1;
        value->m_data = value->m_inline;
        value->m_size = static_cast<uint32_t>(size);
    } else if (selected && TiffTypeSize(entry.type) != 0) {
        FetchValue(scan, entry, size, value);
    }
}

// An absent value leaves the slot as it was. So does a copy that can't be
// allocated: the slot never holds a pointer it released.
void StoreValue(CExifReader *reader, const IfdEntry &entry, const EntryValue &value)
{
    if (value.m_present) StoreTagSlot(reader, entry.tag, entry.type, value.m_data, entry.count, value.m_size);
}

// A wanted scan of the Exif IFD that meets one of the five replaces its slot,
// as the chain's scan did, but never a value handed out: the caller's pointer
// stays valid. It reads no such value from outside the entry; that value is
// absent then and the slot keeps what an earlier scan put there.
void CacheTag(const IfdScan &scan, const IfdEntry &entry, const unsigned char *field)
{
    if (scan.m_wantedTag != 0 && IsSlotHandedOut(scan.m_reader, entry.tag)) return;
    int selected = scan.m_wantedTag == 0 || scan.m_wantedTag == entry.tag;
    EntryValue value;
    GetValue(scan, entry, field, selected, &value);
    scan.m_reader->m_tagFound = 1;
    StoreValue(scan.m_reader, entry, value);
}

// A tag of a pointer's number that holds no single offset points at nothing.
void NoteSubIfd(const IfdScan &scan, const IfdEntry &entry, const unsigned char *field, int32_t *offset)
{
    if (!IsIfdPointer(entry.type, entry.count)) return;
    scan.m_reader->m_hasExif = 1;
    scan.m_reader->m_tagFound = 1;
    *offset = static_cast<int32_t>(EntryNumber(field, entry.type, entry.count, scan.m_bigEndian));
}

void StoreWanted(const IfdScan &scan, const IfdEntry &entry, const unsigned char *field)
{
    EntryValue value;
    GetValue(scan, entry, field, 1, &value);
    scan.m_reader->m_tagFound = 1;
    StoreValue(scan.m_reader, entry, value);
}

// 1 when the walk of the entries goes on.
int ActOnEntry(const IfdScan &scan, const unsigned char *p)
{
    IfdEntry entry = DecodeEntry(p, scan.m_bigEndian);
    const unsigned char *field = EntryField(p);
    CExifReader *reader = scan.m_reader;
    if (IsCachedTag(entry.tag)) {
        CacheTag(scan, entry, field);
        return 1;
    }
    switch (entry.tag) {
    case 513:
        reader->m_hasThumb = 1;
        reader->m_tagFound = 1;
        return 1;
    case 34665:
        NoteSubIfd(scan, entry, field, &reader->m_exifIfdOffset);
        return 1;
    case 34853:
        NoteSubIfd(scan, entry, field, &reader->m_gpsIfdOffset);
        return 1;
    default:
        break;
    }
    if (scan.m_wantedTag == 0 || entry.tag != scan.m_wantedTag) return 1;
    StoreWanted(scan, entry, field);
    return 0;
}

// 0 when an entry of type 0 ends the IFD, and with it the chain.
int WalkEntries(const IfdScan &scan, const unsigned char *table, int32_t count)
{
    for (int32_t i = 0; i < count; i++) {
        const unsigned char *p = table + static_cast<uint32_t>(i) * IFD_ENTRY_SIZE;
        if (ReadU16(p + 2, scan.m_bigEndian) == 0) return 0;
        if (!ActOnEntry(scan, p)) return 1;
    }
    return 1;
}

}  // namespace

// The link is read together with the table, so that fetches that move the
// stream need no seek back; nothing relies on where the stream is left.
int32_t ScanIfd(int bigEndian, CStreamIO *stream, CExifReader *reader, uint32_t wantedTag, int exifRelative)
{
    int32_t count = ReadEntryCount(stream, bigEndian);
    if (count < 1) return 0;
    int64_t base = exifRelative ? int64_t(reader->m_exifSegment.offset) + EXIF_PREFIX_SIZE : 0;
    IfdScan scan = {bigEndian, stream, reader, wantedTag, base};
    uint32_t tableSize = static_cast<uint32_t>(count) * IFD_ENTRY_SIZE;
    IfdTable table(stream, count, 4);
    const unsigned char *bytes = table.Bytes();
    if (bytes == nullptr || table.Got() < tableSize) return 0;
    int32_t link = table.Got() == tableSize + 4 ? static_cast<int32_t>(ReadU32(bytes + tableSize, bigEndian)) : 0;
    return WalkEntries(scan, bytes, count) ? link : 0;
}
