#include "zexif/marker_names.h"

namespace {

std::string Numbered(const char *prefix, int32_t number)
{
    return prefix + std::to_string(number);
}

std::string FrameOrTableName(int32_t code)
{
    switch (code) {
    case 0xc4: return "DHT";
    case 0xc8: return "JPG";
    case 0xcc: return "DAC";
    default: return Numbered("SOF", code - 0xc0);
    }
}

std::string ControlName(int32_t code)
{
    static const char *const names[] = {"SOI", "EOI", "SOS", "DQT", "DNL", "DRI", "DHP", "EXP"};
    if (code <= 0xd7) return Numbered("RST", code - 0xd0);
    return names[code - 0xd8];
}

}  // namespace

std::string MarkerName(int32_t code)
{
    if (code == 0x01) return "TEM";
    if (code >= 0xc0 && code <= 0xcf) return FrameOrTableName(code);
    if (code >= 0xd0 && code <= 0xdf) return ControlName(code);
    if (code >= 0xe0 && code <= 0xef) return Numbered("APP", code - 0xe0);
    if (code >= 0xf0 && code <= 0xfd) return Numbered("JPG", code - 0xf0);
    if (code == 0xfe) return "COM";
    return "";
}
