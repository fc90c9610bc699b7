#ifndef ZEXIF_TOOL_TAG_EDIT_H
#define ZEXIF_TOOL_TAG_EDIT_H

#include <string>

#include "tools/zexif/document_tags.h"
#include "zexif.h"

// Sets the addressed tag in its own IFD. The library looks a tag up by
// number through IFD 0 and what hangs below it, and keeps Orientation in the
// Exif IFD; the tool edits the entry it addresses instead, and goes through
// the library where new IFDs or segments have to be made. On failure, error
// says why.
bool SetAddressedTag(CExifDoc *doc, const TagAddress &address, const ExifTagValue &value, std::string *error);

// Deletes the addressed tag. A sub-IFD left without entries goes with its
// pointer, since an IFD of none can't be read back.
bool DeleteAddressedTag(CExifDoc *doc, const TagAddress &address, std::string *error);

#endif
