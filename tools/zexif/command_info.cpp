#include <cstdio>
#include <vector>

#include "tools/zexif/arguments.h"
#include "tools/zexif/command.h"
#include "tools/zexif/document_tags.h"
#include "tools/zexif/document_walk.h"
#include "tools/zexif/file_report.h"
#include "tools/zexif/load_document.h"
#include "tools/zexif/tag_argument.h"
#include "tools/zexif/tag_json.h"
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

// The views point into the document. The read-only family would be
// cheaper, but it answers with IFD 1's tag where IFD 1 has one too, and
// cameras give the thumbnail an orientation of its own.
Summary Summarize(CExifDoc *doc)
{
    Summary summary{FormatName(zExifGetFileFormat(doc)), zExifIsExifExist(doc) == 1, zExifIsThumbnailExist(doc) == 1,
                    zExifIsAudioExist(doc) == 1, {}};
    for (const char *name : SUMMARY_TAGS) {
        const TagName *known = FindTagByName(name);
        TagAddress address;
        address.group = known->group;
        address.number = known->number;
        const CTag *tag = FindAddressedTag(doc, address);
        TagView view;
        if (tag != nullptr && ViewOfTag(*tag, address.group, &view)) summary.tags.push_back(view);
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
        WriteTagMembers(json, tag, IfdLabel(tag.group, 0), true);
        json.EndObject();
    }
    json.EndArray();
}

}  // namespace

int RunInfo(const std::vector<std::string> &arguments)
{
    ParsedArguments parsed;
    if (!ParseArguments(arguments, {}, {"--json"}, &parsed) || parsed.positional.empty()) return EXIT_USAGE;
    FileReport report(parsed.Has("--json"));
    for (const std::string &path : parsed.positional) {
        std::string message;
        CExifDoc *doc = TryLoadDocument(path, &message);
        if (doc == nullptr) {
            report.Fail(path, message);
            continue;
        }
        const Summary summary = Summarize(doc);
        if (report.IsJson()) {
            WriteSummary(report.BeginObject(path), summary);
            report.EndObject();
        } else {
            report.BeginText();
            PrintSummary(path, summary);
        }
        zExifDestroy(doc);
    }
    return report.Finish();
}
