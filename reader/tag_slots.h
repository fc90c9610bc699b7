#ifndef ZEXIF_READER_TAG_SLOTS_H
#define ZEXIF_READER_TAG_SLOTS_H

#include <cstdint>

#include "zexif.h"

struct CExifReader;

// 1 for the five tags with a slot of their own: 306, 271, 272, 270, 274.
int IsCachedTag(uint32_t tag);

// 1 when the tag's value is held: the slot of one of the five is filled, or
// another tag has a slot in m_wantedTags.
int IsTagCached(CExifReader *reader, uint32_t tag);

// Copies size bytes of data (null for none) into the slot of tag: one of the
// reader's five, or a slot of m_wantedTags for any other. A copy that needs
// memory is made before anything is released, so a failure (result 0) leaves
// the slot as it was.
// The flag of one of the five is set on success. A slot is refilled only
// while the walk that fills it runs, before its value is handed out.
int StoreTagSlot(CExifReader *reader, uint32_t tag, uint32_t type, const void *data, uint32_t count, uint32_t size);

// Hands out the slot's fields, the bytes staying the reader's. 0 for an empty
// slot.
int FetchTagSlot(CExifReader *reader, uint32_t tag, uint32_t *outType, void **outData, uint32_t *outCount);

// 1 when the slot of tag holds a value that was handed out: it isn't
// replaced any more, so that the caller's pointer stays valid.
int IsSlotHandedOut(CExifReader *reader, uint32_t tag);

// The item of a tag of an IFD that a caller had before, or null.
const TifTagItem *FindTagAt(const CExifReader *reader, int32_t ifd, uint32_t tag);
// Keeps item, taking it over; 0 with item released when no memory.
int KeepTagAt(CExifReader *reader, int32_t ifd, TifTagItem *item);

// Releases the values of all slots and the slots of m_wantedTags and
// m_tagsAt.
void ReleaseTagSlots(CExifReader *reader);

#endif
