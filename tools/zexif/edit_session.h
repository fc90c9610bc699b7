#ifndef ZEXIF_TOOL_EDIT_SESSION_H
#define ZEXIF_TOOL_EDIT_SESSION_H

#include <functional>
#include <string>
#include <vector>

struct CExifDoc;

// Loads path, applies edit and saves the result to out, or over path when out
// is empty; the library's save goes through a temporary file, so a failed one
// leaves the target as it was. edit says what went wrong itself and returns
// false to skip the save. Returns the exit status.
int EditAndSave(const std::string &path, const std::string &out, const std::function<bool(CExifDoc *)> &edit);

// EditAndSave for each path in turn, a failure not stopping the others; the
// exit status is 1 when any failed. out is for a single path.
int EditEach(const std::vector<std::string> &paths, const std::string &out,
             const std::function<bool(CExifDoc *, const std::string &path)> &edit);

// For the commands that take several files: -o makes sense with one only.
// Says so on stderr when it is given with more.
bool OutFitsFiles(bool hasOut, size_t files);

#endif
