#include "tools/zexif/open_reader.h"

#include <cstdio>

#include "tools/zexif/load_document.h"
#include "zexif.h"

CExifReader *OpenReader(const std::string &path)
{
    CExifReader *reader = zRExifBeginRead(path.c_str());
    if (reader != nullptr) return reader;
    std::fprintf(stderr, "zexif: cannot read %s: %s\n", path.c_str(), LoadFailureReason(path).c_str());
    return nullptr;
}
