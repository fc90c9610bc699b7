#include "zexif/value_parse.h"

#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <strings.h>
#include <limits>

#include "zexif/arguments.h"
#include "zexif/field_types.h"
#include "zexif/value_format.h"

namespace {

template <typename T>
void Append(T number, ParsedValue *value)
{
    unsigned char bytes[sizeof(T)];
    std::memcpy(bytes, &number, sizeof(T));
    value->bytes.insert(value->bytes.end(), bytes, bytes + sizeof(T));
}

template <typename T>
bool ParseInteger(const std::string &text, T *number)
{
    if (text.empty() || std::isspace(static_cast<unsigned char>(text[0]))) return false;
    char *end = nullptr;
    errno = 0;
    const long long parsed = std::strtoll(text.c_str(), &end, 10);
    if (errno != 0 || *end != '\0') return false;
    if (parsed < std::numeric_limits<T>::min() || parsed > std::numeric_limits<T>::max()) return false;
    *number = static_cast<T>(parsed);
    return true;
}

template <typename T>
bool AppendInteger(const std::string &text, ParsedValue *value)
{
    T number;
    if (!ParseInteger(text, &number)) return false;
    Append(number, value);
    return true;
}

// A decimal such as 2.8 as the fraction of the fewest decimal places that
// hold it, up to six: 28/10.
template <typename T>
bool DecimalFraction(const std::string &text, T *numerator, T *denominator)
{
    if (text.empty() || std::isspace(static_cast<unsigned char>(text[0]))) return false;
    char *end = nullptr;
    const double number = std::strtod(text.c_str(), &end);
    if (*end != '\0' || !std::isfinite(number)) return false;
    double scale = 1;
    while (scale < 1e6 && std::fabs(number * scale - std::round(number * scale)) > 1e-9) scale *= 10;
    const double scaled = std::round(number * scale);
    if (scaled < double(std::numeric_limits<T>::min()) || scaled > double(std::numeric_limits<T>::max())) return false;
    *numerator = static_cast<T>(scaled);
    *denominator = static_cast<T>(scale);
    return true;
}

template <typename T>
bool AppendRational(const std::string &text, ParsedValue *value)
{
    const size_t slash = text.find('/');
    T numerator, denominator;
    if (slash == std::string::npos && DecimalFraction(text, &numerator, &denominator)) {
        Append(numerator, value);
        Append(denominator, value);
        return true;
    }
    if (slash == std::string::npos || !ParseInteger(text.substr(0, slash), &numerator) ||
        !ParseInteger(text.substr(slash + 1), &denominator)) {
        return false;
    }
    Append(numerator, value);
    Append(denominator, value);
    return true;
}

template <typename T>
bool AppendReal(const std::string &text, ParsedValue *value)
{
    if (text.empty() || std::isspace(static_cast<unsigned char>(text[0]))) return false;
    char *end = nullptr;
    const double number = std::strtod(text.c_str(), &end);
    if (*end != '\0') return false;
    Append(static_cast<T>(number), value);
    return true;
}

bool AppendUndefinedByte(const std::string &text, ParsedValue *value)
{
    uint32_t number;
    if (!ParseNumber(text, &number) || number > 0xff) return false;
    value->bytes.push_back(static_cast<unsigned char>(number));
    return true;
}

bool AppendOne(uint32_t type, const std::string &text, ParsedValue *value)
{
    switch (type) {
    case TIFF_BYTE: return AppendInteger<uint8_t>(text, value);
    case TIFF_SBYTE: return AppendInteger<int8_t>(text, value);
    case TIFF_SHORT: return AppendInteger<uint16_t>(text, value);
    case TIFF_SSHORT: return AppendInteger<int16_t>(text, value);
    case TIFF_LONG: return AppendInteger<uint32_t>(text, value);
    case TIFF_SLONG: return AppendInteger<int32_t>(text, value);
    case TIFF_RATIONAL: return AppendRational<uint32_t>(text, value);
    case TIFF_SRATIONAL: return AppendRational<int32_t>(text, value);
    case TIFF_UNDEFINED: return AppendUndefinedByte(text, value);
    case TIFF_FLOAT: return AppendReal<float>(text, value);
    default: return AppendReal<double>(text, value);
    }
}

}  // namespace

bool ParseTypeName(const std::string &text, uint32_t *type)
{
    for (uint32_t candidate = TIFF_BYTE; candidate <= TIFF_DOUBLE; ++candidate) {
        const std::string name = TypeName(candidate);
        if (name.size() == text.size() && strncasecmp(name.c_str(), text.c_str(), name.size()) == 0) {
            *type = candidate;
            return true;
        }
    }
    return ParseNumber(text, type) && *type >= TIFF_BYTE && *type <= TIFF_DOUBLE;
}

bool ParseValues(uint32_t type, const std::vector<std::string> &words, ParsedValue *value, std::string *error)
{
    if (type == TIFF_ASCII) {
        if (words.size() != 1) {
            *error = "an ASCII value is one argument; quote a text with spaces";
            return false;
        }
        value->bytes.assign(words[0].begin(), words[0].end());
        value->bytes.push_back(0);
        value->count = static_cast<uint32_t>(value->bytes.size());
        return true;
    }
    for (const std::string &word : words) {
        if (!AppendOne(type, word, value)) {
            *error = "'" + word + "' is not a " + TypeName(type) + " value";
            return false;
        }
    }
    value->count = static_cast<uint32_t>(words.size());
    return true;
}
