#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cctype>

#include "platform/fault_point.h"
#include "platform/path_parts.h"
#include "platform/temp_file.h"

namespace {

int IsNumberedName(const std::string &name, const std::string &base)
{
    if (name.compare(0, base.size(), base) != 0) return 0;
    for (size_t i = base.size(); i < name.size(); i++) {
        if (!std::isdigit(static_cast<unsigned char>(name[i]))) return 0;
    }
    return 1;
}

int SameFile(const struct stat &a, const struct stat &b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

// The lock tells a leftover from a running save's file. The name is removed
// only while it still leads to the file locked: another clean-up may have
// removed that file meanwhile, and a new save taken the name.
void RemoveIfUnlocked(const std::string &path)
{
    int file = SystemCallFails(FAULT_OPEN) ? -1 : open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
    if (file < 0) return;
    struct stat locked, named;
    if (!SystemCallFails(FAULT_OPEN) && flock(file, LOCK_EX | LOCK_NB) == 0 && !SystemCallFails(FAULT_STAT) &&
        fstat(file, &locked) == 0 && S_ISREG(locked.st_mode) && lstat(path.c_str(), &named) == 0 &&
        SameFile(locked, named)) {
        unlink(path.c_str());
    }
    close(file);
}

}  // namespace

void RemoveStaleTempFiles(const std::string &base)
{
    const std::string folder = DirectoryOf(base), name = base.substr(NameStart(base));
    DIR *listing = SystemCallFails(FAULT_OPEN) ? nullptr : opendir(folder.c_str());
    if (listing == nullptr) return;
    while (const dirent *entry = readdir(listing)) {
        // Only what may be a regular file is opened: opening a device can act.
        const bool mayBeFile = entry->d_type == DT_REG || entry->d_type == DT_UNKNOWN;
        if (mayBeFile && IsNumberedName(entry->d_name, name)) RemoveIfUnlocked(folder + "/" + entry->d_name);
    }
    closedir(listing);
}
