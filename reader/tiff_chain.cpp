#include "reader/tiff_chain.h"

#include <new>

#include "load/tiff_types.h"
#include "platform/failure_reason.h"
#include "reader/cached_file.h"
#include "reader/ifd_scan.h"
#include "reader/reader.h"
#include "streams/byte_order.h"
#include "streams/stream.h"
#include "zexif.h"

namespace {

// Offsets of the IFDs a walk has read.
struct VisitedIfds {
    int32_t m_offsets[MAX_CHAIN_IFDS];
    int m_count = 0;

    // 0 when the offset was visited before or the walk has gone far enough.
    int Enter(int32_t offset)
    {
        if (m_count == MAX_CHAIN_IFDS) return 0;
        for (int i = 0; i < m_count; i++) {
            if (m_offsets[i] == offset) return 0;
        }
        m_offsets[m_count++] = offset;
        return 1;
    }
};

// On a JPEG reader the first offset can't lie behind the segment. The bound is
// the segment's payload, the "Exif" prefix included, as readers have always
// taken it; an offset behind the block's end is caught by the seek.
int FirstIfdInBounds(const CExifReader *reader, int32_t offset)
{
    return reader->m_exifSegment.size <= 0 || offset <= reader->m_exifSegment.size;
}

}  // namespace

int ReadTiffHeader(CStreamIO *stream, CExifReader *reader, int32_t *firstIfd)
{
    unsigned char header[8];
    uint32_t got = stream->Read(header, 8);
    if (got < 2) return 0;
    int bigEndian;
    if (!ReadByteOrderMark(header, &bigEndian)) return 0;
    reader->m_bigEndian = bigEndian;
    if (got < 8) return 0;
    *firstIfd = static_cast<int32_t>(ReadU32(header + 4, bigEndian));
    return 1;
}

// A memory stream reports the position it reached, which falls short of an
// offset behind its end; a file stream reports 0 and ends the walk with an
// empty read. Negative offsets, from a link with its top bit set, are never
// sought to.
void ScanTiffChain(CStreamIO *stream, CExifReader *reader)
{
    int32_t offset = 0;
    if (!ReadTiffHeader(stream, reader, &offset) || !FirstIfdInBounds(reader, offset)) return;
    VisitedIfds visited;
    while (offset > 0 && visited.Enter(offset)) {
        int32_t reached = stream->Seek(0, offset);
        if (reached > 0 && reached < offset) return;
        offset = ScanIfd(reader->m_bigEndian, stream, reader, 0, 0);
    }
}

// A block in the head of the file is looked at where it lies; the memory
// stream only reads it.
int LoadExifBlock(CExifReader *reader, ExifBlock *block)
{
    int32_t size = reader->m_exifSegment.size - EXIF_PREFIX_SIZE;
    if (size < 1) return 0;
    int32_t start = reader->m_exifSegment.offset + EXIF_PREFIX_SIZE;
    unsigned char *head = nullptr;
    uint32_t inHead = reader->m_file.HeadView(start, static_cast<uint32_t>(size), &head);
    if (inHead > 0) return CreateMemoryStream(&block->m_stream, head, static_cast<int32_t>(inHead));
    reader->m_file.Seek(0, start);
    unsigned char *data = new (std::nothrow) unsigned char[static_cast<uint32_t>(size)];
    if (data == nullptr) return NoteFailure(ZEXIF_ERROR_MEMORY);
    uint32_t got = reader->m_file.Read(data, static_cast<uint32_t>(size));
    if (!CreateMemoryStream(&block->m_stream, data, static_cast<int32_t>(got))) {
        delete[] data;
        return 0;
    }
    block->m_data = data;
    return 1;
}

void ReleaseExifBlock(ExifBlock *block)
{
    DeleteStream(block->m_stream);
    delete[] block->m_data;
    block->m_stream = nullptr;
    block->m_data = nullptr;
}
