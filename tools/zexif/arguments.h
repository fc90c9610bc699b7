#ifndef ZEXIF_TOOL_ARGUMENTS_H
#define ZEXIF_TOOL_ARGUMENTS_H

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

// A command's arguments split into the positional ones and the options it
// knows. Only a word that is exactly a known option counts as one, so that a
// value such as "-5" stays positional.
struct ParsedArguments {
    std::vector<std::string> positional;
    std::map<std::string, std::string> values;
    std::set<std::string> flags;

    bool Has(const std::string &option) const { return values.count(option) != 0 || flags.count(option) != 0; }
    std::string Value(const std::string &option, const std::string &otherwise) const;
};

// False when an option that takes a value comes last or twice.
bool ParseArguments(const std::vector<std::string> &arguments, const std::set<std::string> &valueOptions,
                    const std::set<std::string> &flagOptions, ParsedArguments *parsed);

// A number in decimal or, after "0x", in hex, up to 32 bits.
bool ParseNumber(const std::string &text, uint32_t *number);

#endif
