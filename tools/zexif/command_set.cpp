#include <cstdio>

#include "zexif/command.h"
#include "zexif/edit_session.h"
#include "zexif/output.h"
#include "zexif/tag_assignment.h"
#include "zexif/tag_edit.h"

namespace {

// set FILE TAG TYPE VALUE...: one tag, its type and values as words.
bool ParseFirstForm(const ParsedArguments &parsed, std::vector<Assignment> *assignments, std::vector<std::string> *files)
{
    const std::vector<std::string> &words = parsed.positional;
    Assignment assignment;
    if (words.size() < 4 || !AddressFromArguments(words[1], parsed, &assignment.address) ||
        !ParseTypeName(words[2], &assignment.type)) {
        return false;
    }
    std::string error;
    if (!ParseValues(assignment.type, {words.begin() + 3, words.end()}, &assignment.value, &error) ||
        !CheckAssignment(assignment, &error)) {
        std::fprintf(stderr, "zexif: %s\n", error.c_str());
        return false;
    }
    assignments->push_back(assignment);
    files->push_back(words[0]);
    return true;
}

bool ParseTagForm(const ParsedArguments &parsed, std::vector<Assignment> *assignments)
{
    for (const std::string &text : parsed.All("tag")) {
        Assignment assignment;
        std::string error;
        if (!ParseAssignment(text, parsed.Value("ifd", ""), &assignment, &error)) {
            std::fprintf(stderr, "zexif: %s\n", error.c_str());
            return false;
        }
        assignments->push_back(assignment);
    }
    return !parsed.positional.empty();
}

EditResult SetAll(CExifDoc *doc, const std::string &path, const std::vector<Assignment> &assignments)
{
    for (const Assignment &assignment : assignments) {
        const ExifTagValue value{assignment.type, assignment.value.count,
                                 const_cast<unsigned char *>(assignment.value.bytes.data())};
        std::string error;
        if (SetAddressedTag(doc, assignment.address, value, &error)) continue;
        std::fprintf(Err(), "zexif: %s: %s\n", path.c_str(), error.c_str());
        return EDIT_FAILED;
    }
    return EDIT_DONE;
}

}  // namespace

// Every value is checked before any file is touched; a file's edits are
// made in one load and one save.
int RunSet(const ParsedArguments &parsed)
{
    std::vector<Assignment> assignments;
    std::vector<std::string> files = parsed.positional;
    if (parsed.Has("tag") ? !ParseTagForm(parsed, &assignments) : !(files.clear(), ParseFirstForm(parsed, &assignments, &files))) {
        return EXIT_USAGE;
    }
    return EditEach(parsed, files, [&](CExifDoc *doc, const std::string &path) { return SetAll(doc, path, assignments); });
}
