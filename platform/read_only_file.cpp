#include "platform/read_only_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/fault_point.h"
#include "platform/path_open.h"

int OpenReadOnlyFile(const void *path)
{
    return OpenPathDescriptor(path, O_RDONLY);
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
