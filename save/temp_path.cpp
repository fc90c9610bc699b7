#include "save/temp_path.h"

#include <limits.h>

#include <cerrno>
#include <cstdint>
#include <cstring>

#include "platform/path_parts.h"

namespace {

constexpr const char *TEMP_EXTENSION = "$#$";
// Room behind a temporary name for the number of a variant and the suffix
// of the file kept while a copy goes over the target.
constexpr size_t TEMP_NAME_ROOM = 8;
constexpr size_t HASH_DIGITS = 8;

uint32_t NameHash(const std::string &name)
{
    uint32_t hash = 2166136261u;
    for (unsigned char c : name) hash = (hash ^ c) * 16777619u;
    return hash;
}

// The name is cut where no UTF-8 sequence is split, and the hash of the
// whole name keeps two long names with the same beginning apart.
std::string ShortenedName(const std::string &name)
{
    size_t keep = NAME_MAX - TEMP_NAME_ROOM - (1 + HASH_DIGITS) - (1 + std::strlen(TEMP_EXTENSION));
    while (keep > 0 && (static_cast<unsigned char>(name[keep]) & 0xC0) == 0x80) keep--;
    char hash[HASH_DIGITS + 2];
    std::snprintf(hash, sizeof hash, "~%08x", NameHash(name));
    return name.substr(0, keep) + hash + "." + TEMP_EXTENSION;
}

}  // namespace

int MakeTempPath(std::string &out, const char *path)
{
    std::string target(path);
    size_t nameStart = NameStart(target);
    size_t dot = target.find_last_of('.');
    // A leading dot names a hidden file; it is no extension.
    if (dot == std::string::npos || dot <= nameStart) {
        out = target + "." + TEMP_EXTENSION;
    } else {
        out = target.substr(0, dot + 1) + TEMP_EXTENSION;
    }
    if (out == target) out = target + "." + TEMP_EXTENSION;
    if (out.size() - nameStart + TEMP_NAME_ROOM > NAME_MAX) {
        out = target.substr(0, nameStart) + ShortenedName(target.substr(nameStart));
    }
    return 1;
}

FILE *OpenTempFile(const CSaveTarget &target, CTempFile *temp)
{
    std::string base;
    MakeTempPath(base, target.m_path.c_str());
    int cleaned = 0;
    for (unsigned i = 0;;) {
        FILE *file = CreateTempFile(i == 0 ? base : base + std::to_string(i), target, temp);
        if (file != nullptr || errno != EEXIST) return file;
        if (!cleaned) {
            RemoveStaleTempFiles(base);
            cleaned = 1;
        } else {
            i++;
        }
    }
}
