#ifndef ZEXIF_TOOL_OPEN_READER_H
#define ZEXIF_TOOL_OPEN_READER_H

#include <string>

struct CExifReader;

// Opens a file with the read-only family. When it can't, says why on one line
// of stderr and returns null.
CExifReader *OpenReader(const std::string &path);

#endif
