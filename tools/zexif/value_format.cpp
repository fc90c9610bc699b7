#include "zexif/value_format.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "zexif/field_types.h"
#include "zexif/value_numbers.h"

namespace {

constexpr size_t MAX_TEXT_CHARS = 60;
constexpr size_t MAX_RAW_BYTES = 16;
constexpr size_t MAX_NUMBERS = 8;

std::string Real(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

// One value of a numeric type, the index counting values, not bytes.
std::string NumberAt(const ValueView &value, size_t index)
{
    if (IsIntegerType(value.type)) return std::to_string(IntegerAt(value, index));
    if (!IsRationalType(value.type)) return Real(RealAt(value, index));
    int64_t numerator, denominator;
    RationalAt(value, index, &numerator, &denominator);
    return std::to_string(numerator) + "/" + std::to_string(denominator);
}

std::string Shortened(uint64_t declaredBytes)
{
    return "…(" + std::to_string(declaredBytes) + " bytes)";
}

std::string HexBytes(const unsigned char *bytes, size_t count)
{
    std::string text;
    char hex[4];
    for (size_t i = 0; i < count; ++i) {
        std::snprintf(hex, sizeof hex, i == 0 ? "%02x" : " %02x", bytes[i]);
        text += hex;
    }
    return text;
}

size_t TextLength(const unsigned char *bytes, size_t size)
{
    const void *nul = std::memchr(bytes, 0, size);
    return nul != nullptr ? static_cast<size_t>(static_cast<const unsigned char *>(nul) - bytes) : size;
}

std::string FormatText(const unsigned char *bytes, size_t size, uint64_t declaredBytes)
{
    const size_t length = TextLength(bytes, size);
    if (length <= MAX_TEXT_CHARS) return QuoteText(bytes, length);
    return QuoteText(bytes, MAX_TEXT_CHARS) + Shortened(declaredBytes);
}

// Version numbers and the like are text in an UNDEFINED field; other
// contents are shown as the bytes they are.
std::string FormatUndefined(const unsigned char *bytes, size_t size, uint64_t declaredBytes)
{
    const bool whole = size == declaredBytes;
    if (whole && size <= MAX_TEXT_CHARS && IsPrintableText(bytes, size)) return QuoteText(bytes, size);
    if (whole && size <= MAX_RAW_BYTES) return HexBytes(bytes, size);
    return HexBytes(bytes, std::min(size, MAX_RAW_BYTES)) + Shortened(declaredBytes);
}

std::string FormatNumbers(uint32_t type, uint32_t count, const unsigned char *bytes, size_t available,
                          uint64_t declaredBytes)
{
    const size_t limit = type == TIFF_BYTE || type == TIFF_SBYTE ? MAX_RAW_BYTES : MAX_NUMBERS;
    const ValueView value{type, count, bytes, available};
    const size_t shown = std::min(ValuesAtHand(value), limit);
    std::string text;
    for (size_t i = 0; i < shown; ++i) text += (i == 0 ? "" : " ") + NumberAt(value, i);
    return shown < count ? text + Shortened(declaredBytes) : text;
}

}  // namespace

std::string TypeName(uint32_t type)
{
    static const char *const names[] = {"BYTE",  "ASCII",  "SHORT",     "LONG",  "RATIONAL", "SBYTE",
                                        "UNDEFINED", "SSHORT", "SLONG", "SRATIONAL", "FLOAT", "DOUBLE"};
    if (type >= TIFF_BYTE && type <= TIFF_DOUBLE) return names[type - 1];
    return "type " + std::to_string(type);
}

bool IsPrintableText(const unsigned char *bytes, size_t size)
{
    return std::all_of(bytes, bytes + size, [](unsigned char c) { return c >= 0x20 && c < 0x7f; });
}

std::string QuoteText(const unsigned char *bytes, size_t size)
{
    std::string text = "\"";
    char escape[8];
    for (size_t i = 0; i < size && bytes[i] != 0; ++i) {
        const unsigned char c = bytes[i];
        if (c == '"' || c == '\\') {
            text += '\\';
            text += static_cast<char>(c);
        } else if (c >= 0x20 && c < 0x7f) {
            text += static_cast<char>(c);
        } else {
            std::snprintf(escape, sizeof escape, "\\x%02x", c);
            text += escape;
        }
    }
    return text + "\"";
}

std::string FormatValue(uint32_t type, uint32_t count, const unsigned char *bytes, size_t size)
{
    if (TiffTypeSize(type) == 0) return "(unknown type)";
    const uint64_t declaredBytes = static_cast<uint64_t>(EntryDataSize(type, count));
    const size_t available = static_cast<size_t>(std::min<uint64_t>(declaredBytes, size));
    if (available == 0) return "(empty)";
    if (type == TIFF_ASCII) return FormatText(bytes, available, declaredBytes);
    if (type == TIFF_UNDEFINED) return FormatUndefined(bytes, available, declaredBytes);
    return FormatNumbers(type, count, bytes, available, declaredBytes);
}

std::string FormatWholeValue(uint32_t type, uint32_t count, const unsigned char *bytes, size_t size)
{
    if (TiffTypeSize(type) == 0) return "(unknown type)";
    const size_t available = static_cast<size_t>(std::min<uint64_t>(EntryDataSize(type, count), size));
    if (available == 0) return "";
    if (type == TIFF_ASCII) return std::string(reinterpret_cast<const char *>(bytes), TextLength(bytes, available));
    if (type == TIFF_UNDEFINED) return HexBytes(bytes, available);
    const ValueView value{type, count, bytes, available};
    std::string text;
    for (size_t i = 0; i < ValuesAtHand(value); ++i) text += (i == 0 ? "" : " ") + NumberAt(value, i);
    return text;
}
