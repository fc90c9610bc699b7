#include <cstdio>

#include "zexif/command.h"
#include "zexif/edit_session.h"
#include "zexif/output.h"
#include "zexif/tag_edit.h"
#include "zexif.h"

namespace {

// A tag that isn't there is no failure: the file is already as asked.
EditResult DeleteAll(CExifDoc *doc, const std::string &path, const std::vector<TagAddress> &addresses)
{
    EditResult result = EDIT_UNCHANGED;
    for (const TagAddress &address : addresses) {
        std::string error;
        if (DeleteAddressedTag(doc, address, &error)) {
            result = EDIT_DONE;
        } else if (zExifGetLastError() == ZEXIF_ERROR_NOT_FOUND) {
            std::fprintf(Err(), "zexif: note: %s: %s\n", path.c_str(), error.c_str());
        } else {
            std::fprintf(Err(), "zexif: %s: %s\n", path.c_str(), error.c_str());
            return EDIT_FAILED;
        }
    }
    return result;
}

}  // namespace

int RunDelete(const ParsedArguments &parsed)
{
    std::vector<std::string> words, files;
    parsed.TagsAndFiles(&words, &files);
    std::vector<TagAddress> addresses(words.size());
    for (size_t i = 0; i < words.size(); ++i) {
        if (!AddressFromArguments(words[i], parsed, &addresses[i])) return EXIT_USAGE;
    }
    if (words.empty() || files.empty()) return EXIT_USAGE;
    return EditEach(parsed, files, [&](CExifDoc *doc, const std::string &path) { return DeleteAll(doc, path, addresses); });
}
