#include "platform/save_target.h"

#include <fcntl.h>
#include <limits.h>
#include <unistd.h>

#include <cerrno>

#include "platform/fault_point.h"
#include "platform/path_open.h"
#include "platform/path_parts.h"

namespace {

// As many links as the system follows in one path.
constexpr int MAX_LINK_HOPS = 40;

// Follows path to where its chain of symbolic links ends, with info of what
// is there. A relative link counts from the directory of the link itself.
int FollowLinks(std::string &path, struct stat *info)
{
    for (int hops = 0; hops <= MAX_LINK_HOPS; hops++) {
        if (SystemCallFails(FAULT_STAT) || lstat(path.c_str(), info) != 0) return 0;
        if (!S_ISLNK(info->st_mode)) return 1;
        char link[PATH_MAX];
        ssize_t size = SystemCallFails(FAULT_STAT) ? -1 : readlink(path.c_str(), link, sizeof link);
        if (size < 0) return 0;
        if (size == sizeof link) {
            errno = ENAMETOOLONG;
            return 0;
        }
        std::string to(link, size_t(size));
        path = to[0] == '/' ? to : DirectoryOf(path) + "/" + to;
    }
    errno = ELOOP;
    return 0;
}

int IsRegular(const struct stat &info)
{
    if (S_ISREG(info.st_mode)) return 1;
    errno = S_ISDIR(info.st_mode) ? EISDIR : EINVAL;
    return 0;
}

// The open asks the system whether an ordinary write would be let through;
// O_NONBLOCK keeps a FIFO put in the file's place meanwhile from hanging it.
int OpenExisting(CSaveTarget *target)
{
    if (SystemCallFails(FAULT_OPEN)) return 0;
    target->m_file = open(target->m_path.c_str(), O_WRONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
    if (target->m_file < 0) return 0;
    return !SystemCallFails(FAULT_STAT) && fstat(target->m_file, &target->m_info) == 0 && IsRegular(target->m_info);
}

}  // namespace

CSaveTarget::~CSaveTarget()
{
    CloseDescriptor(m_file);
}

// What the system finds at path decides first, so that a device, a FIFO or a
// directory is refused before any link is read: the links of /proc name a
// pipe in words that lead nowhere. Where the system finds a file, so must
// the links; a deleted file named through /proc is refused.
int OpenSaveTarget(const char *path, CSaveTarget *target)
{
    struct stat found;
    const int exists = !SystemCallFails(FAULT_STAT) && stat(path, &found) == 0;
    if (exists && !IsRegular(found)) return 0;
    target->m_path = path;
    if (!FollowLinks(target->m_path, &target->m_info)) return !exists && errno == ENOENT;
    target->m_exists = 1;
    return exists && OpenExisting(target);
}
