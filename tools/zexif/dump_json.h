#ifndef ZEXIF_TOOL_DUMP_JSON_H
#define ZEXIF_TOOL_DUMP_JSON_H

#include "zexif/json_writer.h"

class DumpedFile;

// The members of a file's object in dump --json, into an object the caller
// has begun with its "file":
//   "format"   "JPEG" or "TIFF"
//   "markers"  of a JPEG, in file order: {"code": "FFE1", "name": "APP1",
//              "offset", "size", "signature", "tiff"}, the code null and the
//              name "scan data" for the data behind SOS, the payload's
//              members only where there is one
//   "tiff"     of a TIFF file, or of a marker that holds a TIFF block:
//              {"byteOrder": "II" or "MM", "ifds": [IFD...]}
// An IFD is {"ifd": "0", "name": "IFD 0", "entries", "nextIfd", "tags"},
// each tag an object as WriteTagMembers makes it, with "subIfd" holding the
// IFD it points to.
void WriteDocumentMembers(JsonWriter &json, const DumpedFile &file);

#endif
