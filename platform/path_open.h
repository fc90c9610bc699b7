#ifndef ZEXIF_PLATFORM_PATH_OPEN_H
#define ZEXIF_PLATFORM_PATH_OPEN_H

#include <cstdio>

// Opens a caller's path: first as a narrow string, then, where that fails and
// the bytes can't be a narrow path, as a string of 16-bit characters.
// mode is "rb" or "wb". Returns null when neither reading opens a file.
FILE *OpenPath(const void *path, const char *mode);

#endif
