#include "zexif/load_document.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "zexif/output.h"
#include "zexif.h"

namespace {

// Why the file can't be read at all, as the system says it, or an empty
// string for a readable one. A directory opens but fails at the first read.
std::string ReadError(const std::string &path)
{
    FILE *file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) return std::strerror(errno);
    const bool failed = std::fgetc(file) == EOF && std::ferror(file);
    const std::string reason = failed ? std::strerror(errno) : "";
    std::fclose(file);
    return reason;
}

}  // namespace

CExifDoc *TryLoadDocument(const std::string &path, std::string *message)
{
    CExifDoc *doc = zExifLoadFile(path.c_str());
    if (doc == nullptr) *message = "cannot load " + path + ": " + LoadFailureReason(path);
    return doc;
}

CExifDoc *LoadDocument(const std::string &path)
{
    std::string message;
    CExifDoc *doc = TryLoadDocument(path, &message);
    if (doc == nullptr) std::fprintf(Err(), "zexif: %s\n", message.c_str());
    return doc;
}

std::string LoadFailureReason(const std::string &path)
{
    const std::string reason = ReadError(path);
    return reason.empty() ? "not a JPEG or TIFF file, or damaged" : reason;
}
