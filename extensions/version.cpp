#include "zexif.h"

#define ZEXIF_TEXT(x) #x
#define ZEXIF_VERSION_TEXT(major, minor, patch) ZEXIF_TEXT(major) "." ZEXIF_TEXT(minor) "." ZEXIF_TEXT(patch)

const char *zExifGetVersion(void)
{
    return ZEXIF_VERSION_TEXT(ZEXIF_VERSION_MAJOR, ZEXIF_VERSION_MINOR, ZEXIF_VERSION_PATCH);
}
