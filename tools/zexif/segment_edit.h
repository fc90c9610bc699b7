#ifndef ZEXIF_TOOL_SEGMENT_EDIT_H
#define ZEXIF_TOOL_SEGMENT_EDIT_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

struct CExifDoc;

constexpr int32_t MARKER_APP1 = 0xE1;
constexpr int32_t MARKER_APP2 = 0xE2;
constexpr int32_t MARKER_APP13 = 0xED;
constexpr int32_t MARKER_COM = 0xFE;

// A segment's marker and payload, as a test of which segments to take.
using SegmentTest = std::function<bool(int32_t marker, const std::string &payload)>;

// The segments of a JPEG document that pass test, last first so that the
// indices of the others stay; the document's own Exif segment isn't among
// them. Returns how many there were, -1 for a document with no segments (a
// TIFF).
int RemoveSegments(CExifDoc *doc, const SegmentTest &test);

// The index of the first segment that passes test, and its payload; -1
// where none does.
int32_t FindSegment(CExifDoc *doc, const SegmentTest &test, std::string *payload);

// The payloads of the segments that pass test, in file order.
std::vector<std::string> SegmentPayloads(CExifDoc *doc, const SegmentTest &test);

// A segment test: marker and a payload that starts with prefix.
SegmentTest SegmentOf(int32_t marker, const std::string &prefix);

#endif
