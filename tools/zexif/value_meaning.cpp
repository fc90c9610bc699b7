#include "zexif/value_meaning.h"

#include <cstdio>
#include <cstring>

#include "zexif/field_types.h"
#include "zexif/value_format.h"

namespace {

constexpr size_t MAX_DECIMALS = 8;
constexpr size_t USER_COMMENT_PREFIX = 8;

struct EnumName {
    TagGroup group;
    uint16_t number;
    uint16_t value;
    const char *name;
};

const EnumName ENUM_NAMES[] = {
    {GROUP_TIFF, 259, 1, "Uncompressed"},
    {GROUP_TIFF, 259, 5, "LZW"},
    {GROUP_TIFF, 259, 6, "JPEG (old-style)"},
    {GROUP_TIFF, 259, 7, "JPEG"},
    {GROUP_TIFF, 259, 8, "Deflate"},
    {GROUP_TIFF, 259, 32773, "PackBits"},
    {GROUP_TIFF, 262, 0, "WhiteIsZero"},
    {GROUP_TIFF, 262, 1, "BlackIsZero"},
    {GROUP_TIFF, 262, 2, "RGB"},
    {GROUP_TIFF, 262, 3, "Palette"},
    {GROUP_TIFF, 262, 5, "CMYK"},
    {GROUP_TIFF, 262, 6, "YCbCr"},
    {GROUP_TIFF, 274, 1, "Horizontal (normal)"},
    {GROUP_TIFF, 274, 2, "Mirror horizontal"},
    {GROUP_TIFF, 274, 3, "Rotate 180"},
    {GROUP_TIFF, 274, 4, "Mirror vertical"},
    {GROUP_TIFF, 274, 5, "Mirror horizontal and rotate 270 CW"},
    {GROUP_TIFF, 274, 6, "Rotate 90 CW"},
    {GROUP_TIFF, 274, 7, "Mirror horizontal and rotate 90 CW"},
    {GROUP_TIFF, 274, 8, "Rotate 270 CW"},
    {GROUP_TIFF, 296, 1, "None"},
    {GROUP_TIFF, 296, 2, "Inches"},
    {GROUP_TIFF, 296, 3, "Centimeters"},
    {GROUP_TIFF, 531, 1, "Centered"},
    {GROUP_TIFF, 531, 2, "Co-sited"},
    {GROUP_EXIF, 34850, 0, "Not defined"},
    {GROUP_EXIF, 34850, 1, "Manual"},
    {GROUP_EXIF, 34850, 2, "Program AE"},
    {GROUP_EXIF, 34850, 3, "Aperture priority"},
    {GROUP_EXIF, 34850, 4, "Shutter priority"},
    {GROUP_EXIF, 34850, 5, "Creative"},
    {GROUP_EXIF, 34850, 6, "Action"},
    {GROUP_EXIF, 34850, 7, "Portrait"},
    {GROUP_EXIF, 34850, 8, "Landscape"},
    {GROUP_EXIF, 37383, 0, "Unknown"},
    {GROUP_EXIF, 37383, 1, "Average"},
    {GROUP_EXIF, 37383, 2, "Center-weighted average"},
    {GROUP_EXIF, 37383, 3, "Spot"},
    {GROUP_EXIF, 37383, 4, "Multi-spot"},
    {GROUP_EXIF, 37383, 5, "Pattern"},
    {GROUP_EXIF, 37383, 6, "Partial"},
    {GROUP_EXIF, 37383, 255, "Other"},
    {GROUP_EXIF, 40961, 1, "sRGB"},
    {GROUP_EXIF, 40961, 65535, "Uncalibrated"},
    {GROUP_EXIF, 41488, 2, "Inches"},
    {GROUP_EXIF, 41488, 3, "Centimeters"},
    {GROUP_EXIF, 41986, 0, "Auto"},
    {GROUP_EXIF, 41986, 1, "Manual"},
    {GROUP_EXIF, 41986, 2, "Auto bracket"},
    {GROUP_EXIF, 41987, 0, "Auto"},
    {GROUP_EXIF, 41987, 1, "Manual"},
    {GROUP_EXIF, 41990, 0, "Standard"},
    {GROUP_EXIF, 41990, 1, "Landscape"},
    {GROUP_EXIF, 41990, 2, "Portrait"},
    {GROUP_EXIF, 41990, 3, "Night"},
    {GROUP_GPS, 5, 0, "Above sea level"},
    {GROUP_GPS, 5, 1, "Below sea level"},
};

constexpr uint32_t TAG_FLASH = 37385;
constexpr uint32_t TAG_USER_COMMENT = 37510;

std::string Real(const char *format, double value)
{
    char text[32];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

const char *EnumNameOf(const TagView &tag, int64_t value)
{
    for (const EnumName &entry : ENUM_NAMES) {
        if (entry.group == tag.group && entry.number == tag.number && entry.value == value) return entry.name;
    }
    return nullptr;
}

// Bit 0 says whether the flash fired; bits 3 and 4 give its mode, bit 5 that
// there is none, bit 6 red-eye reduction.
std::string FlashMeaning(int64_t value)
{
    if (value & 0x20) return "No flash function";
    std::string text = value & 1 ? "Fired" : "Did not fire";
    if ((value & 0x18) == 0x18) text += ", auto";
    if (value & 0x40) text += ", red-eye reduction";
    return text;
}

std::string IntegerMeaning(const TagView &tag)
{
    if (ValuesAtHand(tag.value) != 1) return "";
    const int64_t value = IntegerAt(tag.value, 0);
    if (tag.group == GROUP_EXIF && tag.number == TAG_FLASH) return FlashMeaning(value);
    const char *name = EnumNameOf(tag, value);
    return name != nullptr ? name : "";
}

std::string RationalDecimals(const ValueView &value)
{
    const size_t count = ValuesAtHand(value);
    if (count > MAX_DECIMALS) return "";
    std::string text;
    for (size_t i = 0; i < count; ++i) {
        int64_t numerator, denominator;
        RationalAt(value, i, &numerator, &denominator);
        const std::string decimal =
            denominator == 0 ? "-" : Real("%g", static_cast<double>(numerator) / static_cast<double>(denominator));
        text += (i == 0 ? "" : " ") + decimal;
    }
    return text;
}

// A user comment starts with eight bytes naming its character code; the
// ASCII ones and those that leave it undefined (all NUL) are shown as text.
std::string UserCommentText(const ValueView &value)
{
    if (value.size <= USER_COMMENT_PREFIX) return "";
    const bool ascii = std::memcmp(value.bytes, "ASCII\0\0\0", USER_COMMENT_PREFIX) == 0;
    const bool undefined = std::memcmp(value.bytes, "\0\0\0\0\0\0\0\0", USER_COMMENT_PREFIX) == 0;
    if (!ascii && !undefined) return "";
    const unsigned char *text = value.bytes + USER_COMMENT_PREFIX;
    size_t length = value.size - USER_COMMENT_PREFIX;
    while (length > 0 && (text[length - 1] == 0 || text[length - 1] == ' ')) --length;
    if (!IsPrintableText(text, length)) return "";
    return std::string(reinterpret_cast<const char *>(text), length);
}

// The brief form shows printable bytes as text already.
std::string UndefinedMeaning(const TagView &tag, bool whole)
{
    if (tag.group == GROUP_EXIF && tag.number == TAG_USER_COMMENT) return UserCommentText(tag.value);
    if (!whole || tag.value.size == 0 || !IsPrintableText(tag.value.bytes, tag.value.size)) return "";
    return std::string(reinterpret_cast<const char *>(tag.value.bytes), tag.value.size);
}

std::string Meaning(const TagView &tag, bool whole)
{
    if (!IsWhole(tag.value)) return "";
    if (IsIntegerType(tag.value.type)) return IntegerMeaning(tag);
    if (IsRationalType(tag.value.type)) return RationalDecimals(tag.value);
    if (tag.value.type == TIFF_UNDEFINED) return UndefinedMeaning(tag, whole);
    return "";
}

char Hemisphere(const ValueView &reference)
{
    if (reference.type != TIFF_ASCII || reference.size == 0) return 0;
    const char letter = static_cast<char>(reference.bytes[0]);
    return std::strchr("NSEW", letter) != nullptr && letter != 0 ? letter : 0;
}

// Degrees, minutes and seconds; false for another shape of value.
bool CoordinateParts(const TagView &tag, double parts[3])
{
    if (ReferenceTagOf(tag.group, tag.number) == 0 || tag.value.type != TIFF_RATIONAL ||
        tag.value.count != 3 || !IsWhole(tag.value)) {
        return false;
    }
    for (size_t i = 0; i < 3; ++i) {
        int64_t numerator, denominator;
        RationalAt(tag.value, i, &numerator, &denominator);
        if (denominator == 0) return false;
        parts[i] = static_cast<double>(numerator) / static_cast<double>(denominator);
    }
    return true;
}

std::string GpsCoordinateText(const TagView &tag, const double parts[3], double decimal)
{
    std::string text = Real("%g", parts[0]) + "\u00b0 " + Real("%g", parts[1]) + "' " + Real("%g", parts[2]) + "\"";
    const char hemisphere = Hemisphere(tag.reference);
    if (hemisphere != 0) text += std::string(" ") + hemisphere;
    return text + " (" + Real("%.6f", decimal) + ")";
}

}  // namespace

uint32_t ReferenceTagOf(TagGroup group, uint32_t number)
{
    const bool coordinate = number == 2 || number == 4 || number == 20 || number == 22;
    return group == GROUP_GPS && coordinate ? number - 1 : 0;
}

bool GpsDecimalDegrees(const TagView &tag, double *degrees)
{
    double parts[3];
    if (!CoordinateParts(tag, parts)) return false;
    const double magnitude = parts[0] + parts[1] / 60 + parts[2] / 3600;
    const char hemisphere = Hemisphere(tag.reference);
    *degrees = hemisphere == 'S' || hemisphere == 'W' ? -magnitude : magnitude;
    return true;
}

std::string ReadableValue(const TagView &tag, bool whole)
{
    double parts[3], decimal;
    if (CoordinateParts(tag, parts) && GpsDecimalDegrees(tag, &decimal)) return GpsCoordinateText(tag, parts, decimal);
    const ValueView &value = tag.value;
    const std::string text = whole ? FormatWholeValue(value.type, value.count, value.bytes, value.size)
                                   : FormatValue(value.type, value.count, value.bytes, value.size);
    const std::string meaning = Meaning(tag, whole);
    return meaning.empty() ? text : text + " (" + meaning + ")";
}

const char *SettingName(const TagView &tag, int64_t value)
{
    return EnumNameOf(tag, value);
}
