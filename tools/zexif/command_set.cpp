#include <cstdio>

#include "zexif/arguments.h"
#include "zexif/command.h"
#include "zexif/edit_session.h"
#include "zexif/tag_argument.h"
#include "zexif/tag_edit.h"
#include "zexif/value_parse.h"
#include "zexif.h"

int RunSet(const std::vector<std::string> &arguments)
{
    ParsedArguments parsed;
    TagAddress address;
    uint32_t type;
    if (!ParseArguments(arguments, {"--ifd", "-o"}, SaveFlags(), &parsed) || parsed.positional.size() < 4 ||
        !AddressFromArguments(parsed.positional[1], parsed, &address) ||
        !ParseTypeName(parsed.positional[2], &type)) {
        return EXIT_USAGE;
    }
    ParsedValue parsedValue;
    std::string error;
    if (!ParseValues(type, {parsed.positional.begin() + 3, parsed.positional.end()}, &parsedValue, &error)) {
        std::fprintf(stderr, "zexif: %s\n", error.c_str());
        return EXIT_USAGE;
    }
    const ExifTagValue value{type, parsedValue.count, parsedValue.bytes.data()};
    const std::string &path = parsed.positional[0];
    return EditAndSave(path, SaveOptionsOf(parsed), [&](CExifDoc *doc) {
        if (SetAddressedTag(doc, address, value, &error)) return true;
        std::fprintf(stderr, "zexif: %s: %s\n", path.c_str(), error.c_str());
        return false;
    });
}
