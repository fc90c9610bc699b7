#ifndef ZEXIF_TESTS_TAG_STEPS_H
#define ZEXIF_TESTS_TAG_STEPS_H

#include <cstdint>
#include <string>
#include <vector>

#include "support/tree_builder.h"

// What zExifGetTag hands out: its result, and the value's type, count and
// bytes (none for a type outside 1 to 12, whose data it leaves alone).
struct GotTag {
    int result = -1;
    uint32_t type = 0;
    uint32_t count = 0;
    std::vector<uint8_t> bytes;
};
GotTag GetTag(CExifDoc *doc, uint32_t tag, int ifd);

// One call of a scripted edit and what it must give: a set of entry's value,
// a delete of its tag, or a get that finds entry's type, count and bytes.
struct TagStep {
    enum Kind { SET, DEL, GET } kind;
    EntryDef entry;
    int ifd;
    int result;
};
TagStep Set(const EntryDef &entry, int ifd, int result = 0);
TagStep Del(int32_t tag, int ifd, int result = 0);
TagStep Get(const EntryDef &expected, int ifd);
TagStep Missing(int32_t tag, int ifd);

// Runs the steps in order and says what went otherwise than they say, or ""
// when nothing did. A set or delete that fails must leave the tree as it was.
std::string RunSteps(CExifDoc &doc, const std::vector<TagStep> &steps);

#endif
