#ifndef ZEXIF_TOOL_VALUE_FORMAT_H
#define ZEXIF_TOOL_VALUE_FORMAT_H

#include <cstddef>
#include <cstdint>
#include <string>

// The name of a TIFF field type: "SHORT", or "type 13" for one outside 1 to 12.
std::string TypeName(uint32_t type);

// True when every byte is printable ASCII.
bool IsPrintableText(const unsigned char *bytes, size_t size);

// The bytes up to the first NUL between double quotes; quotes, backslashes
// and what isn't printable ASCII are escaped, so a line stays one line.
std::string QuoteText(const unsigned char *bytes, size_t size);

// A tag's value for people: ASCII as quoted text, numbers in decimal,
// rationals as n/d, UNDEFINED as text when it is printable and as hex bytes
// otherwise. bytes hold the values in host order; where they hold fewer than
// count values, only those are shown. A value longer than a line shows its
// start and "…(N bytes)", N being the size that count declares.
std::string FormatValue(uint32_t type, uint32_t count, const unsigned char *bytes, size_t size);

// The whole value, for a single tag asked for by number: ASCII as its text
// up to the first NUL, unquoted; numbers and rationals as FormatValue gives
// them, but all of them; UNDEFINED as hex bytes, all of them.
std::string FormatWholeValue(uint32_t type, uint32_t count, const unsigned char *bytes, size_t size);

#endif
