/* Compiled as C: the public header must be valid C and its exports must link. */
#include <stdio.h>

#include "zexif.h"

int main(void)
{
    ExifTagValue value = {0, 0, NULL};
    ExifBuffer buffer = {NULL, 0};
    TifTagList list = {0, NULL};
    CExifDoc *doc = zExifLoadFile("/nonexistent/zexif-header-check.jpg");
    CExifReader *reader = zRExifBeginRead("/nonexistent/zexif-header-check.jpg");
    (void)value;
    (void)buffer;
    (void)list;
    if (doc != NULL || reader != NULL) {
        fprintf(stderr, "a missing file must not load\n");
        return 1;
    }
    if (zExifIsExifExist(NULL) != 0) return 1;
    return FORMAT_JPEG == 1 && FORMAT_TIFF == 2 ? 0 : 1;
}
