#include <cstdio>
#include <vector>

#include "zexif/arguments.h"
#include "zexif/command.h"
#include "zexif/document_walk.h"
#include "zexif/file_report.h"
#include "zexif/open_reader.h"
#include "zexif/tag_argument.h"
#include "zexif/tag_json.h"
#include "zexif/tag_reading.h"
#include "zexif.h"

namespace {

const char *const SUMMARY_TAGS[] = {"Make",         "Model",   "DateTime",        "DateTimeOriginal",
                                    "Orientation",  "ExposureTime", "FNumber", "ISOSpeedRatings",
                                    "FocalLength"};

struct Summary {
    const char *format;
    bool exif, thumbnail, audio;
    std::vector<TagView> tags;
};

// All of it comes from the read-only family; the tags are those of IFD 0 and
// of its sub-IFDs.
Summary Summarize(CExifReader *reader)
{
    Summary summary = {FormatName(zRExifGetFileFormat(reader)), zRExifIsExifExist(reader) == 1,
                       zRExifIsThumbnailExist(reader) == 1, zRExifIsAudioExist(reader) == 1, {}};
    for (const char *name : SUMMARY_TAGS) {
        int ifd;
        uint32_t type;
        TagAddress address;
        zExifFindTag(name, &ifd, &address.number, &type);
        address.group = GroupOfIfd(ifd);
        TagView view;
        if (ReadTag(reader, address, &view)) summary.tags.push_back(view);
    }
    return summary;
}

const char *YesNo(bool answer)
{
    return answer ? "yes" : "no";
}

void PrintSummary(const std::string &path, const Summary &summary)
{
    std::printf("%s: %s\n  Exif: %s\n  thumbnail: %s\n  audio: %s\n", path.c_str(), summary.format,
                YesNo(summary.exif), YesNo(summary.thumbnail), YesNo(summary.audio));
    for (const TagView &tag : summary.tags) {
        std::printf("  %s: %s\n", NameOfTag(tag.group, tag.number), ReadableValue(tag, true).c_str());
    }
}

void WriteSummary(JsonWriter &json, const Summary &summary)
{
    json.Key("format").String(summary.format).Key("exif").Bool(summary.exif);
    json.Key("thumbnail").Bool(summary.thumbnail).Key("audio").Bool(summary.audio).Key("tags").BeginArray();
    for (const TagView &tag : summary.tags) {
        json.BeginObject();
        WriteTagMembers(json, tag, IfdLabel(tag.group, 0));
        json.EndObject();
    }
    json.EndArray();
}

void ReportSummary(const std::string &path, const Summary &summary, FileReport &report)
{
    if (report.IsJson()) {
        WriteSummary(report.BeginObject(path), summary);
        report.EndObject();
    } else {
        report.BeginText();
        PrintSummary(path, summary);
    }
}

}  // namespace

int RunInfo(const std::vector<std::string> &arguments)
{
    ParsedArguments parsed;
    if (!ParseArguments(arguments, {}, {"--json"}, &parsed) || parsed.positional.empty()) return EXIT_USAGE;
    FileReport report(parsed.Has("--json"));
    for (const std::string &path : parsed.positional) {
        std::string message;
        CExifReader *reader = TryBeginRead(path, &message);
        if (reader != nullptr) {
            ReportSummary(path, Summarize(reader), report);
        } else {
            report.Fail(path, message);
        }
        zRExifEndRead(reader);
    }
    return report.Finish();
}
