#include "reader/tag_slots.h"

#include <cstring>
#include <initializer_list>
#include <new>

#include "platform/failure_reason.h"
#include "reader/reader.h"
#include "reader/tif_tag_list.h"
#include "zexif.h"

namespace {

// The slot of another tag, or the link where a new one goes at the list's end.
ReaderTagSlot **WantedSlotOf(CExifReader *reader, uint32_t tag)
{
    ReaderTagSlot **link = &reader->m_wantedTags;
    while (*link != nullptr && (*link)->tag != tag) link = &(*link)->next;
    return link;
}

// The reader's own slot of one of the five; null for another tag.
ReaderTagSlot *OwnSlotOf(CExifReader *reader, uint32_t tag)
{
    switch (tag) {
    case 306: return &reader->m_dateTime;
    case 271: return &reader->m_make;
    case 272: return &reader->m_model;
    case 274: return &reader->m_orientation;
    case 270: return &reader->m_imageDescription;
    default: return nullptr;
    }
}

int32_t *FlagOf(CExifReader *reader, uint32_t tag)
{
    switch (tag) {
    case 306: return &reader->m_hasDateTime;
    case 271: return &reader->m_hasMake;
    case 272: return &reader->m_hasModel;
    case 274: return &reader->m_hasOrientation;
    case 270: return &reader->m_hasImageDescription;
    default: return nullptr;
    }
}

// Another tag's slot is made at the end of the list; null when no memory.
ReaderTagSlot *SlotFor(CExifReader *reader, uint32_t tag)
{
    if (ReaderTagSlot *own = OwnSlotOf(reader, tag)) return own;
    ReaderTagSlot **link = WantedSlotOf(reader, tag);
    if (*link == nullptr) *link = new (std::nothrow) ReaderTagSlot();
    return *link;
}

void ReleaseSlotData(ReaderTagSlot *slot)
{
    if (slot->data != slot->inPlace) delete[] slot->data;
    slot->data = nullptr;
}

}  // namespace

int IsCachedTag(uint32_t tag)
{
    return tag == 306 || tag == 271 || tag == 272 || tag == 270 || tag == 274;
}

int IsTagCached(CExifReader *reader, uint32_t tag)
{
    if (!IsCachedTag(tag)) return *WantedSlotOf(reader, tag) != nullptr;
    int32_t *flag = FlagOf(reader, tag);
    return flag != nullptr && *flag == 1;
}

int StoreTagSlot(CExifReader *reader, uint32_t tag, uint32_t type, const void *data, uint32_t count, uint32_t size)
{
    unsigned char *copy = nullptr;
    if (data != nullptr && size > SLOT_VALUE_IN_PLACE) {
        copy = new (std::nothrow) unsigned char[size];
        if (copy == nullptr) return NoteFailure(ZEXIF_ERROR_MEMORY);
    }
    ReaderTagSlot *slot = SlotFor(reader, tag);
    if (slot == nullptr) {
        delete[] copy;
        return NoteFailure(ZEXIF_ERROR_MEMORY);
    }
    ReleaseSlotData(slot);
    if (data != nullptr && size > 0) {
        if (copy == nullptr) copy = slot->inPlace;
        std::memcpy(copy, data, size);
    }
    slot->tag = tag;
    slot->type = type;
    slot->count = count;
    slot->data = copy;
    if (int32_t *flag = FlagOf(reader, tag)) *flag = 1;
    return 1;
}

int FetchTagSlot(CExifReader *reader, uint32_t tag, uint32_t *outType, void **outData, uint32_t *outCount)
{
    ReaderTagSlot *slot = OwnSlotOf(reader, tag);
    if (slot == nullptr) slot = *WantedSlotOf(reader, tag);
    if (slot == nullptr || slot->tag != tag) return 0;
    *outType = slot->type;
    *outData = slot->data;
    *outCount = slot->count;
    slot->handedOut = 1;
    return 1;
}

int IsSlotHandedOut(CExifReader *reader, uint32_t tag)
{
    const ReaderTagSlot *slot = OwnSlotOf(reader, tag);
    if (slot == nullptr) slot = *WantedSlotOf(reader, tag);
    return slot != nullptr && slot->handedOut;
}

const TifTagItem *FindTagAt(const CExifReader *reader, int32_t ifd, uint32_t tag)
{
    for (const ReaderTagAt *kept = reader->m_tagsAt; kept != nullptr; kept = kept->next) {
        if (kept->ifd == ifd && kept->item->tag == tag) return kept->item;
    }
    return nullptr;
}

int KeepTagAt(CExifReader *reader, int32_t ifd, TifTagItem *item)
{
    ReaderTagAt *kept = new (std::nothrow) ReaderTagAt();
    if (kept == nullptr) {
        FreeTifTagItem(item);
        return NoteFailure(ZEXIF_ERROR_MEMORY);
    }
    kept->ifd = ifd;
    kept->item = item;
    kept->next = reader->m_tagsAt;
    reader->m_tagsAt = kept;
    return 1;
}

void ReleaseTagSlots(CExifReader *reader)
{
    for (ReaderTagSlot *own : {&reader->m_dateTime, &reader->m_make, &reader->m_model, &reader->m_orientation,
                               &reader->m_imageDescription}) {
        ReleaseSlotData(own);
    }
    ReaderTagSlot *slot = reader->m_wantedTags;
    while (slot != nullptr) {
        ReaderTagSlot *next = slot->next;
        ReleaseSlotData(slot);
        delete slot;
        slot = next;
    }
    reader->m_wantedTags = nullptr;
    while (reader->m_tagsAt != nullptr) {
        ReaderTagAt *next = reader->m_tagsAt->next;
        FreeTifTagItem(reader->m_tagsAt->item);
        delete reader->m_tagsAt;
        reader->m_tagsAt = next;
    }
}
