#include "zexif/arguments.h"

#include <cctype>
#include <cerrno>
#include <cstdlib>

std::string ParsedArguments::Value(const std::string &option, const std::string &otherwise) const
{
    auto found = values.find(option);
    return found == values.end() ? otherwise : found->second;
}

bool ParseArguments(const std::vector<std::string> &arguments, const std::set<std::string> &valueOptions,
                    const std::set<std::string> &flagOptions, ParsedArguments *parsed)
{
    for (size_t i = 0; i < arguments.size(); ++i) {
        const std::string &word = arguments[i];
        if (flagOptions.count(word) != 0) {
            parsed->flags.insert(word);
        } else if (valueOptions.count(word) != 0) {
            if (i + 1 == arguments.size() || parsed->values.count(word) != 0) return false;
            parsed->values[word] = arguments[++i];
        } else {
            parsed->positional.push_back(word);
        }
    }
    return true;
}

bool ParseNumber(const std::string &text, uint32_t *number)
{
    const bool hex = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
    const std::string digits = hex ? text.substr(2) : text;
    // strtoull would take a sign or leading blanks; a tag number has neither.
    if (digits.empty() || !std::isxdigit(static_cast<unsigned char>(digits[0]))) return false;
    char *end = nullptr;
    errno = 0;
    const unsigned long long value = std::strtoull(digits.c_str(), &end, hex ? 16 : 10);
    if (errno != 0 || *end != '\0' || value > UINT32_MAX) return false;
    *number = static_cast<uint32_t>(value);
    return true;
}
