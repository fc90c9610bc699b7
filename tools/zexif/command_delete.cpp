#include <cstdio>

#include "tools/zexif/arguments.h"
#include "tools/zexif/command.h"
#include "tools/zexif/edit_session.h"
#include "zexif.h"

int RunDelete(const std::vector<std::string> &arguments)
{
    ParsedArguments parsed;
    uint32_t tag, ifd;
    if (!ParseArguments(arguments, {"--ifd", "-o"}, {}, &parsed) || parsed.positional.size() != 2 ||
        !ParseNumber(parsed.positional[1], &tag) || !ParseNumber(parsed.Value("--ifd", "0"), &ifd)) {
        return EXIT_USAGE;
    }
    const std::string &path = parsed.positional[0];
    return EditAndSave(path, parsed.Value("-o", ""), [&](CExifDoc *doc) {
        if (zExifDelTag(doc, tag, static_cast<int>(ifd)) == 0) return true;
        std::fprintf(stderr, "zexif: %s has no tag %u in IFD %u\n", path.c_str(), tag, ifd);
        return false;
    });
}
