#ifndef ZEXIF_READER_TAG_SLOTS_H
#define ZEXIF_READER_TAG_SLOTS_H

#include <cstdint>

struct CExifReader;
struct ReaderTagSlot;

// 1 for the five tags with a slot of their own: 306, 271, 272, 270, 274.
int IsCachedTag(uint32_t tag);

// 1 when the tag has a slot of its own and that slot is filled.
int IsTagCached(CExifReader *reader, uint32_t tag);

// Copies size bytes of data (null for none) into the slot of tag: one of the
// five, or m_wantedTag for any other. The copy is made before anything is
// released, so a failure (result 0) leaves the slot as it was. The flag of
// one of the five is set on success.
int StoreTagSlot(CExifReader *reader, uint32_t tag, uint32_t type, const void *data, uint32_t count, uint32_t size);

// Hands out the slot's fields, the bytes staying the reader's. 0 for an empty
// slot, and for m_wantedTag holding another tag.
int FetchTagSlot(CExifReader *reader, uint32_t tag, uint32_t *outType, void **outData, uint32_t *outCount);

void ReleaseTagSlot(ReaderTagSlot *slot);

#endif
