#include "tools/zexif/load_document.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "zexif.h"

namespace {

// Whether the file can be read at all, else the reason the system gives.
std::string OpenError(const std::string &path)
{
    FILE *file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) return std::strerror(errno);
    std::fclose(file);
    return "";
}

}  // namespace

CExifDoc *LoadDocument(const std::string &path)
{
    CExifDoc *doc = zExifLoadFile(path.c_str());
    if (doc != nullptr) return doc;
    const std::string reason = OpenError(path);
    std::fprintf(stderr, "zexif: cannot load %s: %s\n", path.c_str(),
                 reason.empty() ? "not a JPEG or TIFF file, or damaged" : reason.c_str());
    return nullptr;
}
