#include "tools/zexif/arguments.h"
#include "tools/zexif/command.h"
#include "tools/zexif/dump_json.h"
#include "tools/zexif/dump_text.h"
#include "tools/zexif/file_report.h"
#include "tools/zexif/load_document.h"
#include "tree/document.h"
#include "zexif.h"

int RunDump(const std::vector<std::string> &arguments)
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
        if (report.IsJson()) {
            WriteDocumentMembers(report.BeginObject(path), *doc);
            report.EndObject();
        } else {
            report.BeginText();
            PrintDocument(*doc, path, stdout);
        }
        zExifDestroy(doc);
    }
    return report.Finish();
}
