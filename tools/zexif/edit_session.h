#ifndef ZEXIF_TOOL_EDIT_SESSION_H
#define ZEXIF_TOOL_EDIT_SESSION_H

#include <functional>
#include <string>

struct CExifDoc;

// Loads path, applies edit and saves the result to out, or over path when out
// is empty; the library's save goes through a temporary file, so a failed one
// leaves the target as it was. edit says what went wrong itself and returns
// false to skip the save. Returns the exit status.
int EditAndSave(const std::string &path, const std::string &out, const std::function<bool(CExifDoc *)> &edit);

#endif
