#ifndef ZEXIF_TOOL_VALUE_PARSE_H
#define ZEXIF_TOOL_VALUE_PARSE_H

#include <cstdint>
#include <string>
#include <vector>

// A TIFF field type by its name in any case ("short", "RATIONAL") or by its
// number, 1 to 12.
bool ParseTypeName(const std::string &text, uint32_t *type);

// A value as zExifSetTag takes it: the values' bytes in host order and their
// count.
struct ParsedValue {
    std::vector<unsigned char> bytes;
    uint32_t count = 0;
};

// Values as set takes them: ASCII as one text, which gets its NUL; integers
// in decimal; rationals as n/d; UNDEFINED as bytes, each in decimal or 0x hex. On failure, error says which word was wrong.
bool ParseValues(uint32_t type, const std::vector<std::string> &words, ParsedValue *value, std::string *error);

#endif
