// zexif: shows and edits the metadata of JPEG and TIFF files with zExifLib.
// Each command is a file of its own and a row in the table of
// command_table.cpp.
#include <csignal>
#include <cstdio>
#include <string>

#include "zexif/command.h"
#include "zexif.h"

namespace {

void PrintHelp(FILE *out)
{
    std::fprintf(out, "usage: zexif COMMAND [OPTION]... FILE...\n"
                "Shows and edits the Exif, GPS, thumbnail, comment, XMP and audio metadata of JPEG\n"
                "and TIFF files. Without arguments, dumps the sample image built into the tool.\n\n"
                "Commands:\n");
    size_t count;
    const Command *commands = CommandTable(&count);
    for (size_t i = 0; i < count; ++i) std::fprintf(out, "  %-14s %s\n", commands[i].name, commands[i].summary);
    std::fprintf(out, "\nOptions:\n"
                "  -h, --help     this help; zexif COMMAND --help tells more about a command\n"
                "  --version      the version of zexif and of the library it runs with\n\n"
                "Exit status:\n"
                "  0  every file was handled\n"
                "  1  some file could not be handled (the others still were)\n"
                "  2  wrong arguments\n");
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
    ParsedArguments parsed;
    if (!ParseArguments(command.name, arguments, command.options, &parsed)) return EXIT_USAGE;
    if (parsed.Has("help")) {
        PrintCommandHelp(command);
        return EXIT_OK;
    }
    const int status = command.run(parsed);
    return status == EXIT_USAGE ? Usage(command) : status;
}

}  // namespace

int main(int argc, char **argv)
{
    // Beyond the file size limit (ulimit -f) a write fails, and the save
    // cleans up as after any failed write, instead of the tool being killed.
    std::signal(SIGXFSZ, SIG_IGN);
    if (argc < 2) return RunSampleDump();
    const std::string name = argv[1];
    if (IsHelp(name) || (name == "help" && argc == 2)) {
        PrintHelp(stdout);
        return EXIT_OK;
    }
    if (name == "--version") {
        std::printf("zexif %s\n", zExifGetVersion());
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
