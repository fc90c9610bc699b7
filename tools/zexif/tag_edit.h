#ifndef ZEXIF_TOOL_TAG_EDIT_H
#define ZEXIF_TOOL_TAG_EDIT_H

#include <string>

#include "zexif/tag_argument.h"
#include "zexif.h"

// Sets the addressed tag in exactly its IFD, which the library makes, with
// what it hangs from, where the file has none. On failure, error says why.
bool SetAddressedTag(CExifDoc *doc, const TagAddress &address, const ExifTagValue &value, std::string *error);

// Deletes the addressed tag. A sub-IFD left without entries goes with its
// pointer, since an IFD of none can't be read back.
bool DeleteAddressedTag(CExifDoc *doc, const TagAddress &address, std::string *error);

#endif
