#include "zexif/tag_json.h"

#include <cstring>

#include "zexif/field_types.h"
#include "zexif/value_format.h"

namespace {

std::string HexDigits(const unsigned char *bytes, size_t size)
{
    static const char digits[] = "0123456789abcdef";
    std::string text;
    for (size_t i = 0; i < size; ++i) {
        text += digits[bytes[i] >> 4];
        text += digits[bytes[i] & 0xf];
    }
    return text;
}

void WriteNumbers(JsonWriter &json, const ValueView &value)
{
    json.BeginArray();
    for (size_t i = 0; i < ValuesAtHand(value); ++i) {
        if (IsIntegerType(value.type)) {
            json.Integer(IntegerAt(value, i));
        } else if (IsRationalType(value.type)) {
            int64_t numerator, denominator;
            RationalAt(value, i, &numerator, &denominator);
            json.BeginArray().Integer(numerator).Integer(denominator).EndArray();
        } else {
            json.Real(RealAt(value, i));
        }
    }
    json.EndArray();
}

void WriteValue(JsonWriter &json, const ValueView &value)
{
    if (value.type == TIFF_ASCII) {
        const void *nul = value.size > 0 ? std::memchr(value.bytes, 0, value.size) : nullptr;
        const size_t length = nul != nullptr ? static_cast<size_t>(static_cast<const unsigned char *>(nul) - value.bytes)
                                             : value.size;
        json.String(value.bytes, length);
    } else if (value.type == TIFF_UNDEFINED) {
        json.String(HexDigits(value.bytes, value.size));
    } else {
        WriteNumbers(json, value);
    }
}

}  // namespace

void WriteTagMembers(JsonWriter &json, const TagView &tag, const std::string &ifd)
{
    const char *name = NameOfTag(tag.group, tag.number);
    json.Key("ifd").String(ifd).Key("tag").Integer(tag.number).Key("name");
    if (name != nullptr) {
        json.String(name);
    } else {
        json.Null();
    }
    json.Key("type").String(TypeName(tag.value.type)).Key("count").Integer(tag.value.count);
    const bool shown = TiffTypeSize(tag.value.type) != 0;
    if (shown) {
        json.Key("value");
        WriteValue(json, tag.value);
        json.Key("text").String(ReadableValue(tag, true));
    } else {
        json.Key("value").Null().Key("text").Null();
    }
    double degrees;
    if (shown && GpsDecimalDegrees(tag, &degrees)) json.Key("decimal").Real(degrees);
}
