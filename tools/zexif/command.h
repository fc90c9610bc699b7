#ifndef ZEXIF_TOOL_COMMAND_H
#define ZEXIF_TOOL_COMMAND_H

#include <cstddef>
#include <string>
#include <vector>

// Exit statuses of the tool.
constexpr int EXIT_OK = 0;
constexpr int EXIT_FAILED = 1;
constexpr int EXIT_USAGE = 2;

// A command of the tool. run gets the words behind the command's name and
// returns the exit status; for EXIT_USAGE main prints the usage line, after
// what run may have said about the mistake.
struct Command {
    const char *name;
    const char *usage;    // the arguments, one line
    const char *summary;  // one line for zexif --help
    const char *details;  // what it does and its options, for COMMAND --help
    int (*run)(const std::vector<std::string> &arguments);
};

// The commands, in the order --help lists them.
const Command *CommandTable(size_t *count);
const Command *FindCommand(const std::string &name);

int RunDump(const std::vector<std::string> &arguments);
int RunGet(const std::vector<std::string> &arguments);
int RunSet(const std::vector<std::string> &arguments);
int RunDelete(const std::vector<std::string> &arguments);
int RunInfo(const std::vector<std::string> &arguments);
int RunThumbnail(const std::vector<std::string> &arguments);
int RunAudio(const std::vector<std::string> &arguments);
int RunStrip(const std::vector<std::string> &arguments);
int RunRemoveMarker(const std::vector<std::string> &arguments);
int RunCopyExif(const std::vector<std::string> &arguments);

#endif
