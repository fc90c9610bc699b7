#ifndef ZEXIF_TOOL_EDIT_SESSION_H
#define ZEXIF_TOOL_EDIT_SESSION_H

#include <functional>
#include <string>
#include <vector>

#include "zexif/arguments.h"

struct CExifDoc;

// Where an edited file goes: over FILE when out is empty, else to out, "-"
// being standard output. keepTime gives the saved file the times that FILE
// had before the edit. dryRun shows what the edit would change and writes
// nothing.
struct SaveOptions {
    std::string out;
    bool keepTime = false;
    bool dryRun = false;
};

// What -o, -P and -n of a command that saves ask for.
SaveOptions SaveOptionsOf(const ParsedArguments &parsed);

// What an edit did: failed (after saying why), changed the document, or
// found nothing to change, which needs no save.
enum EditResult { EDIT_FAILED, EDIT_DONE, EDIT_UNCHANGED };

// Loads path, applies edit and saves the result as options say; the
// library's save goes through a temporary file, so a failed one leaves the
// target as it was. A dry run prints each value the edit changes, old and
// new, as the saved file would have them. Returns the exit status.
int EditAndSave(const std::string &path, const SaveOptions &options, const std::function<EditResult(CExifDoc *)> &edit);

// EditAndSave for each of files (with -r and -j as parsed asks), a failure
// not stopping the others; -o goes with one file only.
int EditEach(const ParsedArguments &parsed, const std::vector<std::string> &files,
             const std::function<EditResult(CExifDoc *, const std::string &path)> &edit);

#endif
