#ifndef ZEXIF_READER_TIF_TAG_LIST_H
#define ZEXIF_READER_TIF_TAG_LIST_H

#include <cstdint>

#include "zexif.h"

class CStreamIO;

// A TifTagList and all its parts come from the malloc family, so that a C
// caller can release a list with free() as well as with FreeTifTagList.

// The IFD at the stream's position as a list, value offsets being plain
// positions in the stream. Null when the IFD has no entries, its table can't
// be read, or no memory. An entry whose value doesn't lie wholly in the
// stream is left out.
TifTagList *ReadTifTagList(int bigEndian, CStreamIO *stream);

enum ItemResult { ITEM_ADDED, ITEM_LEFT_OUT, ITEM_NO_MEMORY };

// The item of the 12-byte entry at p, its value read from the stream as the
// list has it; *item is set only for ITEM_ADDED.
ItemResult ReadTifTagItem(int bigEndian, CStreamIO *stream, const unsigned char *p, TifTagItem **item);

// A list with count 0 and room for capacity items; null if no memory.
TifTagList *AllocTifTagList(int32_t capacity);
// An item with all fields 0 and, for a size above 0, that many bytes of data.
TifTagItem *AllocTifTagItem(uint32_t size);
// Appends at index count. 0 for a null list or item; the caller keeps within
// the capacity it asked for.
int AddTifTagItem(TifTagList *list, TifTagItem *item);
// Null is ignored.
void FreeTifTagList(TifTagList *list);
void FreeTifTagItem(TifTagItem *item);

#endif
