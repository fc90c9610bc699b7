#include "zexif/glance.h"

#include <strings.h>

#include <cmath>
#include <cstdio>

#include "zexif/field_types.h"
#include "zexif/tag_reading.h"
#include "zexif.h"

namespace {

constexpr uint32_t TAG_MAKE = 271, TAG_MODEL = 272, TAG_ORIENTATION = 274, TAG_DATE_TIME = 306;
constexpr uint32_t TAG_ARTIST = 315, TAG_COPYRIGHT = 33432, TAG_WIDTH = 256, TAG_LENGTH = 257;
constexpr uint32_t TAG_EXPOSURE_TIME = 33434, TAG_F_NUMBER = 33437, TAG_ISO = 34855, TAG_ORIGINAL = 36867;
constexpr uint32_t TAG_FOCAL_LENGTH = 37386, TAG_PIXEL_X = 40962, TAG_PIXEL_Y = 40963, TAG_FOCAL_35 = 41989;
constexpr uint32_t TAG_LENS_MAKE = 42035, TAG_LENS_MODEL = 42036;
constexpr uint32_t GPS_LATITUDE = 2, GPS_LONGITUDE = 4, GPS_ALTITUDE_REF = 5, GPS_ALTITUDE = 6;

bool Read(CExifReader *reader, TagGroup group, uint32_t number, TagView *view)
{
    TagAddress address;
    address.group = group;
    address.number = number;
    return ReadTag(reader, address, view) && ValuesAtHand(view->value) > 0;
}

std::string Text(CExifReader *reader, TagGroup group, uint32_t number)
{
    TagView view;
    if (!Read(reader, group, number, &view) || view.value.type != TIFF_ASCII) return "";
    std::string text(reinterpret_cast<const char *>(view.value.bytes), view.value.size);
    text = text.substr(0, text.find('\0'));
    while (!text.empty() && text.back() == ' ') text.pop_back();
    return text;
}

bool Number(CExifReader *reader, TagGroup group, uint32_t number, double *value)
{
    TagView view;
    if (!Read(reader, group, number, &view)) return false;
    if (IsIntegerType(view.value.type)) {
        *value = static_cast<double>(IntegerAt(view.value, 0));
        return true;
    }
    if (!IsRationalType(view.value.type)) return false;
    int64_t numerator, denominator;
    RationalAt(view.value, 0, &numerator, &denominator);
    *value = static_cast<double>(numerator) / static_cast<double>(denominator);
    return denominator != 0;
}

std::string Printed(const char *format, double value)
{
    char text[64];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

// Makers often repeat their name in the model: "Canon" and "Canon EOS 40D",
// "NIKON CORPORATION" and "NIKON D70".
std::string MakeAndModel(const std::string &make, const std::string &model)
{
    const std::string brand = make.substr(0, make.find(' '));
    if (make.empty() || strncasecmp(model.c_str(), brand.c_str(), brand.size()) == 0) return model;
    return model.empty() ? make : make + " " + model;
}

std::string Camera(CExifReader *reader)
{
    return MakeAndModel(Text(reader, GROUP_TIFF, TAG_MAKE), Text(reader, GROUP_TIFF, TAG_MODEL));
}

std::string Lens(CExifReader *reader)
{
    return MakeAndModel(Text(reader, GROUP_EXIF, TAG_LENS_MAKE), Text(reader, GROUP_EXIF, TAG_LENS_MODEL));
}

std::string Date(CExifReader *reader)
{
    const std::string original = Text(reader, GROUP_EXIF, TAG_ORIGINAL);
    return original.empty() ? Text(reader, GROUP_TIFF, TAG_DATE_TIME) : original;
}

// As photographers say it: 1/250 s, 2 s.
std::string Exposure(CExifReader *reader)
{
    double seconds;
    if (!Number(reader, GROUP_EXIF, TAG_EXPOSURE_TIME, &seconds) || seconds <= 0) return "";
    if (seconds >= 0.25) return Printed("%g s", std::round(seconds * 10) / 10);
    return Printed("1/%.0f s", 1 / seconds);
}

std::string FNumber(CExifReader *reader)
{
    double value;
    return Number(reader, GROUP_EXIF, TAG_F_NUMBER, &value) && value > 0 ? Printed("f/%.1f", value) : "";
}

std::string Iso(CExifReader *reader)
{
    double value;
    return Number(reader, GROUP_EXIF, TAG_ISO, &value) ? Printed("%.0f", value) : "";
}

std::string FocalLength(CExifReader *reader)
{
    double value, equivalent;
    if (!Number(reader, GROUP_EXIF, TAG_FOCAL_LENGTH, &value)) return "";
    const std::string text = Printed("%.1f mm", value);
    if (!Number(reader, GROUP_EXIF, TAG_FOCAL_35, &equivalent) || equivalent <= 0) return text;
    return text + Printed(" (35 mm equivalent: %.0f mm)", equivalent);
}

std::string ImageSize(CExifReader *reader)
{
    double width, height;
    if (Number(reader, GROUP_EXIF, TAG_PIXEL_X, &width) && Number(reader, GROUP_EXIF, TAG_PIXEL_Y, &height)) {
        return Printed("%.0f", width) + "x" + Printed("%.0f", height);
    }
    if (Number(reader, GROUP_TIFF, TAG_WIDTH, &width) && Number(reader, GROUP_TIFF, TAG_LENGTH, &height)) {
        return Printed("%.0f", width) + "x" + Printed("%.0f", height);
    }
    return "";
}

std::string Orientation(CExifReader *reader)
{
    TagView view;
    if (!Read(reader, GROUP_TIFF, TAG_ORIENTATION, &view) || !IsIntegerType(view.value.type)) return "";
    const char *name = SettingName(view, IntegerAt(view.value, 0));
    return name != nullptr ? name : "unknown (" + std::to_string(IntegerAt(view.value, 0)) + ")";
}

std::string Gps(CExifReader *reader)
{
    GpsPosition position;
    return ReadGpsPosition(reader, &position) ? GpsPositionText(position) : "";
}

bool Coordinate(CExifReader *reader, uint32_t number, double *degrees)
{
    TagView view;
    return Read(reader, GROUP_GPS, number, &view) && GpsDecimalDegrees(view, degrees);
}

}  // namespace

bool ReadGpsPosition(CExifReader *reader, GpsPosition *position)
{
    if (!Coordinate(reader, GPS_LATITUDE, &position->latitude) || !Coordinate(reader, GPS_LONGITUDE, &position->longitude)) {
        return false;
    }
    double below = 0;
    position->hasAltitude = Number(reader, GROUP_GPS, GPS_ALTITUDE, &position->altitude);
    if (Number(reader, GROUP_GPS, GPS_ALTITUDE_REF, &below) && below == 1) position->altitude = -position->altitude;
    return true;
}

std::string GpsPositionText(const GpsPosition &position)
{
    const std::string text = Printed("%.6f", position.latitude) + ", " + Printed("%.6f", position.longitude);
    return position.hasAltitude ? text + Printed(", %g m", position.altitude) : text;
}

std::vector<std::string> GlanceOf(CExifReader *reader)
{
    return {Camera(reader), Lens(reader), Date(reader), Exposure(reader), FNumber(reader), Iso(reader),
            FocalLength(reader), ImageSize(reader), Orientation(reader), Gps(reader),
            Text(reader, GROUP_TIFF, TAG_ARTIST), Text(reader, GROUP_TIFF, TAG_COPYRIGHT)};
}

const std::vector<std::string> &GlanceKeys()
{
    static const std::vector<std::string> keys = {"camera", "lens", "date", "exposure", "fNumber", "iso",
                                                  "focalLength", "imageSize", "orientation", "gps", "artist", "copyright"};
    return keys;
}

const std::vector<std::string> &GlanceLabels()
{
    static const std::vector<std::string> labels = {"Camera", "Lens", "Date", "Exposure", "F-number", "ISO",
                                                    "Focal length", "Image size", "Orientation", "GPS", "Artist", "Copyright"};
    return labels;
}
