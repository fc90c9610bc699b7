#include <strings.h>

#include <cstdio>

#include "zexif/command.h"
#include "zexif/file_report.h"
#include "zexif/glance.h"
#include "zexif/open_reader.h"
#include "zexif/output.h"
#include "zexif/tag_argument.h"
#include "zexif/tag_json.h"
#include "zexif/tag_reading.h"
#include "zexif.h"

namespace {

// Beside the tags of the files, the position that GPSLatitude, GPSLongitude
// and their Ref tags make together, as ExifTool names it.
const char *const POSITION_NAME = "GPSPosition";

struct Wanted {
    std::string word;  // as asked for
    bool position = false;
    TagAddress address;
};

struct Found {
    std::string text;
    TagView view;
    GpsPosition position;
};

bool ParseWanted(const std::vector<std::string> &words, const ParsedArguments &parsed, std::vector<Wanted> *wanted)
{
    for (const std::string &word : words) {
        Wanted one;
        one.word = word;
        one.position = strcasecmp(word.c_str(), POSITION_NAME) == 0;
        if (!one.position && !AddressFromArguments(word, parsed, &one.address)) return false;
        wanted->push_back(one);
    }
    return true;
}

bool Look(CExifReader *reader, const Wanted &wanted, Found *found)
{
    if (wanted.position) {
        if (!ReadGpsPosition(reader, &found->position)) return false;
        found->text = GpsPositionText(found->position);
        return true;
    }
    if (!ReadTag(reader, wanted.address, &found->view)) return false;
    found->text = ReadableValue(found->view, true);
    return true;
}

void WriteFound(JsonWriter &json, const Wanted &wanted, const Found *found)
{
    json.BeginObject();
    if (found == nullptr) {
        json.Key("name").String(wanted.word).Key("missing").Bool(true);
    } else if (wanted.position) {
        json.Key("name").String(POSITION_NAME).Key("text").String(found->text).Key("value").BeginArray();
        json.Real(found->position.latitude).Real(found->position.longitude).EndArray();
    } else {
        WriteTagMembers(json, found->view, IfdLabel(wanted.address.group, wanted.address.ifd));
    }
    json.EndObject();
}

class GetRun {
public:
    GetRun(const std::vector<Wanted> &wanted, ReportForm form, bool manyFiles)
        : m_wanted(wanted), m_form(form), m_manyFiles(manyFiles) {}

    // A tag that a file lacks is told on stderr and fails the file; the
    // others are still shown.
    int File(const std::string &path)
    {
        std::string message;
        CExifReader *reader = TryBeginRead(path, &message);
        if (reader == nullptr) return ReportFailure(m_form, path, message);
        std::vector<Found> found(m_wanted.size());
        std::vector<bool> has(m_wanted.size());
        int status = EXIT_OK;
        for (size_t i = 0; i < m_wanted.size(); ++i) {
            has[i] = Look(reader, m_wanted[i], &found[i]);
            if (!has[i]) status = EXIT_FAILED;
            if (!has[i]) std::fprintf(Err(), "zexif: %s has no %s\n", path.c_str(), Describe(m_wanted[i]).c_str());
        }
        Show(path, found, has);
        zRExifEndRead(reader);
        return status;
    }

private:
    static std::string Describe(const Wanted &wanted)
    {
        return wanted.position ? "GPS position" : DescribeAddress(wanted.address);
    }

    void Show(const std::string &path, const std::vector<Found> &found, const std::vector<bool> &has) const
    {
        if (m_form == FORM_JSON) {
            JsonWriter json;
            json.BeginObject().Key("file").String(path).Key("tags").BeginArray();
            for (size_t i = 0; i < found.size(); ++i) WriteFound(json, m_wanted[i], has[i] ? &found[i] : nullptr);
            std::fputs(json.EndArray().EndObject().Text().c_str(), Out());
            return;
        }
        std::vector<std::string> row = {path};
        for (size_t i = 0; i < found.size(); ++i) {
            row.push_back(found[i].text);
            if (m_form != FORM_TEXT || !has[i]) continue;
            const std::string file = m_manyFiles ? path + ": " : "";
            const std::string name = m_wanted.size() > 1 ? m_wanted[i].word + ": " : "";
            std::fprintf(Out(), "%s%s%s\n", file.c_str(), name.c_str(), found[i].text.c_str());
        }
        if (m_form == FORM_CSV) std::fputs(CsvRow(row).c_str(), Out());
    }

    const std::vector<Wanted> &m_wanted;
    ReportForm m_form;
    bool m_manyFiles;
};

}  // namespace

int RunGet(const ParsedArguments &parsed)
{
    std::vector<std::string> words, files;
    parsed.TagsAndFiles(&words, &files);
    std::vector<Wanted> wanted;
    ReportForm form;
    if (words.empty() || files.empty() || !ReportFormOf(parsed, &form) || !ParseWanted(words, parsed, &wanted)) {
        return EXIT_USAGE;
    }
    GetRun run(wanted, form, files.size() > 1 || parsed.Has("recursive"));
    return RunForEachFile(parsed, files, ListingOf(form, words, ""), [&](const std::string &path) { return run.File(path); });
}
