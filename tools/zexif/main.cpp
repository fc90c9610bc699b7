// zexif: shows and edits the metadata of JPEG and TIFF files with zExifLib.
// Each command is a file of its own and a row in the table below.
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "tools/zexif/command.h"

namespace {

const Command COMMANDS[] = {
    {"dump", "FILE", "print the format, the JPEG markers and every IFD with its tags", 1, 1, RunDump},
    {"get", "FILE TAG [--ifd N]", "print one tag's value; TAG in decimal or 0x hex", 2, 4, RunGet},
    {"set", "FILE TAG TYPE VALUE... [--ifd N] [-o OUT]",
     "set a tag: TYPE byte, ascii, short, long, rational (n/d), sbyte, undefined (bytes), sshort, slong, "
     "srational, float, double or 1 to 12",
     4, SIZE_MAX, RunSet},
    {"delete", "FILE TAG [--ifd N] [-o OUT]", "delete a tag", 2, 6, RunDelete},
    {"info", "FILE...", "print format, Exif, thumbnail, audio, Make, Model, DateTime, Orientation", 1, SIZE_MAX,
     RunInfo},
    {"thumbnail", "extract FILE OUT.jpg | set FILE IN.jpg [-o OUT]", "write out or replace the thumbnail", 3, 5,
     RunThumbnail},
    {"audio", "extract FILE OUT.wav | set FILE IN.wav [-o OUT] | remove FILE [-o OUT]",
     "write out, attach or remove the voice annotation", 2, 5, RunAudio},
    {"strip", "FILE [--keep-orientation] [-o OUT]",
     "remove the Exif data: every APP1 of a JPEG, the Exif and GPS IFDs of a TIFF; a kept orientation goes "
     "into a new Exif IFD of a JPEG, and stays in IFD 0 of a TIFF",
     1, 4, RunStrip},
    {"remove-marker", "FILE CODE [--signature ABCD] [-o OUT]",
     "remove every APP1 (CODE 0xE1), or the first marker of CODE whose payload starts with the signature", 2, 6,
     RunRemoveMarker},
    {"copy-exif", "SRC DST [-o OUT]", "copy the Exif data of SRC into DST, both JPEG or both TIFF", 2, 4,
     RunCopyExif},
};

void PrintHelp(FILE *out)
{
    std::fprintf(out, "usage: zexif [COMMAND ARGUMENTS]\n");
    std::fprintf(out, "Without arguments, dumps the sample image built with the tool.\n");
    for (const Command &command : COMMANDS) {
        std::fprintf(out, "  %s %s\n      %s\n", command.name, command.arguments, command.summary);
    }
}

const Command *FindCommand(const char *name)
{
    for (const Command &command : COMMANDS) {
        if (std::strcmp(command.name, name) == 0) return &command;
    }
    return nullptr;
}

int Usage(const Command &command)
{
    std::fprintf(stderr, "usage: zexif %s %s\n", command.name, command.arguments);
    return EXIT_USAGE;
}

int RunCommand(const Command &command, const std::vector<std::string> &arguments)
{
    if (arguments.size() < command.minArguments || arguments.size() > command.maxArguments) return Usage(command);
    const int status = command.run(arguments);
    return status == EXIT_USAGE ? Usage(command) : status;
}

bool IsHelp(const char *argument)
{
    return std::strcmp(argument, "-h") == 0 || std::strcmp(argument, "--help") == 0;
}

}  // namespace

int main(int argc, char **argv)
{
    if (argc < 2) return RunDump({ZEXIF_SAMPLE_JPEG});
    if (IsHelp(argv[1])) {
        PrintHelp(stdout);
        return EXIT_OK;
    }
    const Command *command = FindCommand(argv[1]);
    if (command == nullptr) {
        std::fprintf(stderr, "zexif: unknown command '%s'; usage: zexif [COMMAND ARGUMENTS], see zexif --help\n", argv[1]);
        return EXIT_USAGE;
    }
    return RunCommand(*command, std::vector<std::string>(argv + 2, argv + argc));
}
