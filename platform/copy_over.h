#ifndef ZEXIF_PLATFORM_COPY_OVER_H
#define ZEXIF_PLATFORM_COPY_OVER_H

#include <string>

#include "platform/save_target.h"

// Writes the new file at temp into the existing target's own inode, for a
// target that a rename would turn into another file. This is no atomic
// step: first the complete new file goes from temp to KeptNewFile(temp), a
// name that no clean-up removes, and there it stays when the copy fails half
// way or the process dies, so that a torn target always has its new content
// beside it. Returns 1 with both names gone; or 0, with the target untouched
// and both names gone, or with the target torn and the kept file there.
int CopyOver(const std::string &temp, const CSaveTarget &target);

// The name under which CopyOver keeps the new file while it copies.
std::string KeptNewFile(const std::string &temp);

#endif
