#ifndef ZEXIF_PLATFORM_UTF16_H
#define ZEXIF_PLATFORM_UTF16_H

#include <string>

// Longest 16-bit path that is read; a longer one is refused rather than
// followed through memory without end.
constexpr int MAX_WIDE_PATH = 4096;

// 1 when the narrow bytes can't be a narrow path, so that the 16-bit reading
// is worth a try: a path of one byte (an ASCII character followed by the high
// NUL of its 16-bit code) or bytes that are not UTF-8.
int LooksLikeWidePath(const char *narrow);

// Converts a NUL-terminated UTF-16 string to UTF-8. Returns 0 for an unpaired
// surrogate, an empty string or one longer than MAX_WIDE_PATH units.
int Utf16ToUtf8(const void *wide, std::string &out);

#endif
