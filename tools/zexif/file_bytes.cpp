#include "zexif/file_bytes.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "zexif/output.h"

namespace {

bool Complain(const char *what, const std::string &path)
{
    std::fprintf(Err(), "zexif: cannot %s %s: %s\n", what, path.c_str(), std::strerror(errno));
    return false;
}

}  // namespace

bool ReadFileBytes(const std::string &path, std::vector<unsigned char> *bytes)
{
    FILE *file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) return Complain("read", path);
    unsigned char chunk[65536];
    size_t got;
    while ((got = std::fread(chunk, 1, sizeof chunk, file)) > 0) bytes->insert(bytes->end(), chunk, chunk + got);
    const bool failed = std::ferror(file) != 0;
    std::fclose(file);
    return failed ? Complain("read", path) : true;
}

bool WriteFileBytes(const std::string &path, const unsigned char *bytes, size_t size)
{
    FILE *file = std::fopen(path.c_str(), "wb");
    if (file == nullptr) return Complain("write", path);
    const bool written = std::fwrite(bytes, 1, size, file) == size;
    const bool closed = std::fclose(file) == 0;
    return written && closed ? true : Complain("write", path);
}
