#include "platform/path_parts.h"

std::string DirectoryOf(const std::string &path)
{
    size_t start = NameStart(path);
    if (start == 0) return ".";
    return start == 1 ? "/" : path.substr(0, start - 1);
}

size_t NameStart(const std::string &path)
{
    size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? 0 : slash + 1;
}
