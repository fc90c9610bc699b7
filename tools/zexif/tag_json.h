#ifndef ZEXIF_TOOL_TAG_JSON_H
#define ZEXIF_TOOL_TAG_JSON_H

#include <string>

#include "zexif/json_writer.h"
#include "zexif/value_meaning.h"

// The members of a tag's JSON object, into an object the caller has begun:
//   "ifd"    where it is: "0", "1", "exif", "gps", "interop"
//   "tag"    its number; "name" its name, null for one the tool doesn't know
//   "type"   the TIFF type's name; "count" the number of values
//   "value"  ASCII as a string up to the first NUL; UNDEFINED as a string of
//            hex digits; integers and reals as an array of numbers;
//            rationals as an array of [numerator, denominator] pairs; null
//            for a value of an unknown type
//   "text"   the value as get prints it, null where "value" is
//   "decimal" only for a GPS latitude or longitude: signed decimal degrees
void WriteTagMembers(JsonWriter &json, const TagView &tag, const std::string &ifd);

#endif
