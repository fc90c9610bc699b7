#include <cstdio>

#include "tools/zexif/command.h"
#include "tools/zexif/load_document.h"
#include "tools/zexif/tree_print.h"
#include "tree/document.h"
#include "zexif.h"

int RunDump(const std::vector<std::string> &arguments)
{
    const std::string &path = arguments[0];
    CExifDoc *doc = LoadDocument(path);
    if (doc == nullptr) return EXIT_FAILED;
    PrintDocument(*doc, path, stdout);
    zExifDestroy(doc);
    return EXIT_OK;
}
