#ifndef ZEXIF_TESTS_LOAD_BYTES_H
#define ZEXIF_TESTS_LOAD_BYTES_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tree/document.h"
#include "zexif.h"

struct DocDeleter {
    void operator()(CExifDoc *doc) const { zExifDestroy(doc); }
};
using DocPtr = std::unique_ptr<CExifDoc, DocDeleter>;

// Writes the bytes to a temporary file and loads it; null when the load fails.
DocPtr LoadBytes(const std::vector<uint8_t> &bytes);

// What describe says of the document the bytes load into; "" when the load
// fails.
std::string DescribeLoad(const std::vector<uint8_t> &bytes, std::string (*describe)(const CExifDoc &));

// The CTag children of an IFD or pointer tag, in chain order.
std::vector<CTag *> TagsOf(CNode *parent);

#endif
