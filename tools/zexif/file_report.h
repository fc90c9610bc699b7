#ifndef ZEXIF_TOOL_FILE_REPORT_H
#define ZEXIF_TOOL_FILE_REPORT_H

#include <string>
#include <vector>

#include "zexif/file_runner.h"

struct ParsedArguments;

// How a command that reads files prints them. As text, a file's part as it
// comes. As JSON, one array with an object per file, in the order given,
// each with its "file"; a file that could not be handled is {"file",
// "error"} there. As CSV, a header row, then a row per file. Either way a
// failure is also one line on stderr and makes the exit status 1.
enum ReportForm { FORM_TEXT, FORM_JSON, FORM_CSV };

// --json or --csv; false after a line on stderr when both are given.
bool ReportFormOf(const ParsedArguments &parsed, ReportForm *form);

// The listing of the form: the JSON array's brackets and commas, the CSV
// header of the columns behind "file", textBetween between text parts.
Listing ListingOf(ReportForm form, const std::vector<std::string> &columns, const std::string &textBetween);

// message to Err() behind "zexif: ", and into the JSON as "error". Returns
// EXIT_FAILED.
int ReportFailure(ReportForm form, const std::string &path, const std::string &message);

// A CSV row (RFC 4180 quoting: a field with a comma, quote or line break in
// double quotes, quotes doubled), its line break included.
std::string CsvRow(const std::vector<std::string> &fields);

#endif
