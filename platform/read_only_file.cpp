#include "platform/read_only_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "platform/fault_point.h"
#include "platform/utf16.h"

namespace {

int OpenForReading(const char *path)
{
    return open(path, O_RDONLY | O_CLOEXEC);
}

int IsDirectory(int file)
{
    struct stat info;
    return fstat(file, &info) != 0 || S_ISDIR(info.st_mode);
}

}  // namespace

// A 16-bit path read as a narrow string is often just "/", which opens as a
// directory; where the 16-bit reading is possible, a directory doesn't count
// as the narrow reading's file.
int OpenReadOnlyFile(const void *path)
{
    if (path == nullptr || FaultStrikes(FAULT_OPEN)) return -1;
    const char *narrow = static_cast<const char *>(path);
    int file = OpenForReading(narrow);
    if (!LooksLikeWidePath(narrow)) return file;
    if (file >= 0 && !IsDirectory(file)) return file;
    if (file >= 0) close(file);
    std::string converted;
    if (!Utf16ToUtf8(path, converted)) return -1;
    return OpenForReading(converted.c_str());
}

// A regular file gives a short count only at its end, so one call suffices:
// asking again to be sure would cost every small file a second call.
int64_t ReadFileAt(int file, int64_t position, void *buffer, uint32_t size)
{
    if (FaultStrikes(FAULT_READ)) return -1;
    ssize_t got;
    do {
        got = pread(file, buffer, size, static_cast<off_t>(position));
    } while (got < 0 && errno == EINTR);
    return got;
}

int64_t ReadOnlyFileSize(int file)
{
    struct stat info;
    if (fstat(file, &info) != 0) return -1;
    return info.st_size;
}

void CloseReadOnlyFile(int file)
{
    close(file);
}
