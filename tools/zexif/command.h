#ifndef ZEXIF_TOOL_COMMAND_H
#define ZEXIF_TOOL_COMMAND_H

#include <cstddef>
#include <string>
#include <vector>

#include "zexif/arguments.h"

// Exit statuses of the tool.
constexpr int EXIT_OK = 0;
constexpr int EXIT_FAILED = 1;
constexpr int EXIT_USAGE = 2;

// A command of the tool. main parses the words behind the command's name by
// options, the command's own and --help; run gets them and returns the exit
// status. For EXIT_USAGE main prints the usage line, after what run may have
// said about the mistake.
struct Command {
    const char *name;
    const char *usage;    // the arguments, one line
    const char *summary;  // one line for zexif --help
    const char *details;  // what it does and its options, for COMMAND --help
    std::vector<CommandOption> options;
    int (*run)(const ParsedArguments &parsed);
};

// The commands, in the order --help lists them.
const Command *CommandTable(size_t *count);
const Command *FindCommand(const std::string &name);

int RunDump(const ParsedArguments &parsed);
int RunInfo(const ParsedArguments &parsed);
int RunGet(const ParsedArguments &parsed);
int RunSet(const ParsedArguments &parsed);
int RunDelete(const ParsedArguments &parsed);
int RunGps(const ParsedArguments &parsed);
int RunShiftDates(const ParsedArguments &parsed);
int RunRename(const ParsedArguments &parsed);
int RunStrip(const ParsedArguments &parsed);
int RunThumbnail(const ParsedArguments &parsed);
int RunComment(const ParsedArguments &parsed);
int RunXmp(const ParsedArguments &parsed);
int RunAudio(const ParsedArguments &parsed);
int RunRemoveMarker(const ParsedArguments &parsed);
int RunCopyExif(const ParsedArguments &parsed);

// Dumps the sample image that travels inside the tool.
int RunSampleDump();

#endif
