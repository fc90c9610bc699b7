#ifndef ZEXIF_TESTS_JPEG_FILES_H
#define ZEXIF_TESTS_JPEG_FILES_H

#include <cstdint>
#include <string>
#include <vector>

// One segment of a JPEG file in front of its first scan.
struct JpegSegmentView {
    uint8_t code;
    std::vector<uint8_t> payload;
};

// The segments from SOI up to and including the first SOS.
std::vector<JpegSegmentView> SegmentsOf(const std::vector<uint8_t> &file);
// The image data: everything from behind the first SOS header up to the
// first EOI, later scans and their segments included. Empty for a file
// without SOS.
std::vector<uint8_t> ScanDataOf(const std::vector<uint8_t> &file);

// 1 when a program of that name is on the PATH.
bool HasProgram(const std::string &name);
// djpeg decodes the bytes without complaint.
bool DecodesAsJpeg(const std::vector<uint8_t> &bytes, const std::string &scratchDir);
// A baseline JPEG of a width x height gradient made by cjpeg: SOI, APP0, the
// tables, one scan, EOI, and no APP1. Empty when cjpeg is missing.
std::vector<uint8_t> PlainJpeg(const std::string &scratchDir, int width, int height, int quality = 75);

#endif
