#ifndef ZEXIF_TESTS_SUPPORT_TREE_RECORDS_H
#define ZEXIF_TESTS_SUPPORT_TREE_RECORDS_H

#include <memory>
#include <string>
#include <vector>

#include "support/raw.h"
#include "zexif.h"

// A loaded document seen in the records of the raw reading, so that the two
// compare directly.

struct DocDeleter {
    void operator()(CExifDoc *doc) const { zExifDestroy(doc); }
};
using DocPtr = std::unique_ptr<CExifDoc, DocDeleter>;

struct ReaderDeleter {
    void operator()(CExifReader *reader) const { zRExifEndRead(reader); }
};
using ReaderPtr = std::unique_ptr<CExifReader, ReaderDeleter>;

// Every tag of every TIFF block in the tree, in the order and with the
// places ReadRaw gives.
std::vector<RawTag> TreeTags(const CExifDoc &doc);

// The top-level markers as (code, offset, size).
std::vector<RawSegment> TreeSegments(const CExifDoc &doc);

// The bytes of a value handed out by either family.
Bytes ValueBytes(const ExifTagValue &value);

// The thumbnail a document hands out, through the call for that type where
// one is given; empty for none.
Bytes DocThumbnail(CExifDoc *doc, uint32_t type = 0);

// A reader's answer for a tag as text: the value's bytes, "-" for none.
std::string ReaderValue(CExifReader *reader, uint32_t tag);

// The codes of the top-level markers, in order.
std::vector<int> MarkerCodes(const CExifDoc &doc);

#endif
