#include "platform/path_open.h"

#include <string>

#include "platform/utf16.h"

FILE *OpenPath(const void *path, const char *mode)
{
    if (path == nullptr) return nullptr;
    const char *narrow = static_cast<const char *>(path);
    FILE *file = std::fopen(narrow, mode);
    if (file != nullptr || !LooksLikeWidePath(narrow)) return file;
    std::string converted;
    if (!Utf16ToUtf8(path, converted)) return nullptr;
    return std::fopen(converted.c_str(), mode);
}
