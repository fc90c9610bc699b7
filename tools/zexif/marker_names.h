#ifndef ZEXIF_TOOL_MARKER_NAMES_H
#define ZEXIF_TOOL_MARKER_NAMES_H

#include <cstdint>
#include <string>

// The usual name of a JPEG marker code ("SOF0", "APP1", "DQT"), or an empty
// string for a code that has none.
std::string MarkerName(int32_t code);

#endif
