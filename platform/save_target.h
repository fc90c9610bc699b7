#ifndef ZEXIF_PLATFORM_SAVE_TARGET_H
#define ZEXIF_PLATFORM_SAVE_TARGET_H

#include <sys/stat.h>

#include <string>

// The file that a save to a path writes, found before anything is written.
class CSaveTarget {
public:
    CSaveTarget() = default;
    ~CSaveTarget();
    CSaveTarget(const CSaveTarget &) = delete;
    CSaveTarget &operator=(const CSaveTarget &) = delete;

    // The path with its symbolic links followed: the link stays, the file it
    // names is written.
    std::string m_path;
    int m_exists = 0;
    // What the existing file is, as seen through m_file.
    struct stat m_info = {};
    // The existing file, open for writing.
    int m_file = -1;
};

// Fills target for a save to path. A path that names nothing yet (or a link
// to nothing) gives a target that doesn't exist. An existing target must be
// a regular file that the caller may write to, as an ordinary write would
// find: a directory fails with errno EISDIR, any other kind of file with
// EINVAL, a file without write permission with EACCES. 1, or 0 with errno.
int OpenSaveTarget(const char *path, CSaveTarget *target);

#endif
