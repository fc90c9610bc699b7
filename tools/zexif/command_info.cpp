#include <cstdio>
#include <vector>

#include "tools/zexif/arguments.h"
#include "tools/zexif/command.h"
#include "tools/zexif/document_tags.h"
#include "tools/zexif/document_walk.h"
#include "tools/zexif/file_report.h"
#include "tools/zexif/tag_argument.h"
#include "tools/zexif/tag_json.h"
#include "tools/zexif/tag_source.h"
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

// The flags come from the read-only family, the tags from the source. false,
// with the reason in message, when the tree was needed and the file doesn't
// load.
bool Summarize(TagSource &source, Summary *summary, std::string *message)
{
    CExifReader *reader = source.Reader();
    *summary = {FormatName(zRExifGetFileFormat(reader)), zRExifIsExifExist(reader) == 1,
                zRExifIsThumbnailExist(reader) == 1, zRExifIsAudioExist(reader) == 1, {}};
    for (const char *name : SUMMARY_TAGS) {
        const TagName *known = FindTagByName(name);
        TagAddress address;
        address.group = known->group;
        address.number = known->number;
        TagView view;
        if (source.Find(address, &view, message)) {
            summary->tags.push_back(view);
        } else if (!message->empty()) {
            return false;
        }
    }
    return true;
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
        WriteTagMembers(json, tag, IfdLabel(tag.group, 0), true);
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
        TagSource source(path, &message);
        Summary summary;
        if (source.Reader() != nullptr && Summarize(source, &summary, &message)) {
            ReportSummary(path, summary, report);
        } else {
            report.Fail(path, message);
        }
    }
    return report.Finish();
}
