#include <cstdio>

#include "tools/zexif/arguments.h"
#include "tools/zexif/command.h"
#include "tools/zexif/document_tags.h"
#include "tools/zexif/file_report.h"
#include "tools/zexif/tag_argument.h"
#include "tools/zexif/tag_json.h"
#include "tools/zexif/tag_source.h"
#include "zexif.h"

namespace {

void ReportView(const std::string &path, const TagAddress &address, const TagView &view, bool withName,
                FileReport &report)
{
    if (report.IsJson()) {
        WriteTagMembers(report.BeginObject(path), view, IfdLabel(address.group, address.ifd), true);
        report.EndObject();
    } else {
        std::printf("%s%s\n", withName ? (path + ": ").c_str() : "", ReadableValue(view, true).c_str());
    }
}

void GetFromFile(const std::string &path, const TagAddress &address, bool withName, FileReport &report)
{
    std::string message;
    TagSource source(path, &message);
    TagView view;
    if (source.Reader() != nullptr && source.Find(address, &view, &message)) {
        ReportView(path, address, view, withName, report);
        return;
    }
    report.Fail(path, message.empty() ? path + " has no " + DescribeAddress(address) : message);
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
