#include "streams/stream_size.h"

#include <algorithm>

#include "streams/stream.h"

int64_t StreamSize(CStreamIO *stream)
{
    int32_t here = stream->Tell();
    stream->Seek(2, 0);
    int32_t end = stream->Tell();
    stream->Seek(0, here);
    return std::max<int64_t>(end, 0);
}
