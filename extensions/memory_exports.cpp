#include <new>

#include "load/load_document.h"
#include "platform/failure_reason.h"
#include "platform/handed_blocks.h"
#include "reader/reader.h"
#include "save/save_document.h"
#include "streams/growing_stream.h"
#include "streams/stream.h"
#include "tree/document.h"
#include "zexif.h"

namespace {

// Bytes a file may hold: offsets in the tree are 32-bit and signed.
constexpr uint32_t MAX_FILE_SIZE = INT32_MAX;
// What the first bytes need to tell a JPEG from a TIFF.
constexpr uint32_t SMALLEST_FILE = 2;

// The failure of an open of bytes: none given, too few to be a file, or more
// than the library takes.
int RefuseBytes(const void *data, uint32_t size)
{
    if (data == nullptr) return FailExport(ZEXIF_ERROR_ARGUMENT);
    if (size < SMALLEST_FILE) return FailExport(ZEXIF_ERROR_FORMAT);
    return size > MAX_FILE_SIZE ? FailExport(ZEXIF_ERROR_LIMIT) : 0;
}

}  // namespace

CExifDoc *zExifLoadMemory(const void *data, uint32_t size)
{
    BeginExport();
    if (RefuseBytes(data, size) != 0) return nullptr;
    CExifDoc *doc = new (std::nothrow) CExifDoc;
    if (doc == nullptr || !CreateMemoryCopyStream(&doc->m_stream, data, static_cast<int32_t>(size))) {
        delete doc;
        FailExport(ZEXIF_ERROR_MEMORY);
        return nullptr;
    }
    return ParseNewDocument(doc);
}

// Unlike a save to a file, this one leaves the source where it is.
int zExifSaveMemory(CExifDoc *doc, ExifBuffer *out)
{
    BeginExport();
    if (doc == nullptr || out == nullptr) return FailExport(ZEXIF_ERROR_ARGUMENT);
    if (doc->m_format != FORMAT_JPEG && doc->m_format != FORMAT_TIFF) return FailExport(ZEXIF_ERROR_FORMAT);
    CGrowingStreamObj file;
    if (!WriteDocumentTo(doc, &file)) return FailExport(ZEXIF_ERROR_WRITE);
    out->data = file.Release(&out->size);
    ForgetArrayBlock(out->data);
    return 0;
}

CExifReader *zRExifBeginReadMemory(const void *data, uint32_t size)
{
    BeginExport();
    if (RefuseBytes(data, size) != 0) return nullptr;
    CExifReader *reader = new (std::nothrow) CExifReader;
    if (reader == nullptr) {
        FailExport(ZEXIF_ERROR_MEMORY);
        return nullptr;
    }
    reader->m_file.OpenMemory(static_cast<const unsigned char *>(data), size);
    return ScanNewReader(reader);
}
