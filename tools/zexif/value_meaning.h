#ifndef ZEXIF_TOOL_VALUE_MEANING_H
#define ZEXIF_TOOL_VALUE_MEANING_H

#include <cstdint>
#include <string>

#include "zexif/tag_names.h"
#include "zexif/value_numbers.h"

// One tag as the commands show it: where it is, its value and, for a GPS
// latitude or longitude, the value of its Ref tag (type 0 when there is none).
struct TagView {
    TagGroup group = GROUP_TIFF;
    uint32_t number = 0;
    ValueView value;
    ValueView reference;
};

// The Ref tag that says which hemisphere a GPS coordinate lies in, or 0 for
// a tag that is no coordinate.
uint32_t ReferenceTagOf(TagGroup group, uint32_t number);

// A GPS coordinate of three rationals in decimal degrees, negative to the
// south and west. False for a value of another shape or a zero denominator.
bool GpsDecimalDegrees(const TagView &tag, double *degrees);

// A tag's value for people. With whole, every value as get prints it (text
// unquoted, UNDEFINED as hex); otherwise as a line of dump shows it
// (quoted, long values shortened). Then what the tool knows it to mean:
// rationals in decimal ("1/250 (0.004)"), orientation and a few other
// enumerations by name ("6 (Rotate 90 CW)"), printable UNDEFINED as text.
// A GPS coordinate is shown in degrees, minutes and seconds with its
// hemisphere, and in decimal degrees: 52° 30' 12.34" N (52.503428).
std::string ReadableValue(const TagView &tag, bool whole);

// The name of one value of an enumeration such as Orientation, or null.
const char *SettingName(const TagView &tag, int64_t value);

#endif
