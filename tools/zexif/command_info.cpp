#include <cstdio>

#include "zexif/command.h"
#include "zexif/document_walk.h"
#include "zexif/file_report.h"
#include "zexif/glance.h"
#include "zexif/json_writer.h"
#include "zexif/open_reader.h"
#include "zexif/output.h"
#include "zexif.h"

namespace {

// All of it comes from the read-only family, which builds no tree.
struct Summary {
    const char *format;
    bool exif, thumbnail, audio;
    std::vector<std::string> glance;
    GpsPosition position;
    bool hasPosition;
};

Summary Summarize(CExifReader *reader)
{
    Summary summary = {FormatName(zRExifGetFileFormat(reader)), zRExifIsExifExist(reader) == 1,
                       zRExifIsThumbnailExist(reader) == 1, zRExifIsAudioExist(reader) == 1, GlanceOf(reader), {}, false};
    summary.hasPosition = ReadGpsPosition(reader, &summary.position);
    return summary;
}

const char *YesNo(bool answer)
{
    return answer ? "yes" : "no";
}

void PrintSummary(const std::string &path, const Summary &summary)
{
    std::fprintf(Out(), "%s: %s\n  Exif: %s\n  Thumbnail: %s\n  Audio: %s\n", path.c_str(), summary.format,
                 YesNo(summary.exif), YesNo(summary.thumbnail), YesNo(summary.audio));
    for (size_t i = 0; i < GLANCE_FIELDS; ++i) {
        if (!summary.glance[i].empty()) std::fprintf(Out(), "  %s: %s\n", GlanceLabels()[i].c_str(), summary.glance[i].c_str());
    }
}

// The position as numbers, for programs.
void WritePosition(JsonWriter &json, const Summary &summary)
{
    if (!summary.hasPosition) {
        json.Null();
        return;
    }
    json.BeginObject().Key("latitude").Real(summary.position.latitude).Key("longitude").Real(summary.position.longitude);
    json.Key("altitude");
    if (summary.position.hasAltitude) {
        json.Real(summary.position.altitude);
    } else {
        json.Null();
    }
    json.EndObject();
}

void WriteSummary(const std::string &path, const Summary &summary)
{
    JsonWriter json;
    json.BeginObject().Key("file").String(path).Key("format").String(summary.format).Key("exif").Bool(summary.exif);
    json.Key("thumbnail").Bool(summary.thumbnail).Key("audio").Bool(summary.audio);
    for (size_t i = 0; i < GLANCE_FIELDS; ++i) {
        json.Key(GlanceKeys()[i]);
        if (i == GLANCE_GPS) {
            WritePosition(json, summary);
        } else if (summary.glance[i].empty()) {
            json.Null();
        } else {
            json.String(summary.glance[i]);
        }
    }
    std::fputs(json.EndObject().Text().c_str(), Out());
}

std::vector<std::string> CsvColumns()
{
    std::vector<std::string> columns = {"format", "exif", "thumbnail", "audio"};
    columns.insert(columns.end(), GlanceKeys().begin(), GlanceKeys().end());
    return columns;
}

void ReportSummary(const std::string &path, const Summary &summary, ReportForm form)
{
    if (form == FORM_TEXT) return PrintSummary(path, summary);
    if (form == FORM_JSON) return WriteSummary(path, summary);
    std::vector<std::string> row = {path, summary.format, YesNo(summary.exif), YesNo(summary.thumbnail), YesNo(summary.audio)};
    row.insert(row.end(), summary.glance.begin(), summary.glance.end());
    std::fputs(CsvRow(row).c_str(), Out());
}

}  // namespace

int RunInfo(const ParsedArguments &parsed)
{
    ReportForm form;
    if (!ReportFormOf(parsed, &form) || parsed.positional.empty()) return EXIT_USAGE;
    return RunForEachFile(parsed, parsed.positional, ListingOf(form, CsvColumns(), "\n"), [&](const std::string &path) {
        std::string message;
        CExifReader *reader = TryBeginRead(path, &message);
        if (reader == nullptr) return ReportFailure(form, path, message);
        ReportSummary(path, Summarize(reader), form);
        zRExifEndRead(reader);
        return EXIT_OK;
    });
}
