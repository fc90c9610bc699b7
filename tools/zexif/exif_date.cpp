#include "zexif/exif_date.h"

#include <cctype>
#include <cstdio>

#include "zexif.h"

namespace {

constexpr int64_t SECONDS_PER_DAY = 86400;

bool IsLeap(int year)
{
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int DaysInMonth(int year, int month)
{
    static const int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && IsLeap(year) ? 29 : days[month - 1];
}

// Days since 1970-01-01 of a Gregorian date, and back: the era arithmetic
// of 400-year cycles, which holds for any year.
int64_t DaysFromCivil(int64_t year, int month, int day)
{
    year -= month <= 2;
    const int64_t era = (year >= 0 ? year : year - 399) / 400;
    const int64_t yearOfEra = year - era * 400;
    const int64_t dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    const int64_t dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + dayOfEra - 719468;
}

void CivilFromDays(int64_t days, ExifDate *date)
{
    days += 719468;
    const int64_t era = (days >= 0 ? days : days - 146096) / 146097;
    const int64_t dayOfEra = days - era * 146097;
    const int64_t yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const int64_t monthIndex = (5 * dayOfYear + 2) / 153;
    date->day = static_cast<int>(dayOfYear - (153 * monthIndex + 2) / 5 + 1);
    date->month = static_cast<int>(monthIndex < 10 ? monthIndex + 3 : monthIndex - 9);
    date->year = static_cast<int>(yearOfEra + era * 400 + (date->month <= 2));
}

// The digits at text[at...at+width), which must all be digits.
bool Digits(const std::string &text, size_t at, size_t width, int *value)
{
    *value = 0;
    for (size_t i = at; i < at + width; ++i) {
        if (!std::isdigit(static_cast<unsigned char>(text[i]))) return false;
        *value = *value * 10 + (text[i] - '0');
    }
    return true;
}

}  // namespace

bool ParseExifDate(const std::string &text, ExifDate *date)
{
    const std::string shape = "0000:00:00 00:00:00";
    const std::string plain = text.substr(0, text.find('\0'));
    if (plain.size() != shape.size()) return false;
    for (size_t i = 0; i < shape.size(); ++i) {
        if (shape[i] != '0' && plain[i] != shape[i]) return false;
    }
    if (!Digits(plain, 0, 4, &date->year) || !Digits(plain, 5, 2, &date->month) || !Digits(plain, 8, 2, &date->day) ||
        !Digits(plain, 11, 2, &date->hour) || !Digits(plain, 14, 2, &date->minute) || !Digits(plain, 17, 2, &date->second)) {
        return false;
    }
    return date->month >= 1 && date->month <= 12 && date->day >= 1 && date->day <= DaysInMonth(date->year, date->month) &&
           date->hour <= 23 && date->minute <= 59 && date->second <= 59;
}

std::string FormatExifDate(const ExifDate &date)
{
    char text[32];
    std::snprintf(text, sizeof text, "%04d:%02d:%02d %02d:%02d:%02d", date.year, date.month, date.day, date.hour,
                  date.minute, date.second);
    return text;
}

ExifDate ShiftDate(const ExifDate &date, int64_t seconds)
{
    const int64_t secondOfDay = date.hour * 3600 + date.minute * 60 + date.second;
    int64_t total = DaysFromCivil(date.year, date.month, date.day) * SECONDS_PER_DAY + secondOfDay + seconds;
    int64_t days = total / SECONDS_PER_DAY, rest = total % SECONDS_PER_DAY;
    if (rest < 0) {
        rest += SECONDS_PER_DAY;
        --days;
    }
    ExifDate shifted;
    CivilFromDays(days, &shifted);
    shifted.hour = static_cast<int>(rest / 3600);
    shifted.minute = static_cast<int>(rest / 60 % 60);
    shifted.second = static_cast<int>(rest % 60);
    return shifted;
}

bool IsDateTag(int ifd, uint32_t tag)
{
    return (ifd == 0 && tag == 306) || (ifd == IFD_EXIF && (tag == 36867 || tag == 36868));
}
