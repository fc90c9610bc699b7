#ifndef ZEXIF_TOOL_EXIF_DATE_H
#define ZEXIF_TOOL_EXIF_DATE_H

#include <cstdint>
#include <string>

// A date and time as Exif writes them, "YYYY:MM:DD HH:MM:SS", local time of
// no zone.
struct ExifDate {
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
};

// Exactly that form, of a day that exists (2023:02:29 doesn't) and a time of
// day up to 23:59:59; the NUL of the tag's value may follow.
bool ParseExifDate(const std::string &text, ExifDate *date);
std::string FormatExifDate(const ExifDate &date);

// The date moved by seconds, either way, across days, months and years by
// the Gregorian calendar.
ExifDate ShiftDate(const ExifDate &date, int64_t seconds);

// The tags that hold such a date: DateTime of IFD 0, DateTimeOriginal and
// DateTimeDigitized of the Exif IFD (ifd as the library's calls take it).
bool IsDateTag(int ifd, uint32_t tag);

#endif
