#include "reader/tif_tag_list.h"

#include <cstdlib>
#include <cstring>

#include "platform/failure_reason.h"
#include "reader/ifd_table.h"
#include "reader/tag_value.h"
#include "streams/stream.h"
#include "zexif.h"

namespace {

// Bytes of an item's buffer: a 1-byte value has room for a NUL behind it,
// which calloc has put there already.
int64_t ItemDataSize(const IfdEntry &entry)
{
    int64_t size = EntryDataSize(entry.type, entry.count);
    return TiffTypeSize(entry.type) == 1 ? size + 1 : size;
}

// A value of no bytes lies nowhere, whatever its field holds.
int IsOutsideEntry(const IfdEntry &entry)
{
    return TiffTypeSize(entry.type) != 0 && entry.count > 0 && !ValueFitsEntry(entry.type, entry.count);
}

// 0 when a value from outside the entry can't be read whole.
int FillItemData(int bigEndian, CStreamIO *stream, const IfdEntry &entry, const unsigned char *field,
                 int32_t position, unsigned char *data)
{
    uint32_t size = static_cast<uint32_t>(EntryDataSize(entry.type, entry.count));
    if (IsOutsideEntry(entry)) {
        if (!ReadValueAt(stream, position, data, size)) return 0;
        DecodeValueBytes(data, size, entry.type, bigEndian);
        return 1;
    }
    unsigned char value[4];
    DecodeInlineValue(field, entry.type, bigEndian, value);
    std::memcpy(data, value, size);
    return 1;
}

}  // namespace

// A type outside 1 to 12 gets no data. A value that doesn't lie wholly within
// the stream leaves its entry out, rather than hand on a buffer that the file
// never filled.
ItemResult ReadTifTagItem(int bigEndian, CStreamIO *stream, const unsigned char *p, TifTagItem **out)
{
    IfdEntry entry = DecodeEntry(p, bigEndian);
    int32_t position = 0;
    if (IsOutsideEntry(entry) &&
        !LocateValue(stream, 0, entry.value, EntryDataSize(entry.type, entry.count), &position)) {
        return ITEM_LEFT_OUT;
    }
    TifTagItem *item = AllocTifTagItem(0);
    if (item == nullptr) return ITEM_NO_MEMORY;
    item->tag = entry.tag;
    item->type = entry.type;
    item->count = entry.count;
    int64_t size = TiffTypeSize(entry.type) == 0 ? 0 : ItemDataSize(entry);
    if (size > 0) {
        item->data = std::calloc(static_cast<size_t>(size), 1);
        if (item->data == nullptr) {
            FreeTifTagItem(item);
            NoteFailure(ZEXIF_ERROR_MEMORY);
            return ITEM_NO_MEMORY;
        }
        unsigned char *data = static_cast<unsigned char *>(item->data);
        if (!FillItemData(bigEndian, stream, entry, EntryField(p), position, data)) {
            FreeTifTagItem(item);
            return ITEM_LEFT_OUT;
        }
    }
    *out = item;
    return ITEM_ADDED;
}

namespace {

// A list that lost an item to memory would carry a file's Exif over in part;
// it is dropped whole instead.
TifTagList *BuildList(int bigEndian, CStreamIO *stream, const unsigned char *table, int32_t count)
{
    TifTagList *list = AllocTifTagList(count);
    if (list == nullptr) return nullptr;
    for (int32_t i = 0; i < count; i++) {
        const unsigned char *p = table + static_cast<uint32_t>(i) * IFD_ENTRY_SIZE;
        TifTagItem *item = nullptr;
        ItemResult result = ReadTifTagItem(bigEndian, stream, p, &item);
        if (result == ITEM_NO_MEMORY) {
            FreeTifTagList(list);
            return nullptr;
        }
        if (result == ITEM_ADDED) AddTifTagItem(list, item);
    }
    return list;
}

}  // namespace

TifTagList *ReadTifTagList(int bigEndian, CStreamIO *stream)
{
    int32_t count = ReadEntryCount(stream, bigEndian);
    if (count < 1) return nullptr;
    IfdTable table(stream, count, 0);
    if (table.Bytes() == nullptr || table.Got() < static_cast<uint32_t>(count) * IFD_ENTRY_SIZE) return nullptr;
    int32_t linkPosition = stream->Tell();
    TifTagList *list = BuildList(bigEndian, stream, table.Bytes(), count);
    stream->Seek(0, linkPosition);
    return list;
}

TifTagList *AllocTifTagList(int32_t capacity)
{
    TifTagList *list = static_cast<TifTagList *>(std::calloc(1, sizeof(TifTagList)));
    if (list != nullptr && capacity > 0) {
        list->items = static_cast<TifTagItem **>(std::calloc(static_cast<size_t>(capacity), sizeof(TifTagItem *)));
    }
    if (list == nullptr || (capacity > 0 && list->items == nullptr)) {
        std::free(list);
        NoteFailure(ZEXIF_ERROR_MEMORY);
        return nullptr;
    }
    return list;
}

TifTagItem *AllocTifTagItem(uint32_t size)
{
    TifTagItem *item = static_cast<TifTagItem *>(std::calloc(1, sizeof(TifTagItem)));
    if (item != nullptr && size > 0) item->data = std::calloc(size, 1);
    if (item == nullptr || (size > 0 && item->data == nullptr)) {
        std::free(item);
        NoteFailure(ZEXIF_ERROR_MEMORY);
        return nullptr;
    }
    return item;
}

int AddTifTagItem(TifTagList *list, TifTagItem *item)
{
    if (list == nullptr || item == nullptr) return 0;
    list->items[list->count] = item;
    list->count++;
    return 1;
}

void FreeTifTagItem(TifTagItem *item)
{
    if (item == nullptr) return;
    std::free(item->data);
    std::free(item);
}

void FreeTifTagList(TifTagList *list)
{
    if (list == nullptr) return;
    if (list->items != nullptr) {
        for (int32_t i = 0; i < list->count; i++) FreeTifTagItem(list->items[i]);
        std::free(list->items);
    }
    std::free(list);
}
