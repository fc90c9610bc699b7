#include "zexif/arguments.h"
#include "zexif/command.h"
#include "zexif/document_walk.h"
#include "zexif/dump_json.h"
#include "zexif/dump_text.h"
#include "zexif/file_report.h"

int RunDump(const std::vector<std::string> &arguments)
{
    ParsedArguments parsed;
    if (!ParseArguments(arguments, {}, {"--json"}, &parsed) || parsed.positional.empty()) return EXIT_USAGE;
    FileReport report(parsed.Has("--json"));
    for (const std::string &path : parsed.positional) {
        std::string message;
        DumpedFile file;
        if (!file.Open(path, &message)) {
            report.Fail(path, message);
        } else if (report.IsJson()) {
            WriteDocumentMembers(report.BeginObject(path), file);
            report.EndObject();
        } else {
            report.BeginText();
            PrintDocument(file, path, stdout);
        }
    }
    return report.Finish();
}
