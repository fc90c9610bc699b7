#include <cstdint>
#include <new>

#include "load/doc_builder.h"
#include "load/jpeg_parser.h"
#include "load/load_document.h"
#include "load/tiff_parser.h"
#include "load/tiff_types.h"
#include "platform/failure_reason.h"
#include "streams/stream.h"
#include "tree/document.h"
#include "zexif.h"

namespace {

int IsJpeg(const unsigned char *head)
{
    return head[0] == 0xFF && head[1] == 0xD8;
}

int IsTiff(const unsigned char *head)
{
    return IsByteOrderMark(head);
}

// Offsets in the tree are 32-bit, and so is the stream's Tell, which wraps
// for larger files and can't tell their size: the byte that would lie at the
// largest offset is looked for instead.
int IsTooLarge(CStreamIO *stream)
{
    unsigned char byte;
    stream->Seek(0, INT32_MAX);
    int found = stream->Read(&byte, 1) == 1;
    stream->Seek(0, 0);
    return found;
}

int ParseDocument(CExifDoc *doc)
{
    CStreamIO *stream = doc->m_stream;
    unsigned char head[4] = {};
    stream->Seek(0, 0);
    uint32_t got = stream->Read(head, 4);
    stream->Seek(0, 0);
    if (got < 2) return NoteFailure(ZEXIF_ERROR_FORMAT);
    if (IsTooLarge(stream)) return NoteFailure(ZEXIF_ERROR_LIMIT);
    CDocBuilder builder(doc);
    if (IsJpeg(head)) {
        doc->m_format = FORMAT_JPEG;
        return ParseJpeg(stream, &builder);
    }
    if (IsTiff(head)) {
        doc->m_format = FORMAT_TIFF;
        return ParseTiff(stream, &builder);
    }
    return NoteFailure(ZEXIF_ERROR_FORMAT);
}

}  // namespace

// A read that failed may have cut the tree short of the file.
CExifDoc *ParseNewDocument(CExifDoc *doc)
{
    int parsed = ParseDocument(doc);
    if (doc->m_stream->HasFailed()) parsed = NoteFailure(ZEXIF_ERROR_READ);
    if (parsed) return doc;
    delete doc;
    FailExport(ZEXIF_ERROR_DAMAGED);
    return nullptr;
}

extern "C" {

CExifDoc *zExifLoadFile(const void *path)
{
    BeginExport();
    if (path == nullptr) {
        FailExport(ZEXIF_ERROR_ARGUMENT);
        return nullptr;
    }
    CExifDoc *doc = new (std::nothrow) CExifDoc;
    if (doc == nullptr) {
        FailExport(ZEXIF_ERROR_MEMORY);
        return nullptr;
    }
    if (!CreateFileStream(&doc->m_stream, path, STREAM_READ)) {
        delete doc;
        FailExport(ZEXIF_ERROR_OPEN);
        return nullptr;
    }
    doc->m_path = path;
    return ParseNewDocument(doc);
}

void zExifDestroy(CExifDoc *doc)
{
    delete doc;
}

int zExifGetFileFormat(CExifDoc *doc)
{
    return doc == nullptr ? RefuseNullHandle() : doc->m_format;
}

int zExifIsExifExist(CExifDoc *doc)
{
    return doc == nullptr ? RefuseNullHandle() : doc->m_hasExif;
}

}
