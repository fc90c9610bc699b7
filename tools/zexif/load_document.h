#ifndef ZEXIF_TOOL_LOAD_DOCUMENT_H
#define ZEXIF_TOOL_LOAD_DOCUMENT_H

#include <string>

struct CExifDoc;

// Loads a file for a command. When it can't, returns null and says why in
// message, "cannot load PATH: REASON"; the library itself gives no reason, so
// a file that opens but doesn't load is called not an image or damaged.
CExifDoc *TryLoadDocument(const std::string &path, std::string *message);

// The same, the message written as one line of stderr.
CExifDoc *LoadDocument(const std::string &path);

// Why a file the library refused can't be used, for a message: the system's
// reason when it can't be read, and otherwise that it is no image it knows.
std::string LoadFailureReason(const std::string &path);

#endif
