#ifndef ZEXIF_SAVE_TEMP_PATH_H
#define ZEXIF_SAVE_TEMP_PATH_H

#include <cstdio>
#include <string>

#include "platform/save_target.h"
#include "platform/temp_file.h"

// The temporary path of a save to path: the file name's extension replaced by
// "$#$", or "$#$" added as an extension to a name without one. Only the last
// path component is searched for the dot, so the file lies in the target's
// own directory, where a rename over the target can't cross file systems.
// A target whose extension is "$#$" already gets a longer name, never itself.
// A name too long for the file system, with the numbers and suffixes that
// may follow, is cut and marked with a hash of the whole name, so that it
// still names this target alone. Returns 1.
int MakeTempPath(std::string &out, const char *path);

// Creates the temporary file of a save to target, locked while the save
// runs. Where the name of MakeTempPath is taken, the leftovers of saves that
// died are removed first; a name still taken, by a running save or by
// somebody else's file, is left alone and numbered variants are tried.
// Returns the file open for writing, or null with errno.
FILE *OpenTempFile(const CSaveTarget &target, CTempFile *temp);

#endif
