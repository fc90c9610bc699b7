#include "zexif/command.h"
#include "zexif/document_walk.h"
#include "zexif/dump_json.h"
#include "zexif/dump_text.h"
#include "zexif/file_report.h"
#include "zexif/output.h"
#include "zexif/sample_image.h"

namespace {

void DumpOpened(const DumpedFile &file, const std::string &name, ReportForm form)
{
    if (form == FORM_TEXT) {
        PrintDocument(file, name, Out());
        return;
    }
    JsonWriter json;
    json.BeginObject().Key("file").String(name);
    WriteDocumentMembers(json, file);
    std::fputs(json.EndObject().Text().c_str(), Out());
}

}  // namespace

int RunDump(const ParsedArguments &parsed)
{
    ReportForm form;
    if (!ReportFormOf(parsed, &form) || form == FORM_CSV || parsed.positional.empty()) return EXIT_USAGE;
    return RunForEachFile(parsed, parsed.positional, ListingOf(form, {}, "\n"), [&](const std::string &path) {
        std::string message;
        DumpedFile file;
        if (!file.Open(path, &message)) return ReportFailure(form, path, message);
        DumpOpened(file, path, form);
        return EXIT_OK;
    });
}

int RunSampleDump()
{
    DumpedFile file;
    if (!file.OpenMemory("sample.jpg", SAMPLE_JPEG, static_cast<uint32_t>(SAMPLE_JPEG_SIZE))) return EXIT_FAILED;
    DumpOpened(file, "sample.jpg", FORM_TEXT);
    return EXIT_OK;
}
