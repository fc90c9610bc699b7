#ifndef ZEXIF_PLATFORM_TEMP_FILE_H
#define ZEXIF_PLATFORM_TEMP_FILE_H

#include <cstdio>
#include <string>

#include "platform/save_target.h"

// The temporary file of a save. It is locked for as long as the save runs,
// so that a later save tells the leftover of a save that died (unlocked)
// from the file of one that runs.
class CTempFile {
public:
    CTempFile() = default;
    // Releases the lock.
    ~CTempFile();
    CTempFile(const CTempFile &) = delete;
    CTempFile &operator=(const CTempFile &) = delete;

    std::string m_path;
    // A second descriptor of the file, which holds the lock after the
    // stream is closed and until the file is in its place or removed.
    int m_lock = -1;
    // 0 when the system wouldn't let the file take the target's owner.
    int m_ownerKept = 1;
};

// Creates path as a new, locked file for a save to target. It takes the
// owner, group and permission bits of an existing target (a new target gets
// 0666 less the umask, as any new file). A name that exists already fails
// with errno EEXIST, so that no other file is ever truncated; so does one
// that a clean-up removed under the new file. The file open for writing with
// temp filled in, or null with errno.
FILE *CreateTempFile(const std::string &path, const CSaveTarget &target, CTempFile *temp);

// Removes what saves that died left in the folder of base: files named base,
// or base followed by digits, that no running save holds locked. Files that
// can't be opened, locked or removed stay.
void RemoveStaleTempFiles(const std::string &base);

#endif
