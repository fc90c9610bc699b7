#include <cstdio>

#include "zexif/arguments.h"
#include "zexif/command.h"
#include "zexif/file_report.h"
#include "zexif/open_reader.h"
#include "zexif/tag_argument.h"
#include "zexif/tag_json.h"
#include "zexif/tag_reading.h"
#include "zexif.h"

namespace {

void ReportView(const std::string &path, const TagAddress &address, const TagView &view, bool withName,
                FileReport &report)
{
    if (report.IsJson()) {
        WriteTagMembers(report.BeginObject(path), view, IfdLabel(address.group, address.ifd));
        report.EndObject();
    } else {
        std::printf("%s%s\n", withName ? (path + ": ").c_str() : "", ReadableValue(view, true).c_str());
    }
}

void GetFromFile(const std::string &path, const TagAddress &address, bool withName, FileReport &report)
{
    std::string message;
    CExifReader *reader = TryBeginRead(path, &message);
    TagView view;
    if (reader != nullptr && ReadTag(reader, address, &view)) {
        ReportView(path, address, view, withName, report);
    } else {
        report.Fail(path, reader == nullptr ? message : path + " has no " + DescribeAddress(address));
    }
    zRExifEndRead(reader);
}

}  // namespace

int RunGet(const std::vector<std::string> &arguments)
{
    ParsedArguments parsed;
    TagAddress address;
    if (!ParseArguments(arguments, {"--ifd"}, {"--json"}, &parsed) || parsed.positional.size() < 2 ||
        !AddressFromArguments(parsed.positional.back(), parsed, &address)) {
        return EXIT_USAGE;
    }
    const std::vector<std::string> files(parsed.positional.begin(), parsed.positional.end() - 1);
    FileReport report(parsed.Has("--json"));
    for (const std::string &path : files) GetFromFile(path, address, files.size() > 1, report);
    return report.Finish();
}
