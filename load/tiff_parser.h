#ifndef ZEXIF_LOAD_TIFF_PARSER_H
#define ZEXIF_LOAD_TIFF_PARSER_H

#include <cstdint>

class CStreamIO;
class CDocBuilder;

// Most entries an IFD may declare; a count of 0 or above fails the parse.
constexpr uint32_t MAX_IFD_ENTRIES = 100;

// Parses the TIFF block whose first byte the stream stands on; offsets count
// from that byte. Returns 1, or 0 when the block is refused.
int ParseTiff(CStreamIO *stream, CDocBuilder *builder);

// Parses the IFD at the stream's position. Returns the next-IFD offset, or a
// negative number on failure.
int32_t ParseIfd(int bigEndian, CStreamIO *stream, CDocBuilder *builder);

#endif
