#include <cstdio>

#include "tools/zexif/arguments.h"
#include "tools/zexif/command.h"
#include "tools/zexif/document_tags.h"
#include "tools/zexif/file_report.h"
#include "tools/zexif/load_document.h"
#include "tools/zexif/open_reader.h"
#include "tools/zexif/reader_tags.h"
#include "tools/zexif/tag_argument.h"
#include "tools/zexif/tag_json.h"
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

// The read-only family answers where it gives what the tree would; the
// others load the file's tree. The view is reported before either ends.
void GetFromFile(const std::string &path, const TagAddress &address, bool withName, FileReport &report)
{
    std::string message;
    CExifReader *reader = TryBeginRead(path, &message);
    if (reader == nullptr) {
        report.Fail(path, message);
        return;
    }
    TagView view;
    bool found;
    CExifDoc *doc = nullptr;
    if (ReaderAnswersFor(reader, address)) {
        found = ReaderViewOfTag(reader, address, &view);
    } else {
        doc = TryLoadDocument(path, &message);
        const CTag *tag = doc != nullptr ? FindAddressedTag(doc, address) : nullptr;
        found = tag != nullptr && ViewOfTag(*tag, address.group, &view);
    }
    if (found) {
        ReportView(path, address, view, withName, report);
    } else {
        report.Fail(path, message.empty() ? path + " has no " + DescribeAddress(address) : message);
    }
    zExifDestroy(doc);
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
