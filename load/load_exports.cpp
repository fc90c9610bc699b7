#include <cstdint>
#include <new>

#include "load/doc_builder.h"
#include "load/jpeg_parser.h"
#include "load/tiff_parser.h"
#include "load/tiff_types.h"
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
    if (got < 2 || IsTooLarge(stream)) return 0;
    CDocBuilder builder(doc);
    if (IsJpeg(head)) {
        doc->m_format = FORMAT_JPEG;
        return ParseJpeg(stream, &builder);
    }
    if (IsTiff(head)) {
        doc->m_format = FORMAT_TIFF;
        return ParseTiff(stream, &builder);
    }
    return 0;
}

}  // namespace

extern "C" {

CExifDoc *zExifLoadFile(const void *path)
{
    CExifDoc *doc = new (std::nothrow) CExifDoc;
    if (doc == nullptr) return nullptr;
    if (!CreateFileStream(&doc->m_stream, path, STREAM_READ)) {
        delete doc;
        return nullptr;
    }
    doc->m_path = path;
    if (!ParseDocument(doc) || doc->m_stream->HasFailed()) {
        delete doc;
        return nullptr;
    }
    return doc;
}

void zExifDestroy(CExifDoc *doc)
{
    delete doc;
}

int zExifGetFileFormat(CExifDoc *doc)
{
    return doc == nullptr ? 0 : doc->m_format;
}

int zExifIsExifExist(CExifDoc *doc)
{
    return doc == nullptr ? 0 : doc->m_hasExif;
}

}
