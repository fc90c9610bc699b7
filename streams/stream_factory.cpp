#include <new>

#include "platform/path_open.h"
#include "streams/file_stream.h"
#include "streams/hook_stream.h"
#include "streams/memory_stream.h"

int CreateFileStream(CStreamIO **stream, const void *path, int mode)
{
    const char *fileMode = mode == STREAM_READ ? "rb" : mode == STREAM_WRITE ? "wb" : nullptr;
    if (fileMode == nullptr) return 0;
    FILE *file = OpenPath(path, fileMode);
    if (file == nullptr) return 0;
    CFileObj *obj = new (std::nothrow) CFileObj(file);
    if (obj == nullptr) {
        std::fclose(file);
        return 0;
    }
    if (mode == STREAM_READ && !obj->MakeReadBuffer()) {
        delete obj;
        return 0;
    }
    // A file fopen has just opened stands at its start already.
    *stream = obj;
    return 1;
}

int CreateMemoryStream(CStreamIO **stream, void *data, int32_t size)
{
    if (data == nullptr || size < 1) return 0;
    CStreamObj *obj = new (std::nothrow) CStreamObj(static_cast<unsigned char *>(data), size);
    if (obj == nullptr) return 0;
    *stream = obj;
    return 1;
}

int CreateHookStream(CStreamIO **stream, CStreamIO *parent, uint32_t size)
{
    if (parent == nullptr || size == 0) return 0;
    CHookStreamObj *obj = new (std::nothrow) CHookStreamObj(parent, parent->Tell(), size);
    if (obj == nullptr) return 0;
    *stream = obj;
    return 1;
}

void DeleteStream(CStreamIO *stream)
{
    delete stream;
}
