#include "platform/path_open.h"

#include <sys/stat.h>

#include <cerrno>

#include <string>

#include "platform/fault_point.h"
#include "platform/utf16.h"

namespace {

// Size of the stdio buffer; giving it ourselves spares the fstat that stdio
// makes to choose one.
constexpr size_t FILE_BUFFER_SIZE = 16384;

FILE *OpenFile(const char *path, const char *mode)
{
    if (FaultStrikes(FAULT_OPEN)) {
        errno = EIO;
        return nullptr;
    }
    FILE *file = std::fopen(path, mode);
    if (file != nullptr) std::setvbuf(file, nullptr, _IOFBF, FILE_BUFFER_SIZE);
    return file;
}

int IsDirectory(FILE *file)
{
    struct stat info;
    return fstat(fileno(file), &info) != 0 || S_ISDIR(info.st_mode);
}

}  // namespace

// A 16-bit path read as a narrow string is often just "/", which fopen opens
// as a directory; where the 16-bit reading is possible, a directory doesn't
// count as the narrow reading's file.
FILE *OpenPath(const void *path, const char *mode)
{
    if (path == nullptr) return nullptr;
    const char *narrow = static_cast<const char *>(path);
    FILE *file = OpenFile(narrow, mode);
    if (!LooksLikeWidePath(narrow)) return file;
    if (file != nullptr && !IsDirectory(file)) return file;
    if (file != nullptr) std::fclose(file);
    std::string converted;
    if (!Utf16ToUtf8(path, converted)) return nullptr;
    return OpenFile(converted.c_str(), mode);
}
