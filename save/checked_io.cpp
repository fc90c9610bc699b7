#include "save/checked_io.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>

#include "platform/failure_reason.h"
#include "streams/stream.h"
#include "tree/node.h"
#include "zexif.h"

namespace {

constexpr int64_t COPY_CHUNK = 1 << 16;

}  // namespace

int LoadChecked(CBlock *block, CStreamIO *stream)
{
    if (block->m_state == BLOCK_NOTHING) return 1;
    if (block->m_state == BLOCK_IN_MEMORY) return block->m_size == 0 || block->m_data != nullptr;
    if (block->m_size == 0) return 1;
    if (block->m_size < 0 || stream == nullptr) return NoteFailure(ZEXIF_ERROR_READ);
    unsigned char *buffer = new (std::nothrow) unsigned char[static_cast<size_t>(block->m_size)];
    if (buffer == nullptr) return NoteFailure(ZEXIF_ERROR_MEMORY);
    uint32_t size = static_cast<uint32_t>(block->m_size);
    if (!SeekTo(stream, block->m_offset) || stream->Read(buffer, size) != size) {
        delete[] buffer;
        return NoteFailure(ZEXIF_ERROR_READ);
    }
    return block->AdoptData(buffer, block->m_size);
}

int SeekTo(CStreamIO *stream, int64_t pos)
{
    if (pos < 0 || pos > INT32_MAX) return 0;
    int32_t target = static_cast<int32_t>(pos);
    stream->Seek(0, target);
    return stream->Tell() == target;
}

int WriteAll(CStreamIO *out, const void *data, int64_t size)
{
    if (size < 0 || size > INT32_MAX) return 0;
    if (size == 0) return 1;
    uint32_t count = static_cast<uint32_t>(size);
    return out->Write(data, count) == count ? 1 : NoteFailure(ZEXIF_ERROR_WRITE);
}

int CopyBytes(CStreamIO *from, int64_t offset, int64_t size, CStreamIO *out)
{
    if (size == 0) return 1;
    if (from == nullptr || size < 0) return NoteFailure(ZEXIF_ERROR_READ);
    int64_t chunk = std::min(size, COPY_CHUNK);
    unsigned char *buffer = new (std::nothrow) unsigned char[static_cast<size_t>(chunk)];
    if (buffer == nullptr) return NoteFailure(ZEXIF_ERROR_MEMORY);
    int ok = SeekTo(from, offset) || NoteFailure(ZEXIF_ERROR_READ);
    for (int64_t done = 0; ok && done < size; done += chunk) {
        chunk = std::min(chunk, size - done);
        uint32_t count = static_cast<uint32_t>(chunk);
        ok = (from->Read(buffer, count) == count || NoteFailure(ZEXIF_ERROR_READ)) && WriteAll(out, buffer, chunk);
    }
    delete[] buffer;
    return ok;
}
