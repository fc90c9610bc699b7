#include "zexif/arguments.h"

#include <getopt.h>

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace {

// getopt_long takes any word that starts with '-' for options; a negative
// number is hidden behind this mark while it runs.
constexpr char NUMBER_MARK = '\x1f';

std::string Unmarked(const std::string &word)
{
    return !word.empty() && word[0] == NUMBER_MARK ? word.substr(1) : word;
}

std::string Marked(const std::string &word)
{
    const bool negative = word.size() > 1 && word[0] == '-' && (std::isdigit(static_cast<unsigned char>(word[1])) || word[1] == '.');
    return negative ? NUMBER_MARK + word : word;
}

std::string ShortOptions(const std::vector<CommandOption> &options)
{
    std::string letters = ":";
    for (const CommandOption &option : options) {
        if (option.letter == 0) continue;
        letters += option.letter;
        if (option.takesValue) letters += ':';
    }
    return letters;
}

const CommandOption *FindLetter(const std::vector<CommandOption> &options, int letter)
{
    for (const CommandOption &option : options) {
        if (option.letter == letter) return &option;
    }
    return nullptr;
}

bool Mistake(const std::string &command, const std::string &what)
{
    std::fprintf(stderr, "zexif %s: %s (see zexif %s --help)\n", command.c_str(), what.c_str(), command.c_str());
    return false;
}

}  // namespace

std::string ParsedArguments::Value(const std::string &option, const std::string &otherwise) const
{
    auto found = values.find(option);
    return found == values.end() ? otherwise : found->second.back();
}

std::vector<std::string> ParsedArguments::All(const std::string &option) const
{
    auto found = values.find(option);
    return found == values.end() ? std::vector<std::string>() : found->second;
}

void ParsedArguments::TagsAndFiles(std::vector<std::string> *tags, std::vector<std::string> *files) const
{
    *tags = All("tag");
    *files = positional;
    if (tags->empty() && files->size() >= 2) {
        tags->push_back(files->back());
        files->pop_back();
    }
}

bool ParseArguments(const std::string &command, const std::vector<std::string> &arguments,
                    const std::vector<CommandOption> &options, ParsedArguments *parsed)
{
    std::vector<std::string> words = {"zexif"};
    for (const std::string &word : arguments) words.push_back(Marked(word));
    std::vector<char *> argv;
    for (std::string &word : words) argv.push_back(&word[0]);
    argv.push_back(nullptr);
    std::vector<struct option> longOptions;
    for (size_t i = 0; i < options.size(); ++i) {
        longOptions.push_back({options[i].name, options[i].takesValue ? required_argument : no_argument, nullptr,
                               static_cast<int>(256 + i)});
    }
    longOptions.push_back({nullptr, 0, nullptr, 0});
    const std::string letters = ShortOptions(options);
    optind = 0;
    opterr = 0;
    const int argc = static_cast<int>(words.size());
    for (int found; (found = getopt_long(argc, argv.data(), letters.c_str(), longOptions.data(), nullptr)) != -1;) {
        const std::string word = argv[optind - 1];
        if (found == '?') return Mistake(command, "unknown option '" + (optopt != 0 ? std::string("-") + char(optopt) : word) + "'");
        if (found == ':') return Mistake(command, "option '" + word + "' needs a value");
        const CommandOption *option = found >= 256 ? &options[static_cast<size_t>(found - 256)] : FindLetter(options, found);
        parsed->values[option->name].push_back(option->takesValue ? Unmarked(optarg) : "");
    }
    for (int i = optind; i < argc; ++i) parsed->positional.push_back(Unmarked(argv[i]));
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
    if (errno != 0 || *end != '\0') return false;
    if (value > UINT32_MAX) return false;
    *number = static_cast<uint32_t>(value);
    return true;
}
