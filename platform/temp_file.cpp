#include "platform/temp_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>

#include "platform/fault_point.h"
#include "platform/path_open.h"

namespace {

// A clean-up may open the new file before its lock is taken, lock it first
// and remove it; then the name isn't this save's any more (errno EEXIST).
// A file system without locks can't tell leftovers either, so the file goes
// unlocked and no clean-up removes it.
int LockNewFile(int file)
{
    struct stat info;
    if (SystemCallFails(FAULT_OPEN) || flock(file, LOCK_EX | LOCK_NB) != 0) {
        if (errno == EWOULDBLOCK) errno = EEXIST;
        if (errno != ENOLCK && errno != EOPNOTSUPP) return 0;
    }
    if (SystemCallFails(FAULT_STAT) || fstat(file, &info) != 0) return 0;
    if (info.st_nlink == 0) errno = EEXIST;
    return info.st_nlink > 0;
}

// The new file is to be the old one, so it takes its owner, group and bits;
// fchown comes first, as it may clear set-id bits. Only root can give a file
// away: where the system refuses, the save writes over the target instead.
int TakeOverOwner(int file, const struct stat &target, CTempFile *temp)
{
    if (SystemCallFails(FAULT_OWNER) || fchown(file, target.st_uid, target.st_gid) != 0) {
        if (errno != EPERM) return 0;
        temp->m_ownerKept = 0;
    }
    return !SystemCallFails(FAULT_OWNER) && fchmod(file, target.st_mode & 07777) == 0;
}

int PrepareNewFile(int file, const CSaveTarget &target, CTempFile *temp)
{
    if (!LockNewFile(file) || (target.m_exists && !TakeOverOwner(file, target.m_info, temp))) return 0;
    temp->m_lock = SystemCallFails(FAULT_OPEN) ? -1 : dup(file);
    return temp->m_lock >= 0;
}

}  // namespace

CTempFile::~CTempFile()
{
    CloseDescriptor(m_lock);
}

FILE *CreateTempFile(const std::string &path, const CSaveTarget &target, CTempFile *temp)
{
    // Until it has the target's owner and bits, the file is the caller's alone.
    const mode_t mode = target.m_exists ? 0600 : 0666;
    int file = SystemCallFails(FAULT_OPEN) ? -1 : open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (file < 0) return nullptr;
    temp->m_path = path;
    FILE *stream = PrepareNewFile(file, target, temp) ? fdopen(file, "wb") : nullptr;
    if (stream != nullptr) return stream;
    int error = errno;
    // A name taken back by a clean-up may be somebody else's file by now.
    if (error != EEXIST) unlink(path.c_str());
    close(file);
    errno = error;
    return nullptr;
}
