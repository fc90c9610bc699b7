#include "zexif/value_numbers.h"

#include <algorithm>
#include <cstring>

#include "zexif/field_types.h"

namespace {

template <typename T>
T ValueAt(const unsigned char *bytes, size_t index)
{
    T value;
    std::memcpy(&value, bytes + index * sizeof(T), sizeof(T));
    return value;
}

}  // namespace

size_t ValuesAtHand(const ValueView &value)
{
    const int size = TiffTypeSize(value.type);
    if (size == 0) return 0;
    return std::min<size_t>(value.count, value.size / static_cast<size_t>(size));
}

bool IsWhole(const ValueView &value)
{
    return TiffTypeSize(value.type) != 0 && static_cast<int64_t>(value.size) >= EntryDataSize(value.type, value.count);
}

bool IsIntegerType(uint32_t type)
{
    switch (type) {
    case TIFF_BYTE:
    case TIFF_SBYTE:
    case TIFF_SHORT:
    case TIFF_SSHORT:
    case TIFF_LONG:
    case TIFF_SLONG: return true;
    default: return false;
    }
}

bool IsRationalType(uint32_t type)
{
    return type == TIFF_RATIONAL || type == TIFF_SRATIONAL;
}

int64_t IntegerAt(const ValueView &value, size_t index)
{
    switch (value.type) {
    case TIFF_BYTE: return value.bytes[index];
    case TIFF_SBYTE: return static_cast<int8_t>(value.bytes[index]);
    case TIFF_SHORT: return ValueAt<uint16_t>(value.bytes, index);
    case TIFF_SSHORT: return ValueAt<int16_t>(value.bytes, index);
    case TIFF_LONG: return ValueAt<uint32_t>(value.bytes, index);
    default: return ValueAt<int32_t>(value.bytes, index);
    }
}

void RationalAt(const ValueView &value, size_t index, int64_t *numerator, int64_t *denominator)
{
    if (value.type == TIFF_RATIONAL) {
        *numerator = ValueAt<uint32_t>(value.bytes, 2 * index);
        *denominator = ValueAt<uint32_t>(value.bytes, 2 * index + 1);
    } else {
        *numerator = ValueAt<int32_t>(value.bytes, 2 * index);
        *denominator = ValueAt<int32_t>(value.bytes, 2 * index + 1);
    }
}

double RealAt(const ValueView &value, size_t index)
{
    if (value.type == TIFF_FLOAT) return ValueAt<float>(value.bytes, index);
    return ValueAt<double>(value.bytes, index);
}
