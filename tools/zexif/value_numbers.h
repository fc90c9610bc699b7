#ifndef ZEXIF_TOOL_VALUE_NUMBERS_H
#define ZEXIF_TOOL_VALUE_NUMBERS_H

#include <cstddef>
#include <cstdint>

// A tag's value as the library hands it out: the values of its TIFF type in
// host order. size may be below what count declares, for a value that a cut
// file holds only in part.
struct ValueView {
    uint32_t type = 0;
    uint32_t count = 0;
    const unsigned char *bytes = nullptr;
    size_t size = 0;
};

// How many values the bytes hold whole: at most count; 0 for a type outside
// 1 to 12.
size_t ValuesAtHand(const ValueView &value);
bool IsWhole(const ValueView &value);

bool IsIntegerType(uint32_t type);
bool IsRationalType(uint32_t type);

// Value index of an integer type: BYTE, SHORT, LONG and their signed kinds.
int64_t IntegerAt(const ValueView &value, size_t index);
// Value index of a RATIONAL or SRATIONAL.
void RationalAt(const ValueView &value, size_t index, int64_t *numerator, int64_t *denominator);
// Value index of a FLOAT or DOUBLE.
double RealAt(const ValueView &value, size_t index);

#endif
