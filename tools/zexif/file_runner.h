#ifndef ZEXIF_TOOL_FILE_RUNNER_H
#define ZEXIF_TOOL_FILE_RUNNER_H

#include <functional>
#include <string>
#include <vector>

struct ParsedArguments;

// How the outputs of the files join: open in front of the first, between
// two that said something on standard output, close behind the last.
struct Listing {
    std::string open, between, close;
};

// The files of a command: the arguments, each folder among them replaced by
// the JPEG and TIFF files below it (known by their first bytes, in name
// order) when recursive. A folder without recursive stays, to fail as a file.
std::vector<std::string> ExpandFiles(const std::vector<std::string> &arguments, bool recursive);

// The threads that -j asks for, the number of online cores without it; 0,
// after a line on stderr, for a value that isn't a number from 1 to 1024.
unsigned JobsOf(const ParsedArguments &parsed);

// Runs work on each file, spread over threads; what work writes to Out()
// and Err() comes out file by file in the order of files, as if they had
// been done one after the other. A file that fails doesn't stop the others.
// Returns the highest exit status of any file.
int RunOverFiles(const std::vector<std::string> &files, unsigned threads, const Listing &listing,
                 const std::function<int(const std::string &path)> &work);

// RunOverFiles on the arguments as -r and -j of parsed ask; EXIT_USAGE for
// a wrong -j.
int RunForEachFile(const ParsedArguments &parsed, const std::vector<std::string> &arguments, const Listing &listing,
                   const std::function<int(const std::string &path)> &work);

#endif
