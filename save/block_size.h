#ifndef ZEXIF_SAVE_BLOCK_SIZE_H
#define ZEXIF_SAVE_BLOCK_SIZE_H

#include <cstdint>

#include "save/entry_plan.h"

class CNode;

// The sizes are what a CExifWriter without a stream lays out, so they count
// exactly what it writes: dropped entries not at all, sub-IFDs at any depth,
// strip arrays and bulk data. -1 when the writer would refuse the chain.

// Bytes of one IFD, owner an IFD node or a pointer tag, with everything that
// hangs behind it; 0 for one without entries, which isn't written.
int64_t ComputeIfdSize(const BlockSource &source, CNode *owner, int depth);

// Bytes of the whole block behind the header node, its maker note kept in
// place or not; 0 without a header.
int64_t ComputeExifSize(const BlockSource &source, CNode *header, int keepMakerNote = 1);

#endif
