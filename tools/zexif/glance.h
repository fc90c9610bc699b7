#ifndef ZEXIF_TOOL_GLANCE_H
#define ZEXIF_TOOL_GLANCE_H

#include <string>
#include <vector>

struct CExifReader;

// A position from the GPS IFD in signed decimal degrees, south and west
// negative; the altitude in metres, below sea level negative.
struct GpsPosition {
    double latitude = 0, longitude = 0, altitude = 0;
    bool hasAltitude = false;
};

// False where the file has no latitude and longitude of three rationals.
bool ReadGpsPosition(CExifReader *reader, GpsPosition *position);

// "52.503428, 13.401234" and, with an altitude, ", 35.5 m".
std::string GpsPositionText(const GpsPosition &position);

// What info shows of a photo, one text per field, empty where the file
// doesn't say; the fields in the order of GlanceKeys and GlanceLabels.
enum GlanceField {
    GLANCE_CAMERA, GLANCE_LENS, GLANCE_DATE, GLANCE_EXPOSURE, GLANCE_F_NUMBER, GLANCE_ISO, GLANCE_FOCAL_LENGTH,
    GLANCE_IMAGE_SIZE, GLANCE_ORIENTATION, GLANCE_GPS, GLANCE_ARTIST, GLANCE_COPYRIGHT, GLANCE_FIELDS
};
std::vector<std::string> GlanceOf(CExifReader *reader);

// "camera", "fNumber"...: the JSON keys and CSV columns.
const std::vector<std::string> &GlanceKeys();
// "Camera", "F-number"...: for people.
const std::vector<std::string> &GlanceLabels();

#endif
