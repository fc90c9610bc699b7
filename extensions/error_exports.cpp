#include "platform/failure_reason.h"
#include "zexif.h"

namespace {

const char *const ERROR_TEXTS[] = {
    "no error",
    "an argument is missing or not valid for this call",
    "the file can't be opened or created",
    "the file is not a JPEG or TIFF file, or not of the format this call works on",
    "the file is damaged: its structure can't be read",
    "there is no such tag, IFD, segment, thumbnail or audio",
    "out of memory",
    "a bound of the library is passed: file, value or segment size",
    "writing the file failed; the disk may be full",
    "the system refused access to the file",
    "the file can't be read as it was: it changed, or a save closed the document's source",
};

}  // namespace

int zExifGetLastError(void)
{
    return LastError();
}

const char *zExifGetErrorText(int error)
{
    if (error < 0 || error >= static_cast<int>(sizeof ERROR_TEXTS / sizeof ERROR_TEXTS[0])) return "unknown error code";
    return ERROR_TEXTS[error];
}
