#ifndef ZEXIF_SAVE_CHECKED_IO_H
#define ZEXIF_SAVE_CHECKED_IO_H

#include <cstdint>

class CBlock;
class CStreamIO;

// A save must not write what it couldn't read, nor count a clipped write as
// done; these are the stream operations of the save, each with its result.

// Brings a block's data into memory as CBlock::Load does, but only when the
// stream delivers every byte: a source that has shrunk since the load fails
// here instead of being written as zeros. A block of size 0 has nothing to
// load. Returns 1, or 0 with the block unchanged.
int LoadChecked(CBlock *block, CStreamIO *stream);

// Moves to pos and checks that the stream got there. 1 on success.
int SeekTo(CStreamIO *stream, int64_t pos);

// 1 when the stream took all size bytes.
int WriteAll(CStreamIO *out, const void *data, int64_t size);

// Copies size bytes from offset in from to out's position, a chunk at a time,
// so that an image of any size needs little memory. 1 when every byte was
// read and written.
int CopyBytes(CStreamIO *from, int64_t offset, int64_t size, CStreamIO *out);

#endif
