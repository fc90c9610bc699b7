#ifndef ZEXIF_PLATFORM_READ_ONLY_FILE_H
#define ZEXIF_PLATFORM_READ_ONLY_FILE_H

#include <cstdint>

// A file read through plain system calls at given positions: no stdio buffer
// that is filled and copied again, no fstat to size one, no seeks. A reader
// that only asks questions needs an open, a read of the head and a close.

// Opens a caller's path for reading as OpenPath does. The descriptor, or -1
// when no file opens.
int OpenReadOnlyFile(const void *path);

// Reads up to size bytes at position. Fewer come only where the file ends;
// -1 when the read failed.
int64_t ReadFileAt(int file, int64_t position, void *buffer, uint32_t size);

// The file's length; -1 when the system can't tell it.
int64_t ReadOnlyFileSize(int file);

#endif
