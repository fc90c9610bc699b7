#include "zexif/open_reader.h"

#include <cstdio>

#include "zexif/load_document.h"
#include "zexif/output.h"
#include "zexif.h"

CExifReader *TryBeginRead(const std::string &path, std::string *message)
{
    CExifReader *reader = zRExifBeginRead(path.c_str());
    if (reader == nullptr) *message = "cannot read " + path + ": " + LoadFailureReason(path);
    return reader;
}

CExifReader *OpenReader(const std::string &path)
{
    std::string message;
    CExifReader *reader = TryBeginRead(path, &message);
    if (reader == nullptr) std::fprintf(Err(), "zexif: %s\n", message.c_str());
    return reader;
}
