// zexif: shows and edits the metadata of JPEG and TIFF files with zExifLib.
// Each command is a file of its own and a row in the table of
// command_table.cpp.
#include <csignal>
#include <cstdio>
#include <string>

#include "zexif/command.h"

namespace {

void PrintHelp(FILE *out)
{
    std::fprintf(out, "usage: zexif COMMAND ARGUMENTS...\n"
                "Shows and edits the Exif, GPS, thumbnail and audio metadata of JPEG and TIFF files.\n"
                "Without arguments, dumps the sample image built with the tool.\n\ncommands:\n");
    size_t count;
    const Command *commands = CommandTable(&count);
    for (size_t i = 0; i < count; ++i) std::fprintf(out, "  %-14s %s\n", commands[i].name, commands[i].summary);
    std::fprintf(out, "\nzexif COMMAND --help tells more about a command. The exit status is 0 for success,\n"
                "1 when a file could not be handled, 2 for wrong arguments.\n");
}

void PrintCommandHelp(const Command &command)
{
    std::printf("usage: zexif %s %s\n\n%s", command.name, command.usage, command.details);
}

int Usage(const Command &command)
{
    std::fprintf(stderr, "usage: zexif %s %s (see zexif %s --help)\n", command.name, command.usage, command.name);
    return EXIT_USAGE;
}

bool IsHelp(const std::string &word)
{
    return word == "-h" || word == "--help";
}

int RunCommand(const Command &command, const std::vector<std::string> &arguments)
{
    for (const std::string &word : arguments) {
        if (!IsHelp(word)) continue;
        PrintCommandHelp(command);
        return EXIT_OK;
    }
    const int status = command.run(arguments);
    return status == EXIT_USAGE ? Usage(command) : status;
}

// An installed tool may have no build directory with the sample beside it.
bool SampleExists()
{
    FILE *sample = std::fopen(ZEXIF_SAMPLE_JPEG, "rb");
    if (sample != nullptr) std::fclose(sample);
    return sample != nullptr;
}

}  // namespace

int main(int argc, char **argv)
{
    // Beyond the file size limit (ulimit -f) a write fails, and the save
    // cleans up as after any failed write, instead of the tool being killed.
    std::signal(SIGXFSZ, SIG_IGN);
    if (argc < 2 && SampleExists()) return RunDump({ZEXIF_SAMPLE_JPEG});
    if (argc < 2) {
        PrintHelp(stderr);
        return EXIT_USAGE;
    }
    const std::string name = argv[1];
    if (IsHelp(name)) {
        PrintHelp(stdout);
        return EXIT_OK;
    }
    if (name == "help" && argc == 2) {
        PrintHelp(stdout);
        return EXIT_OK;
    }
    const Command *command = FindCommand(name == "help" ? argv[2] : name);
    if (name == "help" && command != nullptr) {
        PrintCommandHelp(*command);
        return EXIT_OK;
    }
    if (command == nullptr) {
        std::fprintf(stderr, "zexif: unknown command '%s'; see zexif --help\n", argv[name == "help" ? 2 : 1]);
        return EXIT_USAGE;
    }
    return RunCommand(*command, std::vector<std::string>(argv + 2, argv + argc));
}
