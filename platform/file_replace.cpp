#include "platform/file_replace.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "platform/copy_over.h"
#include "platform/fault_point.h"
#include "platform/path_parts.h"

namespace {

// The directory entry of a rename reaches the disk only with the directory.
// The rename has happened by then, so a failure here can't undo it.
void SyncDirectory(const std::string &dir)
{
    int fd = open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return;
    fsync(fd);
    close(fd);
}

int KeepsItsInode(const CTempFile &temp, const CSaveTarget &target)
{
    return target.m_exists && (target.m_info.st_nlink > 1 || !temp.m_ownerKept);
}

}  // namespace

int SyncFile(FILE *file)
{
    if (SystemCallFails(FAULT_SYNC) || std::fflush(file) != 0) return 0;
    return fsync(fileno(file)) == 0;
}

void StartWriteback(FILE *file)
{
    sync_file_range(fileno(file), 0, 0, SYNC_FILE_RANGE_WRITE);
}

int ReplaceFile(const CTempFile &temp, const CSaveTarget &target)
{
    if (KeepsItsInode(temp, target)) return CopyOver(temp.m_path, target);
    if (SystemCallFails(FAULT_RENAME)) return 0;
    if (std::rename(temp.m_path.c_str(), target.m_path.c_str()) == 0) {
        SyncDirectory(DirectoryOf(target.m_path));
        return 1;
    }
    // A file mounted over the target's name can't be renamed over.
    return target.m_exists && (errno == EBUSY || errno == EXDEV) && CopyOver(temp.m_path, target);
}

void RemoveFile(const std::string &path)
{
    int error = errno;
    unlink(path.c_str());
    errno = error;
}
