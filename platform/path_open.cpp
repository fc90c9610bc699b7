#include "platform/path_open.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "platform/failure_reason.h"
#include "platform/fault_point.h"
#include "platform/utf16.h"
#include "zexif.h"

namespace {

int OpenDescriptor(const char *path, int flags)
{
    if (FaultStrikes(FAULT_OPEN)) {
        errno = EIO;
        return -1;
    }
    return open(path, flags | O_CLOEXEC, 0666);
}

int IsDirectory(int file)
{
    struct stat info;
    return fstat(file, &info) != 0 || S_ISDIR(info.st_mode);
}

// A 16-bit path read as a narrow string is often just "/", which opens as a
// directory; where the 16-bit reading is possible, a directory doesn't count
// as the narrow reading's file. A file to be made would always open under
// the narrow reading, named by the path's first byte or bytes: there the
// 16-bit reading goes first, where it is a path.
int OpenEitherReading(const void *path, int flags)
{
    const char *narrow = static_cast<const char *>(path);
    if (!LooksLikeWidePath(narrow)) return OpenDescriptor(narrow, flags);
    std::string converted;
    int creating = (flags & O_CREAT) != 0;
    if (creating && Utf16ToUtf8(path, converted)) return OpenDescriptor(converted.c_str(), flags);
    int file = OpenDescriptor(narrow, flags);
    if (creating || (file >= 0 && !IsDirectory(file))) return file;
    CloseDescriptor(file);
    if (!Utf16ToUtf8(path, converted)) return -1;
    return OpenDescriptor(converted.c_str(), flags);
}

}  // namespace

// Where no reading opens a file, the reason noted is the one the system gave
// for the last reading tried.
int OpenPathDescriptor(const void *path, int flags)
{
    if (path == nullptr) return -1;
    int file = OpenEitherReading(path, flags);
    if (file < 0) NoteSystemFailure(ZEXIF_ERROR_OPEN);
    return file;
}

FILE *OpenPath(const void *path, const char *mode)
{
    const int flags = std::strcmp(mode, "wb") == 0 ? O_WRONLY | O_CREAT | O_TRUNC : O_RDONLY;
    const int descriptor = OpenPathDescriptor(path, flags);
    if (descriptor < 0) return nullptr;
    FILE *file = fdopen(descriptor, mode);
    if (file == nullptr) {
        close(descriptor);
        return nullptr;
    }
    return file;
}

void CloseDescriptor(int file)
{
    if (file >= 0) close(file);
}
