#ifndef ZEXIF_LOAD_TIFF_PARSER_H
#define ZEXIF_LOAD_TIFF_PARSER_H

#include <cstdint>

class CStreamIO;
class CDocBuilder;

// Most entries an IFD may declare; a count of 0 or above fails the parse.
constexpr uint32_t MAX_IFD_ENTRIES = 100;
// Longest chain of IFDs followed; multi-page files rarely have more than a few.
constexpr int MAX_CHAINED_IFDS = 1024;
// Tag values of one load may take this many times the file's size, plus a
// fixed allowance; a file that asks for more is refused.
constexpr int64_t VALUE_BUDGET_FACTOR = 4;
constexpr int64_t VALUE_BUDGET_EXTRA = 1 << 20;

// Parses the TIFF block whose first byte the stream stands on; offsets count
// from that byte. Returns 1, or 0 when the block is refused.
int ParseTiff(CStreamIO *stream, CDocBuilder *builder);

// Parses the IFD at the stream's position. Returns the next-IFD offset, or a
// negative number on failure.
int32_t ParseIfd(int bigEndian, CStreamIO *stream, CDocBuilder *builder);

#endif
