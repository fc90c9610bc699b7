#ifndef ZEXIF_TOOL_OPEN_READER_H
#define ZEXIF_TOOL_OPEN_READER_H

#include <string>

struct CExifReader;

// Opens a file with the read-only family. When it can't, returns null and
// says why in message, "cannot read PATH: REASON".
CExifReader *TryBeginRead(const std::string &path, std::string *message);

// The same, the message written as one line of stderr.
CExifReader *OpenReader(const std::string &path);

#endif
