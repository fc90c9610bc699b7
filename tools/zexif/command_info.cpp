#include <cstdio>
#include <vector>

#include "tools/zexif/arguments.h"
#include "tools/zexif/command.h"
#include "tools/zexif/document_tags.h"
#include "tools/zexif/document_walk.h"
#include "tools/zexif/file_report.h"
#include "tools/zexif/load_document.h"
#include "tools/zexif/open_reader.h"
#include "tools/zexif/reader_tags.h"
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

// What a file tells, read through the read-only family where it answers as
// the tree would: the flags and the Exif IFD's tags always, IFD 0's tags in
// most files without a thumbnail. The tree is loaded only for the rest. The
// views point into the reader or the document, which outlive the summary.
class Summarizer {
public:
    explicit Summarizer(CExifReader *reader) : m_reader(reader) {}
    ~Summarizer() { zExifDestroy(m_doc); }
    Summarizer(const Summarizer &) = delete;
    Summarizer &operator=(const Summarizer &) = delete;

    // false, with the reason in message, when the tree was needed and the
    // file doesn't load.
    bool Summarize(const std::string &path, Summary *summary, std::string *message)
    {
        *summary = {FormatName(zRExifGetFileFormat(m_reader)), zRExifIsExifExist(m_reader) == 1,
                    zRExifIsThumbnailExist(m_reader) == 1, zRExifIsAudioExist(m_reader) == 1, {}};
        for (const char *name : SUMMARY_TAGS) {
            const TagName *known = FindTagByName(name);
            TagAddress address;
            address.group = known->group;
            address.number = known->number;
            TagView view;
            if (ReaderAnswersFor(m_reader, address)) {
                if (ReaderViewOfTag(m_reader, address, &view)) summary->tags.push_back(view);
                continue;
            }
            if (m_doc == nullptr && (m_doc = TryLoadDocument(path, message)) == nullptr) return false;
            const CTag *tag = FindAddressedTag(m_doc, address);
            if (tag != nullptr && ViewOfTag(*tag, address.group, &view)) summary->tags.push_back(view);
        }
        return true;
    }

private:
    CExifReader *m_reader;
    CExifDoc *m_doc = nullptr;
};

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
        CExifReader *reader = TryBeginRead(path, &message);
        Summary summary;
        if (reader != nullptr) {
            Summarizer summarizer(reader);
            if (summarizer.Summarize(path, &summary, &message)) {
                ReportSummary(path, summary, report);
                message.clear();
            }
        }
        if (!message.empty()) report.Fail(path, message);
        zRExifEndRead(reader);
    }
    return report.Finish();
}
