#ifndef ZEXIF_EDIT_TAG_LOOKUP_H
#define ZEXIF_EDIT_TAG_LOOKUP_H

#include <cstdint>

#include "zexif.h"

struct CExifDoc;
class CNode;
class CTag;

// Bytes of a caller's value: the count times the size of its type, the plain
// count for a type outside 1 to 12.
int64_t ValueDataSize(const ExifTagValue &value);

// 1 for a tag a caller may set: a number that fits an entry's 16 bits, a type
// other than 0, which no file can be read back with, and data for a value
// that has bytes.
int IsSettableTag(uint32_t number, const ExifTagValue *value);

// The first entry of that number in the walk of FindNode from start: start,
// its subtree, its later siblings with theirs. Structural nodes that share the
// number (IFD, entry count, link, header) are walked past, never returned.
CTag *FindEntry(CNode *start, uint32_t number);

// The entry of an Exif IFD tag, from the Exif pointer tag on. The Exif block
// of a marker that never had a tree is parsed first.
CTag *FindExifEntry(CExifDoc *doc, uint32_t number);

// Where a caller's tag is: an Exif IFD tag in the Exif IFD whatever ifd says,
// any other from IFD ifd on. Null when there is none.
CTag *FindTagFor(CExifDoc *doc, uint32_t number, int ifd);

#endif
