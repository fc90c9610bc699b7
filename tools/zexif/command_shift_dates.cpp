#include <cstdio>
#include <cstdlib>

#include "zexif/command.h"
#include "zexif/edit_session.h"
#include "zexif/exif_date.h"
#include "zexif/field_types.h"
#include "zexif/output.h"
#include "zexif.h"

namespace {

struct DateTag {
    int ifd;
    uint32_t tag;
    const char *name;
};

const DateTag DATE_TAGS[] = {{0, 306, "DateTime"}, {IFD_EXIF, 36867, "DateTimeOriginal"}, {IFD_EXIF, 36868, "DateTimeDigitized"}};

// "[+|-][D ]HH:MM[:SS]" in seconds.
bool ParseShift(const std::string &text, int64_t *seconds)
{
    size_t at = 0;
    const bool back = !text.empty() && text[0] == '-';
    if (!text.empty() && (text[0] == '-' || text[0] == '+')) at = 1;
    long long days = 0, hours = 0, minutes = 0, rest = 0;
    int used = 0;
    const char *start = text.c_str() + at;
    if (text.find(' ') != std::string::npos) {
        if (std::sscanf(start, "%lld %lld:%lld%n", &days, &hours, &minutes, &used) != 3) return false;
    } else if (std::sscanf(start, "%lld:%lld%n", &hours, &minutes, &used) != 2) {
        return false;
    }
    int more = 0;
    if (start[used] == ':' && std::sscanf(start + used, ":%lld%n", &rest, &more) == 1) used += more;
    if (start[used] != '\0' || days < 0 || hours < 0 || minutes < 0 || minutes > 59 || rest < 0 || rest > 59 || days > 3660000) {
        return false;
    }
    *seconds = ((days * 24 + hours) * 60 + minutes) * 60 + rest;
    if (back) *seconds = -*seconds;
    return true;
}

// Every date is read and checked before any is written, so that a file with
// one bad date keeps all of them.
EditResult Shift(CExifDoc *doc, const std::string &path, int64_t seconds)
{
    std::vector<std::pair<const DateTag *, std::string>> shifted;
    for (const DateTag &date : DATE_TAGS) {
        ExifTagValue value{};
        if (zExifGetTagAt(doc, date.ifd, date.tag, &value) != 0) continue;
        const std::string text = value.type == TIFF_ASCII && value.data != nullptr
                                     ? std::string(static_cast<const char *>(value.data), value.count) : "";
        std::free(value.data);
        ExifDate parsed;
        if (!ParseExifDate(text, &parsed)) {
            std::fprintf(Err(), "zexif: %s: %s is not a date of the form YYYY:MM:DD HH:MM:SS; the file is left as it is\n",
                         path.c_str(), date.name);
            return EDIT_FAILED;
        }
        const ExifDate moved = ShiftDate(parsed, seconds);
        if (moved.year < 1 || moved.year > 9999) {
            std::fprintf(Err(), "zexif: %s: %s would leave the years 1 to 9999\n", path.c_str(), date.name);
            return EDIT_FAILED;
        }
        shifted.push_back({&date, FormatExifDate(moved)});
    }
    if (shifted.empty()) std::fprintf(Err(), "zexif: note: %s has no dates\n", path.c_str());
    for (const auto &[date, text] : shifted) {
        const ExifTagValue value{TIFF_ASCII, static_cast<uint32_t>(text.size() + 1), const_cast<char *>(text.c_str())};
        if (zExifSetTagAt(doc, date->ifd, date->tag, &value) != 0) return EDIT_FAILED;
    }
    return shifted.empty() ? EDIT_UNCHANGED : EDIT_DONE;
}

}  // namespace

int RunShiftDates(const ParsedArguments &parsed)
{
    int64_t seconds = 0;
    const std::string by = parsed.Value("by", "");
    if (!ParseShift(by, &seconds)) {
        std::fprintf(stderr, "zexif: --by takes [+|-][D ]HH:MM[:SS], not '%s'\n", by.c_str());
        return EXIT_USAGE;
    }
    if (parsed.positional.empty()) return EXIT_USAGE;
    return EditEach(parsed, parsed.positional, [&](CExifDoc *doc, const std::string &path) { return Shift(doc, path, seconds); });
}
