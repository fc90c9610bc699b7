#include <cstdio>

#include "tools/zexif/arguments.h"
#include "tools/zexif/command.h"
#include "tools/zexif/edit_session.h"
#include "tools/zexif/value_parse.h"
#include "zexif.h"

namespace {

bool SetTag(CExifDoc *doc, uint32_t tag, uint32_t type, ParsedValue &parsed, int ifd)
{
    ExifTagValue value{type, parsed.count, parsed.bytes.data()};
    if (zExifSetTag(doc, tag, &value, ifd) == 0) return true;
    std::fprintf(stderr, "zexif: cannot set tag %u in IFD %d\n", tag, ifd);
    return false;
}

}  // namespace

int RunSet(const std::vector<std::string> &arguments)
{
    ParsedArguments parsed;
    uint32_t tag, type, ifd;
    if (!ParseArguments(arguments, {"--ifd", "-o"}, {}, &parsed) || parsed.positional.size() < 4 ||
        !ParseNumber(parsed.positional[1], &tag) || !ParseTypeName(parsed.positional[2], &type) ||
        !ParseNumber(parsed.Value("--ifd", "0"), &ifd)) {
        return EXIT_USAGE;
    }
    ParsedValue value;
    std::string error;
    if (!ParseValues(type, {parsed.positional.begin() + 3, parsed.positional.end()}, &value, &error)) {
        std::fprintf(stderr, "zexif: %s\n", error.c_str());
        return EXIT_USAGE;
    }
    return EditAndSave(parsed.positional[0], parsed.Value("-o", ""), [&](CExifDoc *doc) {
        return SetTag(doc, tag, type, value, static_cast<int>(ifd));
    });
}
