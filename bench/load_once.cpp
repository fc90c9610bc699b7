// Loads the whole tree of one file and destroys it, for callgrind to count
// the instructions of exactly that.
#include "zexif.h"

int main(int argc, char **argv)
{
    if (argc != 2) return 2;
    CExifDoc *doc = zExifLoadFile(argv[1]);
    if (doc == nullptr) return 1;
    zExifDestroy(doc);
    return 0;
}
