#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "zexif/command.h"
#include "zexif/edit_session.h"
#include "zexif/field_types.h"
#include "zexif/output.h"
#include "zexif.h"

namespace {

constexpr uint32_t GPS_VERSION = 0, GPS_LATITUDE_REF = 1, GPS_LATITUDE = 2, GPS_LONGITUDE_REF = 3, GPS_LONGITUDE = 4;
constexpr uint32_t GPS_ALTITUDE_REF = 5, GPS_ALTITUDE = 6, TAG_GPS_IFD = 34853;
// Seconds in thousandths keep a position to about 3 cm; an altitude in
// centimetres.
constexpr uint32_t SECONDS_DENOMINATOR = 1000, ALTITUDE_DENOMINATOR = 100;

struct Position {
    double latitude = 0, longitude = 0, altitude = 0;
    bool hasAltitude = false;
};

bool ParseDegrees(const ParsedArguments &parsed, const char *option, double limit, double *value)
{
    const std::string text = parsed.Value(option, "");
    char *end = nullptr;
    *value = std::strtod(text.c_str(), &end);
    if (!text.empty() && *end == '\0' && std::fabs(*value) <= limit) return true;
    std::fprintf(stderr, "zexif: --%s takes decimal degrees from -%g to %g, not '%s'\n", option, limit, limit, text.c_str());
    return false;
}

bool ParsePosition(const ParsedArguments &parsed, Position *position)
{
    if (!parsed.Has("lat") || !parsed.Has("lon")) {
        std::fprintf(stderr, "zexif: gps set needs --lat and --lon\n");
        return false;
    }
    position->hasAltitude = parsed.Has("alt");
    return ParseDegrees(parsed, "lat", 90, &position->latitude) && ParseDegrees(parsed, "lon", 180, &position->longitude) &&
           (!position->hasAltitude || ParseDegrees(parsed, "alt", 1e6, &position->altitude));
}

void AppendRational(uint32_t numerator, uint32_t denominator, std::vector<uint32_t> *values)
{
    values->push_back(numerator);
    values->push_back(denominator);
}

// Whole degrees and minutes, seconds in thousandths, carried upwards where
// rounding makes 60 of them.
std::vector<uint32_t> DegreesMinutesSeconds(double degrees)
{
    uint64_t thousandths = static_cast<uint64_t>(std::llround(std::fabs(degrees) * 3600 * SECONDS_DENOMINATOR));
    const uint64_t perMinute = 60 * SECONDS_DENOMINATOR, perDegree = 60 * perMinute;
    std::vector<uint32_t> values;
    AppendRational(static_cast<uint32_t>(thousandths / perDegree), 1, &values);
    AppendRational(static_cast<uint32_t>(thousandths % perDegree / perMinute), 1, &values);
    AppendRational(static_cast<uint32_t>(thousandths % perMinute), SECONDS_DENOMINATOR, &values);
    return values;
}

bool SetGpsTag(CExifDoc *doc, uint32_t tag, uint32_t type, uint32_t count, const void *data)
{
    const ExifTagValue value{type, count, const_cast<void *>(data)};
    return zExifSetTagAt(doc, IFD_GPS, tag, &value) == 0;
}

EditResult SetPosition(CExifDoc *doc, const std::string &path, const Position &position)
{
    const unsigned char version[] = {2, 3, 0, 0};
    const char *north = position.latitude < 0 ? "S" : "N", *east = position.longitude < 0 ? "W" : "E";
    const std::vector<uint32_t> latitude = DegreesMinutesSeconds(position.latitude);
    const std::vector<uint32_t> longitude = DegreesMinutesSeconds(position.longitude);
    bool done = SetGpsTag(doc, GPS_VERSION, TIFF_BYTE, 4, version) && SetGpsTag(doc, GPS_LATITUDE_REF, TIFF_ASCII, 2, north) &&
                SetGpsTag(doc, GPS_LATITUDE, TIFF_RATIONAL, 3, latitude.data()) &&
                SetGpsTag(doc, GPS_LONGITUDE_REF, TIFF_ASCII, 2, east) &&
                SetGpsTag(doc, GPS_LONGITUDE, TIFF_RATIONAL, 3, longitude.data());
    if (done && position.hasAltitude) {
        const unsigned char below = position.altitude < 0 ? 1 : 0;
        const uint32_t altitude[] = {static_cast<uint32_t>(std::llround(std::fabs(position.altitude) * ALTITUDE_DENOMINATOR)),
                                     ALTITUDE_DENOMINATOR};
        done = SetGpsTag(doc, GPS_ALTITUDE_REF, TIFF_BYTE, 1, &below) && SetGpsTag(doc, GPS_ALTITUDE, TIFF_RATIONAL, 1, altitude);
    }
    if (!done) std::fprintf(Err(), "zexif: %s: cannot set the position: %s\n", path.c_str(), zExifGetErrorText(zExifGetLastError()));
    return done ? EDIT_DONE : EDIT_FAILED;
}

// The IFD goes with its last tag; a pointer to an IFD of none goes too.
EditResult RemovePosition(CExifDoc *doc, const std::string &path)
{
    TifTagList *list = nullptr;
    bool had = zExifGetTagList(doc, IFD_GPS, &list) == 0 && list->count > 0;
    for (int32_t i = 0; had && i < list->count; ++i) zExifDelTagAt(doc, IFD_GPS, list->items[i]->tag);
    zExifFreeTagList(list);
    had = zExifDelTagAt(doc, 0, TAG_GPS_IFD) == 0 || had;
    if (!had) std::fprintf(Err(), "zexif: note: %s has no GPS data\n", path.c_str());
    return had ? EDIT_DONE : EDIT_UNCHANGED;
}

}  // namespace

int RunGps(const ParsedArguments &parsed)
{
    if (parsed.positional.size() < 2) return EXIT_USAGE;
    const std::string &action = parsed.positional[0];
    const std::vector<std::string> files(parsed.positional.begin() + 1, parsed.positional.end());
    Position position;
    if (action == "set" && !ParsePosition(parsed, &position)) return EXIT_USAGE;
    if (action == "set") {
        return EditEach(parsed, files, [&](CExifDoc *doc, const std::string &path) { return SetPosition(doc, path, position); });
    }
    if (action == "remove") return EditEach(parsed, files, RemovePosition);
    return EXIT_USAGE;
}
