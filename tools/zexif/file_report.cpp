#include "zexif/file_report.h"

#include <cstdio>

#include "zexif/arguments.h"
#include "zexif/command.h"
#include "zexif/json_writer.h"
#include "zexif/output.h"

namespace {

std::string CsvField(const std::string &text)
{
    if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
    std::string quoted = "\"";
    for (char c : text) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    return quoted + "\"";
}

}  // namespace

bool ReportFormOf(const ParsedArguments &parsed, ReportForm *form)
{
    if (parsed.Has("json") && parsed.Has("csv")) {
        std::fprintf(stderr, "zexif: --json and --csv don't go together\n");
        return false;
    }
    *form = parsed.Has("json") ? FORM_JSON : parsed.Has("csv") ? FORM_CSV : FORM_TEXT;
    return true;
}

Listing ListingOf(ReportForm form, const std::vector<std::string> &columns, const std::string &textBetween)
{
    if (form == FORM_JSON) return {"[", ",", "]\n"};
    if (form == FORM_TEXT) return {"", textBetween, ""};
    std::vector<std::string> header = {"file"};
    header.insert(header.end(), columns.begin(), columns.end());
    return {CsvRow(header), "", ""};
}

int ReportFailure(ReportForm form, const std::string &path, const std::string &message)
{
    std::fprintf(Err(), "zexif: %s\n", message.c_str());
    if (form == FORM_JSON) {
        JsonWriter json;
        std::fputs(json.BeginObject().Key("file").String(path).Key("error").String(message).EndObject().Text().c_str(), Out());
    }
    return EXIT_FAILED;
}

std::string CsvRow(const std::vector<std::string> &fields)
{
    std::string row;
    for (size_t i = 0; i < fields.size(); ++i) row += (i == 0 ? "" : ",") + CsvField(fields[i]);
    return row + "\n";
}
