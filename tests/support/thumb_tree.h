#ifndef ZEXIF_TESTS_THUMB_TREE_H
#define ZEXIF_TESTS_THUMB_TREE_H

#include <cstdint>
#include <string>
#include <vector>

#include "tree/document.h"

// One IFD entry of a hand-made tree; the value is m_value as a load leaves it.
struct HandTag {
    int32_t tag;
    uint32_t type;
    int32_t count;
    uint32_t value;
};

// Hangs a TIFF header and one IFD per list below parent (an APP1 marker), or
// at the root of a TIFF document for a null parent, in the shape a load makes.
// Tags 513 and 34665 are registered in the document as a load registers them.
// Returns the header node.
CNode *HangTiffBlock(CExifDoc &doc, CNode *parent, const std::vector<std::vector<HandTag>> &ifds);

// The tree as Outline gives it.
std::string TreeShape(const CExifDoc &doc);

// A made-up JPEG thumbnail of that many bytes: SOI, filler, EOI.
std::vector<uint8_t> FakeThumbnail(size_t size, uint8_t seed = 0);

#endif
