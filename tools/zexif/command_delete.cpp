#include <cstdio>

#include "zexif/arguments.h"
#include "zexif/command.h"
#include "zexif/edit_session.h"
#include "zexif/tag_argument.h"
#include "zexif/tag_edit.h"

int RunDelete(const std::vector<std::string> &arguments)
{
    ParsedArguments parsed;
    TagAddress address;
    if (!ParseArguments(arguments, {"--ifd", "-o"}, SaveFlags(), &parsed) || parsed.positional.size() < 2 ||
        !AddressFromArguments(parsed.positional.back(), parsed, &address)) {
        return EXIT_USAGE;
    }
    const std::vector<std::string> files(parsed.positional.begin(), parsed.positional.end() - 1);
    if (!OutFitsFiles(parsed.Has("-o"), files.size())) return EXIT_USAGE;
    return EditEach(files, SaveOptionsOf(parsed), [&](CExifDoc *doc, const std::string &path) {
        std::string error;
        if (DeleteAddressedTag(doc, address, &error)) return true;
        std::fprintf(stderr, "zexif: %s: %s\n", path.c_str(), error.c_str());
        return false;
    });
}
