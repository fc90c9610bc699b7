#ifndef ZEXIF_TOOL_EDIT_SESSION_H
#define ZEXIF_TOOL_EDIT_SESSION_H

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "zexif/arguments.h"

struct CExifDoc;

// Where an edited file goes: over FILE when out is empty, else to out, "-"
// being standard output. keepTime gives the saved file the times that FILE
// had before the edit.
struct SaveOptions {
    std::string out;
    bool keepTime = false;
};

// The flag options of a command that saves, -P and --preserve-time, beside
// the command's own.
std::set<std::string> SaveFlags(std::set<std::string> own = {});

// What -o and -P of a command that saves ask for.
SaveOptions SaveOptionsOf(const ParsedArguments &parsed);

// Loads path, applies edit and saves the result as options say; the
// library's save goes through a temporary file, so a failed one leaves the
// target as it was. edit says what went wrong itself and returns false to
// skip the save. Returns the exit status.
int EditAndSave(const std::string &path, const SaveOptions &options, const std::function<bool(CExifDoc *)> &edit);

// EditAndSave for each path in turn, a failure not stopping the others; the
// exit status is 1 when any failed. options.out is for a single path.
int EditEach(const std::vector<std::string> &paths, const SaveOptions &options,
             const std::function<bool(CExifDoc *, const std::string &path)> &edit);

// For the commands that take several files: -o makes sense with one only.
// Says so on stderr when it is given with more.
bool OutFitsFiles(bool hasOut, size_t files);

#endif
