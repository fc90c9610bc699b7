#ifndef ZEXIF_TOOL_DUMP_TEXT_H
#define ZEXIF_TOOL_DUMP_TEXT_H

#include <cstdio>
#include <string>

class DumpedFile;

// Writes a file as an indented outline: the format, the chain of
// JPEG markers with where their payloads lie, and every IFD with its tags by
// number, name, type, count and value, a sub-IFD under the tag that points
// to it.
void PrintDocument(const DumpedFile &file, const std::string &name, FILE *out);

#endif
