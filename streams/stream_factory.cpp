#include <cstring>
#include <new>

#include "platform/failure_reason.h"
#include "platform/path_open.h"
#include "streams/file_stream.h"
#include "streams/hook_stream.h"
#include "streams/memory_stream.h"
#include "zexif.h"

int CreateFileStream(CStreamIO **stream, const void *path, int mode)
{
    const char *fileMode = mode == STREAM_READ ? "rb" : mode == STREAM_WRITE ? "wb" : nullptr;
    if (fileMode == nullptr) return 0;
    FILE *file = OpenPath(path, fileMode);
    if (file == nullptr) return 0;
    CFileObj *obj = new (std::nothrow) CFileObj(file);
    if (obj == nullptr) {
        std::fclose(file);
        return NoteFailure(ZEXIF_ERROR_MEMORY);
    }
    if (mode == STREAM_READ && !obj->MakeReadBuffer()) {
        delete obj;
        return NoteFailure(ZEXIF_ERROR_MEMORY);
    }
    // A file fopen has just opened stands at its start already.
    *stream = obj;
    return 1;
}

int CreateMemoryStream(CStreamIO **stream, void *data, int32_t size)
{
    if (data == nullptr || size < 1) return 0;
    CStreamObj *obj = new (std::nothrow) CStreamObj(static_cast<unsigned char *>(data), size);
    if (obj == nullptr) return NoteFailure(ZEXIF_ERROR_MEMORY);
    *stream = obj;
    return 1;
}

int CreateMemoryCopyStream(CStreamIO **stream, const void *data, int32_t size)
{
    if (data == nullptr || size < 1) return 0;
    unsigned char *copy = new (std::nothrow) unsigned char[static_cast<size_t>(size)];
    CStreamObj *obj = copy != nullptr ? new (std::nothrow) COwnedStreamObj(copy, size) : nullptr;
    if (obj == nullptr) {
        delete[] copy;
        return NoteFailure(ZEXIF_ERROR_MEMORY);
    }
    std::memcpy(copy, data, static_cast<size_t>(size));
    *stream = obj;
    return 1;
}

int CreateHookStream(CStreamIO **stream, CStreamIO *parent, uint32_t size)
{
    if (parent == nullptr || size == 0) return 0;
    CHookStreamObj *obj = new (std::nothrow) CHookStreamObj(parent, parent->Tell(), size);
    if (obj == nullptr) return NoteFailure(ZEXIF_ERROR_MEMORY);
    *stream = obj;
    return 1;
}

void DeleteStream(CStreamIO *stream)
{
    delete stream;
}
