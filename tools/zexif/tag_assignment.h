#ifndef ZEXIF_TOOL_TAG_ASSIGNMENT_H
#define ZEXIF_TOOL_TAG_ASSIGNMENT_H

#include <string>
#include <vector>

#include "zexif/tag_argument.h"
#include "zexif/value_parse.h"

// One tag to set: where, its TIFF type and its value's bytes.
struct Assignment {
    TagAddress address;
    uint32_t type = 0;
    ParsedValue value;
};

// TAG=VALUE or TAG:TYPE=VALUE, as -t of set takes it, ifd being --ifd's
// word. The type comes from the library's table of tags unless given, which
// an unknown tag needs. ASCII takes the text as it is, UNDEFINED its bytes;
// numbers are words apart, rationals n/d or decimals. The value must fit the
// tag: a date must be "YYYY:MM:DD HH:MM:SS", and the number of values the
// one that the tag always has. On failure, error says why.
bool ParseAssignment(const std::string &text, const std::string &ifd, Assignment *assignment, std::string *error);

// The same checks for a type and values given apart, as in set's first form.
bool CheckAssignment(const Assignment &assignment, std::string *error);

#endif
