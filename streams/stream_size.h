#ifndef ZEXIF_STREAMS_STREAM_SIZE_H
#define ZEXIF_STREAMS_STREAM_SIZE_H

#include <cstdint>

class CStreamIO;

// Bytes from the stream's position 0 to its end, the position left as it was.
// A view counts to the end of its parent: values of an Exif block may lie
// behind the segment that holds the block.
int64_t StreamSize(CStreamIO *stream);

#endif
