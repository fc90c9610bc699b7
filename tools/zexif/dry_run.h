#ifndef ZEXIF_TOOL_DRY_RUN_H
#define ZEXIF_TOOL_DRY_RUN_H

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

struct CExifDoc;

// What an edit can change in a document, as people read it: every tag of
// IFD 0, IFD 1 and the Exif, GPS and Interoperability IFDs, and each JPEG
// APPn and comment segment beside the Exif one. Offsets change with any
// save, so a tag holding one shows as present only.
struct SnapshotEntry {
    std::string key;    // "Artist", "IFD 1 XResolution", "APP1 http://ns.adobe.com/xap/1.0/"
    std::string shown;  // the value for people
    uint64_t fingerprint = 0;
};
std::vector<SnapshotEntry> TakeSnapshot(CExifDoc *doc);

// Writes "PATH:" and a line per entry that differs, "  KEY: OLD -> NEW",
// "(none)" standing for what isn't there; "PATH: no change" when nothing does.
void PrintChanges(const std::string &path, const std::vector<SnapshotEntry> &before,
                  const std::vector<SnapshotEntry> &after, FILE *out);

#endif
