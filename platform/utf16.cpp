#include "platform/utf16.h"

#include <cstdint>
#include <cstring>

namespace {

int Utf8SequenceLength(unsigned char lead)
{
    if (lead < 0x80) return 1;
    if ((lead & 0xE0) == 0xC0) return lead >= 0xC2 ? 2 : 0;
    if ((lead & 0xF0) == 0xE0) return 3;
    if ((lead & 0xF8) == 0xF0) return lead <= 0xF4 ? 4 : 0;
    return 0;
}

int IsValidUtf8(const unsigned char *s)
{
    while (*s) {
        int n = Utf8SequenceLength(*s);
        if (n == 0) return 0;
        for (int i = 1; i < n; i++) {
            if ((s[i] & 0xC0) != 0x80) return 0;
        }
        s += n;
    }
    return 1;
}

void AppendUtf8(uint32_t code, std::string &out)
{
    if (code < 0x80) {
        out += char(code);
    } else if (code < 0x800) {
        out += char(0xC0 | (code >> 6));
        out += char(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        out += char(0xE0 | (code >> 12));
        out += char(0x80 | ((code >> 6) & 0x3F));
        out += char(0x80 | (code & 0x3F));
    } else {
        out += char(0xF0 | (code >> 18));
        out += char(0x80 | ((code >> 12) & 0x3F));
        out += char(0x80 | ((code >> 6) & 0x3F));
        out += char(0x80 | (code & 0x3F));
    }
}

// A caller's 16-bit string need not be aligned for char16_t.
uint32_t UnitAt(const void *wide, int index)
{
    char16_t unit;
    std::memcpy(&unit, static_cast<const unsigned char *>(wide) + 2 * index, sizeof unit);
    return unit;
}

}  // namespace

int LooksLikeWidePath(const char *narrow)
{
    const unsigned char *s = reinterpret_cast<const unsigned char *>(narrow);
    if (s[0] == 0) return 0;
    if (s[1] == 0) return 1;
    return !IsValidUtf8(s);
}

int Utf16ToUtf8(const void *wide, std::string &out)
{
    out.clear();
    for (int i = 0; UnitAt(wide, i) != 0; i++) {
        if (i >= MAX_WIDE_PATH) return 0;
        uint32_t unit = UnitAt(wide, i);
        if (unit >= 0xDC00 && unit <= 0xDFFF) return 0;
        if (unit >= 0xD800 && unit <= 0xDBFF) {
            uint32_t low = UnitAt(wide, i + 1);
            if (low < 0xDC00 || low > 0xDFFF) return 0;
            unit = 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
            i++;
        }
        AppendUtf8(unit, out);
    }
    return out.empty() ? 0 : 1;
}
