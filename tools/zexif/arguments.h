#ifndef ZEXIF_TOOL_ARGUMENTS_H
#define ZEXIF_TOOL_ARGUMENTS_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

// An option a command takes: its long name, its one-letter form (0 for
// none) and whether it takes a value.
struct CommandOption {
    const char *name;
    char letter;
    bool takesValue;
};

// A command's words split by getopt_long: the options, in any order among
// the other words, by long name; a repeated option keeps every value.
struct ParsedArguments {
    std::vector<std::string> positional;
    std::map<std::string, std::vector<std::string>> values;

    bool Has(const std::string &option) const { return values.count(option) != 0; }
    // The last value given.
    std::string Value(const std::string &option, const std::string &otherwise) const;
    std::vector<std::string> All(const std::string &option) const;
    // The tags a command names with -t, and its files; without -t, the last
    // word is the tag, as in the first form of get and delete.
    void TagsAndFiles(std::vector<std::string> *tags, std::vector<std::string> *files) const;
};

// GNU rules: --name=value or --name value, -x value or -xvalue, "--" ends
// the options. A word that reads as a negative number ("-5", "-1/3") is a
// value, not an option. False for an unknown option or a missing value,
// after one line on stderr that names the mistake and points to the
// command's --help.
bool ParseArguments(const std::string &command, const std::vector<std::string> &arguments,
                    const std::vector<CommandOption> &options, ParsedArguments *parsed);

// A number in decimal or, after "0x", in hex, up to 32 bits.
bool ParseNumber(const std::string &text, uint32_t *number);

#endif
