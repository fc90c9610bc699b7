#ifndef ZEXIF_TESTS_SUPPORT_ORACLE_H
#define ZEXIF_TESTS_SUPPORT_ORACLE_H

#include <string>
#include <vector>

#include "support/raw.h"
#include "zexif.h"

// What each family must answer about a file, derived from its raw reading
// alone. Tags are those of the file's first (only) TIFF block.

bool InExifTable(uint32_t tag);

// zExifGetTag(tag, ifd): an Exif-table tag from the Exif pointer on (its
// IFD, then the rest of the pointer's chain), any other from IFD ifd on, in
// the order of the walk. Null for -1.
const RawTag *ExpectedGet(const std::vector<RawTag> &tags, uint32_t tag, int ifd);

// zRExifGetTag(tag): the five tags a reader keeps come from the last chain
// IFD that holds them; other Exif-table tags, and those of the five the
// chain lacks, from the Exif IFD. Null for -1.
const RawTag *ExpectedReaderGet(const std::vector<RawTag> &tags, uint32_t tag);

// Every check of one file's bytes: the load agrees with the raw reading, so
// do the lookups of both families, the thumbnail and the raw blocks, and a
// save keeps every tag, segment and image byte. With edits, a save after one
// edit of each kind gives the file's own tags as saved, with Artist set in
// IFD 0, a new UserComment in the Exif IFD, the first plain tag of IFD 0
// deleted and, for a JPEG, a new thumbnail, and every other segment as it
// was. Failures name label.
void CheckFile(const Bytes &bytes, const std::string &label, bool edits = true);

// For a file that may be damaged anywhere: the reader answers every question
// without harm, the load agrees with the raw reading, and a save either
// writes a file that loads or fails and leaves nothing behind.
void CheckDamaged(const Bytes &bytes, const std::string &label);

#endif
