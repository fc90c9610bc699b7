#include "platform/copy_over.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <new>

#include "platform/fault_point.h"
#include "platform/file_replace.h"
#include "platform/path_open.h"

namespace {

constexpr size_t COPY_CHUNK = 1 << 16;

// The space for the new bytes is claimed before the first of them goes over
// the old ones, so that a full disk refuses the save while the target is
// whole. A file system that can't claim space ahead is written all the same.
int ReserveSpace(int file, off_t size)
{
    if (SystemCallFails(FAULT_WRITE)) return 0;
    return size == 0 || fallocate(file, FALLOC_FL_KEEP_SIZE, 0, size) == 0 || errno == EOPNOTSUPP;
}

int WriteAt(int file, const unsigned char *bytes, size_t size, off_t offset)
{
    while (size > 0) {
        ssize_t put = SystemCallFails(FAULT_COPY) ? -1 : pwrite(file, bytes, size, offset);
        if (put < 0) return 0;
        bytes += put;
        size -= size_t(put);
        offset += put;
    }
    return 1;
}

int CopyContents(int from, int to, off_t size, unsigned char *buffer)
{
    off_t done = 0;
    ssize_t got;
    while ((got = SystemCallFails(FAULT_READ) ? -1 : read(from, buffer, COPY_CHUNK)) > 0) {
        if (!WriteAt(to, buffer, size_t(got), done)) return 0;
        done += got;
    }
    if (got < 0) return 0;
    if (SystemCallFails(FAULT_WRITE) || ftruncate(to, size) != 0) return 0;
    return !SystemCallFails(FAULT_SYNC) && fsync(to) == 0;
}

}  // namespace

std::string KeptNewFile(const std::string &temp)
{
    return temp + "new";
}

int CopyOver(const std::string &temp, const CSaveTarget &target)
{
    const std::string kept = KeptNewFile(temp);
    if (SystemCallFails(FAULT_RENAME) || link(temp.c_str(), kept.c_str()) != 0) return 0;
    RemoveFile(temp);
    int from = SystemCallFails(FAULT_OPEN) ? -1 : open(kept.c_str(), O_RDONLY | O_CLOEXEC);
    unsigned char *buffer = new (std::nothrow) unsigned char[COPY_CHUNK];
    struct stat info;
    const int ready = from >= 0 && buffer != nullptr && !SystemCallFails(FAULT_STAT) && fstat(from, &info) == 0 &&
                      ReserveSpace(target.m_file, info.st_size);
    const int copied = ready && CopyContents(from, target.m_file, info.st_size, buffer);
    delete[] buffer;
    CloseDescriptor(from);
    if (copied || !ready) RemoveFile(kept);
    return copied;
}
