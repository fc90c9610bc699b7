#include "extensions/reader_ifds.h"

#include "extensions/ifd_ids.h"
#include "reader/cached_file.h"
#include "reader/ifd_table.h"
#include "reader/reader.h"
#include "reader/tag_value.h"
#include "streams/byte_order.h"
#include "streams/stream.h"
#include "zexif.h"

namespace {

// IFDs of a chain walked to find one, as many as a load reads at most.
constexpr int MAX_WALKED_IFDS = 1024;

// Stands the stream on the entry count of the IFD at offset and reads it.
// 0 for an offset outside the data or an IFD without entries.
int32_t EnterIfd(ReaderTiff *tiff, int32_t offset)
{
    if (offset <= 0) return 0;
    tiff->m_stream->Seek(0, offset);
    if (tiff->m_stream->Tell() != offset) return 0;
    return ReadEntryCount(tiff->m_stream, tiff->m_bigEndian);
}

// The link behind the IFD at offset, 0 when the table or link is cut off.
int32_t LinkBehind(ReaderTiff *tiff, int32_t offset)
{
    int32_t count = EnterIfd(tiff, offset);
    IfdTable table(tiff->m_stream, count, 4);
    uint32_t tableSize = static_cast<uint32_t>(count) * IFD_ENTRY_SIZE;
    if (table.Bytes() == nullptr || table.Got() < tableSize + 4) return 0;
    return static_cast<int32_t>(ReadU32(table.Bytes() + tableSize, tiff->m_bigEndian));
}

// The IFD that the first entry of that number with a pointer's form points to.
int32_t PointedIfd(ReaderTiff *tiff, int32_t offset, uint32_t pointer)
{
    int32_t count = EnterIfd(tiff, offset);
    IfdTable table(tiff->m_stream, count, 0);
    if (table.Bytes() == nullptr) return 0;
    uint32_t whole = table.Got() / IFD_ENTRY_SIZE;
    for (uint32_t i = 0; i < whole; i++) {
        const unsigned char *p = table.Bytes() + i * IFD_ENTRY_SIZE;
        if (ReadU16(p, tiff->m_bigEndian) != pointer) continue;
        IfdEntry entry = DecodeEntry(p, tiff->m_bigEndian);
        if (!IsIfdPointer(entry.type, entry.count)) continue;
        return static_cast<int32_t>(EntryNumber(EntryField(p), entry.type, entry.count, tiff->m_bigEndian));
    }
    return 0;
}

int32_t ChainIfd(ReaderTiff *tiff, int index)
{
    if (index >= MAX_WALKED_IFDS) return 0;
    int32_t visited[MAX_WALKED_IFDS];
    int32_t offset = tiff->m_firstIfd;
    for (int i = 0; i < index && offset > 0; i++) {
        visited[i] = offset;
        offset = LinkBehind(tiff, offset);
        for (int j = 0; j <= i; j++) {
            if (visited[j] == offset) return 0;
        }
    }
    return offset;
}

int32_t FollowTo(ReaderTiff *tiff, int ifd)
{
    if (IsChainIfd(ifd)) return ChainIfd(tiff, ifd);
    uint32_t path[2];
    const int depth = SubIfdPath(ifd, path);
    int32_t offset = tiff->m_firstIfd;
    for (int i = 0; i < depth && offset > 0; i++) offset = PointedIfd(tiff, offset, path[i]);
    return offset;
}

}  // namespace

int OpenReaderTiff(CExifReader *reader, ReaderTiff *tiff)
{
    if (reader->m_format == FORMAT_JPEG) {
        if (!LoadExifBlock(reader, &tiff->m_block)) return 0;
        tiff->m_stream = tiff->m_block.m_stream;
    } else {
        tiff->m_stream = &reader->m_file;
        reader->m_file.Seek(0, 0);
    }
    if (!ReadTiffHeader(tiff->m_stream, reader, &tiff->m_firstIfd)) return 0;
    tiff->m_bigEndian = reader->m_bigEndian;
    return 1;
}

void CloseReaderTiff(ReaderTiff *tiff)
{
    ReleaseExifBlock(&tiff->m_block);
}

// The IFD must have entries: one without would be none to a load.
int32_t LocateIfd(ReaderTiff *tiff, int ifd)
{
    int32_t offset = FollowTo(tiff, ifd);
    return EnterIfd(tiff, offset) > 0 ? offset : 0;
}

