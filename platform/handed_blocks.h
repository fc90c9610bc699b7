#ifndef ZEXIF_PLATFORM_HANDED_BLOCKS_H
#define ZEXIF_PLATFORM_HANDED_BLOCKS_H

// The array allocator and malloc are two allocators, and a buffer must go
// back to the one it came from. The exports hand out both kinds, and a
// pointer doesn't tell which, so the blocks of the array allocator that are
// out with callers are recorded here, for all threads behind one lock. Every
// handout updates the record, so that an address that comes round again is
// known by its latest kind.

// Records a block of the array allocator that goes out. 0 when the record
// can't grow: the block must not go out then.
int RecordArrayBlock(const void *data);

// Forgets data: a malloc block goes out at that address, or the library took
// the block back.
void ForgetArrayBlock(const void *data);

// 1 when data is a recorded block, which is forgotten; 0 for any other.
int TakeArrayBlock(const void *data);

#endif
