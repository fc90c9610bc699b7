#ifndef ZEXIF_PLATFORM_PATH_PARTS_H
#define ZEXIF_PLATFORM_PATH_PARTS_H

#include <string>

// The directory that holds path's last component: "." for a bare name, "/"
// for a name in the root.
std::string DirectoryOf(const std::string &path);

// Where the last component of path begins.
size_t NameStart(const std::string &path);

#endif
