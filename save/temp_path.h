#ifndef ZEXIF_SAVE_TEMP_PATH_H
#define ZEXIF_SAVE_TEMP_PATH_H

#include <cstdio>
#include <string>

// The temporary path of a save to path: the file name's extension replaced by
// "$#$", or "$#$" added as an extension to a name without one. Only the last
// path component is searched for the dot, so the file lies in the target's
// own directory, where a rename over the target can't cross file systems.
// A target whose extension is "$#$" already gets a longer name, never itself.
// Returns 1.
int MakeTempPath(std::string &out, const char *path);

// Creates the temporary file of a save to path, taking care never to open a
// file that exists (a leftover of a crashed save, somebody else's file, the
// source itself): when the name of MakeTempPath is taken, numbered variants
// of it are tried. Returns the file open for writing and its path in
// tempPath, or null.
FILE *OpenTempFile(const char *path, std::string &tempPath);

#endif
