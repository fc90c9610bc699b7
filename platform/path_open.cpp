#include "platform/path_open.h"

#include <sys/stat.h>

#include <string>

#include "platform/utf16.h"

namespace {

// fopen opens directories for reading; one byte of a 16-bit path read as a
// narrow string is often "/", which must not count as an opened file.
FILE *OpenFile(const char *path, const char *mode)
{
    FILE *file = std::fopen(path, mode);
    if (file == nullptr) return nullptr;
    struct stat info;
    if (fstat(fileno(file), &info) != 0 || S_ISDIR(info.st_mode)) {
        std::fclose(file);
        return nullptr;
    }
    return file;
}

}  // namespace

FILE *OpenPath(const void *path, const char *mode)
{
    if (path == nullptr) return nullptr;
    const char *narrow = static_cast<const char *>(path);
    FILE *file = OpenFile(narrow, mode);
    if (file != nullptr || !LooksLikeWidePath(narrow)) return file;
    std::string converted;
    if (!Utf16ToUtf8(path, converted)) return nullptr;
    return OpenFile(converted.c_str(), mode);
}
