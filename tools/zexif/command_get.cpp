#include <cstdio>

#include "tools/zexif/arguments.h"
#include "tools/zexif/command.h"
#include "tools/zexif/document_tags.h"
#include "tools/zexif/file_report.h"
#include "tools/zexif/load_document.h"
#include "tools/zexif/tag_argument.h"
#include "tools/zexif/tag_json.h"
#include "zexif.h"

namespace {

// The tag of one file into the report: false when the file has none.
bool ReportTag(CExifDoc *doc, const std::string &path, const TagAddress &address, bool withName, FileReport &report)
{
    const CTag *tag = FindAddressedTag(doc, address);
    TagView view;
    if (tag == nullptr || !ViewOfTag(*tag, address.group, &view)) return false;
    if (report.IsJson()) {
        WriteTagMembers(report.BeginObject(path), view, IfdLabel(address.group, address.ifd), true);
        report.EndObject();
    } else {
        std::printf("%s%s\n", withName ? (path + ": ").c_str() : "", ReadableValue(view, true).c_str());
    }
    return true;
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
    for (const std::string &path : files) {
        std::string message;
        CExifDoc *doc = TryLoadDocument(path, &message);
        if (doc != nullptr && !ReportTag(doc, path, address, files.size() > 1, report)) {
            message = path + " has no " + DescribeAddress(address);
        }
        if (!message.empty()) report.Fail(path, message);
        zExifDestroy(doc);
    }
    return report.Finish();
}
