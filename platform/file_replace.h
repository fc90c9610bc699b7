#ifndef ZEXIF_PLATFORM_FILE_REPLACE_H
#define ZEXIF_PLATFORM_FILE_REPLACE_H

#include <cstdio>
#include <string>

#include "platform/save_target.h"
#include "platform/temp_file.h"

// Hands what stdio holds for the file to the system, and the system's copy to
// the disk. 1 when both went through.
int SyncFile(FILE *file);

// Asks the system to start writing what it holds of the file to the disk,
// without waiting: done while a big file is still being written, the disk
// works beside the writer, and SyncFile waits only for the last part. A hint,
// with nothing to fail.
void StartWriteback(FILE *file);

// Puts the complete temporary file in the place of target. Where the target
// is one file under one name, in one step (a rename), so that a reader sees
// the old file or the new one, never a mix. A target that a rename would
// turn into another file keeps its inode and gets the new bytes by CopyOver:
// one with more than one hard link, one whose owner the temporary file
// couldn't take, one mounted over its name. Returns 1 with temp gone, or 0
// with errno; then the target is untouched unless CopyOver says otherwise.
int ReplaceFile(const CTempFile &temp, const CSaveTarget &target);

// Removes the file at path, if any. errno stays as it was, so that a clean-up
// on the way out keeps the reason of the failure that called for it.
void RemoveFile(const std::string &path);

#endif
