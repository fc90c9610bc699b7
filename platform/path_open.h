#ifndef ZEXIF_PLATFORM_PATH_OPEN_H
#define ZEXIF_PLATFORM_PATH_OPEN_H

#include <cstdio>

// Opens a caller's path: first as a narrow string, then, where that fails and
// the bytes can't be a narrow path, as a string of 16-bit characters.
// mode is "rb" or "wb". Returns null when neither reading opens a file.
FILE *OpenPath(const void *path, const char *mode);

// The same for a descriptor opened with open(2)'s flags: -1 when neither
// reading opens a file.
int OpenPathDescriptor(const void *path, int flags);

// Closes file where it is one: -1 stands for none.
void CloseDescriptor(int file);

#endif
