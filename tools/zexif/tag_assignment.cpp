#include "zexif/tag_assignment.h"

#include <sstream>

#include "zexif/exif_date.h"
#include "zexif/field_types.h"
#include "zexif.h"

namespace {

// Tags whose number of values never varies, beside those of one value: the
// library's table names tags and types, not counts.
struct FixedCount {
    TagGroup group;
    uint32_t number;
    uint32_t count;
};

const FixedCount FIXED_COUNTS[] = {
    {GROUP_TIFF, 274, 1},   {GROUP_TIFF, 282, 1},   {GROUP_TIFF, 283, 1},   {GROUP_TIFF, 296, 1},
    {GROUP_TIFF, 318, 2},   {GROUP_TIFF, 319, 6},   {GROUP_TIFF, 529, 3},   {GROUP_TIFF, 530, 2},
    {GROUP_TIFF, 531, 1},   {GROUP_TIFF, 532, 6},   {GROUP_EXIF, 33434, 1}, {GROUP_EXIF, 33437, 1},
    {GROUP_EXIF, 34850, 1}, {GROUP_EXIF, 36864, 4}, {GROUP_EXIF, 37377, 1}, {GROUP_EXIF, 37378, 1},
    {GROUP_EXIF, 37379, 1}, {GROUP_EXIF, 37380, 1}, {GROUP_EXIF, 37381, 1}, {GROUP_EXIF, 37382, 1},
    {GROUP_EXIF, 37383, 1}, {GROUP_EXIF, 37384, 1}, {GROUP_EXIF, 37385, 1}, {GROUP_EXIF, 37386, 1},
    {GROUP_EXIF, 40960, 4}, {GROUP_EXIF, 40961, 1}, {GROUP_EXIF, 40962, 1}, {GROUP_EXIF, 40963, 1},
    {GROUP_EXIF, 41986, 1}, {GROUP_EXIF, 41987, 1}, {GROUP_EXIF, 41988, 1}, {GROUP_EXIF, 41989, 1},
    {GROUP_EXIF, 41990, 1}, {GROUP_EXIF, 42034, 4}, {GROUP_GPS, 0, 4},      {GROUP_GPS, 2, 3},
    {GROUP_GPS, 4, 3},      {GROUP_GPS, 5, 1},      {GROUP_GPS, 6, 1},      {GROUP_GPS, 7, 3},
    {GROUP_GPS, 20, 3},     {GROUP_GPS, 22, 3},
};

uint32_t FixedCountOf(const TagAddress &address)
{
    for (const FixedCount &fixed : FIXED_COUNTS) {
        if (fixed.group == address.group && fixed.number == address.number) return fixed.count;
    }
    return 0;
}

std::vector<std::string> Words(const std::string &text)
{
    std::istringstream stream(text);
    std::vector<std::string> words;
    for (std::string word; stream >> word;) words.push_back(word);
    return words;
}

bool ParseTypedValue(const std::string &text, Assignment *assignment, std::string *error)
{
    if (assignment->type == TIFF_UNDEFINED) {
        assignment->value.bytes.assign(text.begin(), text.end());
        assignment->value.count = static_cast<uint32_t>(text.size());
        return true;
    }
    const std::vector<std::string> words = assignment->type == TIFF_ASCII ? std::vector<std::string>{text} : Words(text);
    if (words.empty()) {
        *error = "no value for " + DescribeAddress(assignment->address);
        return false;
    }
    return ParseValues(assignment->type, words, &assignment->value, error);
}

bool TableType(const TagAddress &address, uint32_t *type)
{
    const char *name = zExifGetTagName(IfdId(address), address.number);
    int ifd;
    uint32_t number;
    return name != nullptr && zExifFindTag(name, &ifd, &number, type) == 0;
}

}  // namespace

bool CheckAssignment(const Assignment &assignment, std::string *error)
{
    const std::string where = DescribeAddress(assignment.address);
    const int ifd = IfdId(assignment.address);
    const std::string text(assignment.value.bytes.begin(), assignment.value.bytes.end());
    ExifDate date;
    if (IsDateTag(ifd, assignment.address.number) && (assignment.type != TIFF_ASCII || !ParseExifDate(text, &date))) {
        *error = where + " takes a date as \"YYYY:MM:DD HH:MM:SS\", not \"" + text.substr(0, text.find('\0')) + "\"";
        return false;
    }
    const uint32_t count = FixedCountOf(assignment.address);
    if (count != 0 && assignment.type != TIFF_ASCII && assignment.value.count != count) {
        *error = where + " takes " + std::to_string(count) + (count == 1 ? " value" : " values") + ", not " +
                 std::to_string(assignment.value.count);
        return false;
    }
    return true;
}

bool ParseAssignment(const std::string &text, const std::string &ifd, Assignment *assignment, std::string *error)
{
    const size_t equals = text.find('=');
    if (equals == std::string::npos) {
        *error = "-t of set takes TAG=VALUE or TAG:TYPE=VALUE, not '" + text + "'";
        return false;
    }
    const std::string left = text.substr(0, equals);
    const size_t colon = left.find(':');
    if (!ParseTagAddress(left.substr(0, colon), ifd, &assignment->address, error)) return false;
    if (colon != std::string::npos && !ParseTypeName(left.substr(colon + 1), &assignment->type)) {
        *error = "unknown type '" + left.substr(colon + 1) + "': byte, ascii, short, long, rational, undefined...";
        return false;
    }
    if (colon == std::string::npos && !TableType(assignment->address, &assignment->type)) {
        *error = "the type of " + DescribeAddress(assignment->address) + " is unknown: give it as TAG:TYPE=VALUE";
        return false;
    }
    return ParseTypedValue(text.substr(equals + 1), assignment, error) && CheckAssignment(*assignment, error);
}
