#include "platform/failure_reason.h"

#include <cerrno>

#include "zexif.h"

namespace {

thread_local int t_lastError = ZEXIF_ERROR_NONE;
thread_local int t_noted = ZEXIF_ERROR_NONE;

}  // namespace

void BeginExport()
{
    t_noted = ZEXIF_ERROR_NONE;
}

int NoteFailure(int code)
{
    if (t_noted == ZEXIF_ERROR_NONE) t_noted = code;
    return 0;
}

int NoteSystemFailure(int code)
{
    const int refused = errno == EACCES || errno == EPERM || errno == EROFS;
    return NoteFailure(refused ? ZEXIF_ERROR_ACCESS : code);
}

int FailExport(int code)
{
    t_lastError = t_noted != ZEXIF_ERROR_NONE ? t_noted : code;
    t_noted = ZEXIF_ERROR_NONE;
    return -1;
}

int LastError()
{
    return t_lastError;
}

int NotedFailure()
{
    return t_noted;
}

int RefuseNullHandle()
{
    t_lastError = ZEXIF_ERROR_ARGUMENT;
    return 0;
}
