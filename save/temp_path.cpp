#include "save/temp_path.h"

#include <cerrno>

#include "platform/file_replace.h"

namespace {

constexpr const char *TEMP_EXTENSION = "$#$";
constexpr int TEMP_NAME_TRIES = 100;

}  // namespace

int MakeTempPath(std::string &out, const char *path)
{
    std::string target(path);
    size_t nameStart = target.find_last_of('/');
    nameStart = nameStart == std::string::npos ? 0 : nameStart + 1;
    size_t dot = target.find_last_of('.');
    // A leading dot names a hidden file; it is no extension.
    if (dot == std::string::npos || dot <= nameStart) {
        out = target + "." + TEMP_EXTENSION;
    } else {
        out = target.substr(0, dot + 1) + TEMP_EXTENSION;
    }
    if (out == target) out = target + "." + TEMP_EXTENSION;
    return 1;
}

FILE *OpenTempFile(const char *path, std::string &tempPath)
{
    std::string base;
    MakeTempPath(base, path);
    for (int i = 0; i < TEMP_NAME_TRIES; i++) {
        tempPath = i == 0 ? base : base + std::to_string(i);
        FILE *file = CreateNewFile(tempPath);
        if (file != nullptr || errno != EEXIST) return file;
    }
    return nullptr;
}
