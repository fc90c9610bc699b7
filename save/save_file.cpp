#include <cerrno>
#include <string>

#include "platform/failure_reason.h"
#include "platform/file_replace.h"
#include "platform/save_target.h"
#include "platform/temp_file.h"
#include "save/audio_segments.h"
#include "save/jpeg_save.h"
#include "save/save_document.h"
#include "save/temp_path.h"
#include "save/tiff_save.h"
#include "streams/file_stream.h"
#include "tree/document.h"
#include "zexif.h"

namespace {

// The audio file is opened only when planned segments need its bytes.
int OpenAudio(CExifDoc *doc)
{
    if (doc->m_format != FORMAT_JPEG || !HasPlannedAudio(doc)) return 1;
    if (doc->m_audioPath == nullptr) return 0;
    return CreateFileStream(&doc->m_audioStream, doc->m_audioPath, STREAM_READ);
}

void CloseAudio(CExifDoc *doc)
{
    DeleteStream(doc->m_audioStream);
    doc->m_audioStream = nullptr;
}

int StreamFailed(CStreamIO *stream)
{
    return stream != nullptr && stream->HasFailed();
}

// A source or audio file that failed a read or a seek on the way may have
// given wrong bytes where the writer didn't check, so it fails the save.
int WriteDocument(CExifDoc *doc, CStreamIO *out)
{
    int ok = doc->m_format == FORMAT_JPEG ? SaveJpeg(doc, out) : SaveTiff(doc, out);
    if (StreamFailed(doc->m_stream) || StreamFailed(doc->m_audioStream)) return NoteFailure(ZEXIF_ERROR_READ);
    return ok;
}

// Every byte must be on the disk before the file goes over the target.
int WriteTempFile(CExifDoc *doc, CFileObj *out)
{
    int ok = WriteDocumentTo(doc, out) && SyncFile(out->m_file);
    return out->Close() && ok;
}

// A target refused or a temporary file not made: errno stays the system's
// reason for the caller.
int FailTargetExport()
{
    NoteSystemFailure(ZEXIF_ERROR_OPEN);
    return FailExport(ZEXIF_ERROR_OPEN);
}

}  // namespace

int WriteDocumentTo(CExifDoc *doc, CStreamIO *out)
{
    if (!OpenAudio(doc)) return NoteFailure(ZEXIF_ERROR_OPEN);
    int ok = WriteDocument(doc, out);
    CloseAudio(doc);
    return ok;
}

// The new file is written beside the target and put in its place, so that
// the target holds the old file or the new one and never a part; a target
// that must keep its inode is written over from the complete new file (see
// ReplaceFile). The target stays what it was: a link stays a link, the file
// keeps its owner, group and bits. Any failure removes the temporary file,
// leaves the target as it was and keeps the source open, so that the
// document can still be saved elsewhere; errno tells the system's reason,
// or is 0 where the document itself couldn't be written. After a save the
// document's source is closed, as its file may be gone.
int zExifSaveFile(CExifDoc *doc, const char *path)
{
    BeginExport();
    if (doc == nullptr || path == nullptr || path[0] == '\0') return FailExport(ZEXIF_ERROR_ARGUMENT);
    if (doc->m_format != FORMAT_JPEG && doc->m_format != FORMAT_TIFF) return FailExport(ZEXIF_ERROR_FORMAT);
    CSaveTarget target;
    CTempFile temp;
    if (!OpenSaveTarget(path, &target)) return FailTargetExport();
    FILE *file = OpenTempFile(target, &temp);
    if (file == nullptr) return FailTargetExport();
    // Names tried and taken on the way are no reason for what fails from here.
    errno = 0;
    CFileObj out(file);
    if (!WriteTempFile(doc, &out) || !ReplaceFile(temp, target)) {
        RemoveFile(temp.m_path);
        return FailExport(ZEXIF_ERROR_WRITE);
    }
    DeleteStream(doc->m_stream);
    doc->m_stream = nullptr;
    return 0;
}
