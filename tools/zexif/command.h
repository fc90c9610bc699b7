#ifndef ZEXIF_TOOL_COMMAND_H
#define ZEXIF_TOOL_COMMAND_H

#include <cstddef>
#include <string>
#include <vector>

// Exit statuses of the tool.
constexpr int EXIT_OK = 0;
constexpr int EXIT_FAILED = 1;
constexpr int EXIT_USAGE = 2;

// A command of the tool. main checks the number of arguments against the
// bounds before run is called; run returns the exit status, and for
// EXIT_USAGE main prints the command's usage line.
struct Command {
    const char *name;
    const char *arguments;
    const char *summary;
    size_t minArguments;
    size_t maxArguments;
    int (*run)(const std::vector<std::string> &arguments);
};

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
