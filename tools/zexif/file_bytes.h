#ifndef ZEXIF_TOOL_FILE_BYTES_H
#define ZEXIF_TOOL_FILE_BYTES_H

#include <cstddef>
#include <string>
#include <vector>

// Whole-file reads and writes for the files a command takes in or gives out
// beside the image. On failure, say why on one line of stderr.
bool ReadFileBytes(const std::string &path, std::vector<unsigned char> *bytes);
bool WriteFileBytes(const std::string &path, const unsigned char *bytes, size_t size);

#endif
