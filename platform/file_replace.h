#ifndef ZEXIF_PLATFORM_FILE_REPLACE_H
#define ZEXIF_PLATFORM_FILE_REPLACE_H

#include <cstdio>
#include <string>

// Creates path as a new file for writing; a name that exists already is
// refused (errno EEXIST), so that no other file is ever truncated. Null on
// failure.
FILE *CreateNewFile(const std::string &path);

// Hands what stdio holds for the file to the system, and the system's copy to
// the disk. 1 when both went through.
int SyncFile(FILE *file);

// Asks the system to start writing what it holds of the file to the disk,
// without waiting: done while a big file is still being written, the disk
// works beside the writer, and SyncFile waits only for the last part. A hint,
// with nothing to fail.
void StartWriteback(FILE *file);

// Puts temp in the place of target in one step (a rename), so that a reader
// of target sees the old file or the new one, never a mix. Where the two lie
// on different file systems, ReplaceByCopy does it. The new file takes over
// the permission bits of the target it replaces. Returns 1 with temp gone, or
// 0 with target untouched and temp still there.
int ReplaceFile(const std::string &temp, const std::string &target);

// Copies temp to a new file beside target, syncs it and renames it over
// target. Returns 1, or 0 with target untouched and the copy removed; temp
// stays either way.
int ReplaceByCopy(const std::string &temp, const std::string &target);

// 1 when no file is left at path.
int RemoveFile(const std::string &path);

#endif
