#include "reader/tag_slots.h"

#include <cstring>
#include <new>

#include "reader/reader.h"

namespace {

// The slot of another tag, or the link where a new one goes at the list's end.
ReaderTagSlot **WantedSlotOf(CExifReader *reader, uint32_t tag)
{
    ReaderTagSlot **link = &reader->m_wantedTags;
    while (*link != nullptr && (*link)->tag != tag) link = &(*link)->next;
    return link;
}

ReaderTagSlot **SlotOf(CExifReader *reader, uint32_t tag)
{
    switch (tag) {
    case 306: return &reader->m_dateTime;
    case 271: return &reader->m_make;
    case 272: return &reader->m_model;
    case 274: return &reader->m_orientation;
    case 270: return &reader->m_imageDescription;
    default: return WantedSlotOf(reader, tag);
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
    if (data != nullptr && size > 0) {
        copy = new (std::nothrow) unsigned char[size];
        if (copy == nullptr) return 0;
        std::memcpy(copy, data, size);
    }
    ReaderTagSlot **slot = SlotOf(reader, tag);
    if (*slot == nullptr) {
        *slot = new (std::nothrow) ReaderTagSlot();
        if (*slot == nullptr) {
            delete[] copy;
            return 0;
        }
    }
    delete[] (*slot)->data;
    (*slot)->tag = tag;
    (*slot)->type = type;
    (*slot)->count = count;
    (*slot)->data = copy;
    if (int32_t *flag = FlagOf(reader, tag)) *flag = 1;
    return 1;
}

int FetchTagSlot(CExifReader *reader, uint32_t tag, uint32_t *outType, void **outData, uint32_t *outCount)
{
    const ReaderTagSlot *slot = *SlotOf(reader, tag);
    if (slot == nullptr || slot->tag != tag) return 0;
    *outType = slot->type;
    *outData = slot->data;
    *outCount = slot->count;
    return 1;
}

void ReleaseTagSlot(ReaderTagSlot *slot)
{
    while (slot != nullptr) {
        ReaderTagSlot *next = slot->next;
        delete[] slot->data;
        delete slot;
        slot = next;
    }
}
