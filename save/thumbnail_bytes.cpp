#include "save/thumbnail_bytes.h"

#include <cstddef>
#include <new>

#include "save/checked_io.h"
#include "save/tag_numbers.h"
#include "streams/stream.h"
#include "tree/document.h"

namespace {

int LiesBelow(const CNode *node, const CNode *top)
{
    if (top == nullptr) return 1;
    for (const CNode *up = node; up != nullptr; up = up->m_parent) {
        if (up == top) return 1;
    }
    return 0;
}

int ReadInto(CTag *thumb, const BlockSource &source, int64_t offset, int32_t size)
{
    unsigned char *bytes = new (std::nothrow) unsigned char[static_cast<size_t>(size)];
    if (bytes == nullptr) return 0;
    uint32_t count = static_cast<uint32_t>(size);
    int ok = SeekTo(source.m_stream, offset) && source.m_stream->Read(bytes, count) == count &&
             thumb->SetData(bytes, size);
    delete[] bytes;
    return ok;
}

}  // namespace

int BringThumbnailIn(CExifDoc *doc, const BlockSource &source, const CNode *top)
{
    CTag *thumb = doc->m_thumbTag;
    if (thumb == nullptr || thumb->m_data != nullptr || !LiesBelow(thumb, top)) return 1;
    CTag *length = thumb->m_parent != nullptr ? FindChainEntry(thumb->m_parent, TAG_STREAM_LENGTH) : nullptr;
    uint32_t offset = 0;
    uint32_t size = 0;
    if (length == nullptr || !ReadNumber(thumb, 0, &offset) || !ReadNumber(length, 0, &size)) return 1;
    if (source.m_stream == nullptr || offset < 1 || size < 1 || int64_t(offset) + size > source.m_size) return 1;
    if (size > uint32_t(INT32_MAX) || !ReadInto(thumb, source, offset, static_cast<int32_t>(size))) return 0;
    doc->m_thumbLoaded = 1;
    return 1;
}
