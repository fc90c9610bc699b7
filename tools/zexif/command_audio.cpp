#include <cstdio>

#include "zexif/command.h"
#include "zexif/edit_session.h"
#include "zexif/load_document.h"
#include "zexif/output.h"
#include "zexif.h"

namespace {

int Extract(const std::string &path, const std::string &out)
{
    CExifDoc *doc = LoadDocument(path);
    if (doc == nullptr) return EXIT_FAILED;
    const bool done = zExifGetAudioFile(doc, out.c_str()) == 0;
    zExifDestroy(doc);
    if (!done) std::fprintf(Err(), "zexif: cannot extract audio from %s to %s\n", path.c_str(), out.c_str());
    return done ? EXIT_OK : EXIT_FAILED;
}

// The library keeps the pointer to the WAV path until the save, which
// EditAndSave does while wav is still alive.
int Attach(const std::string &path, const std::string &wav, const SaveOptions &options)
{
    return EditAndSave(path, options, [&](CExifDoc *doc) {
        if (zExifSetAudioFile(doc, wav.c_str()) == 0) return EDIT_DONE;
        std::fprintf(Err(), "zexif: cannot attach %s to %s\n", wav.c_str(), path.c_str());
        return EDIT_FAILED;
    });
}

EditResult Remove(CExifDoc *doc, const std::string &path)
{
    if (zExifIsAudioExist(doc) == 1) {
        zExifRemoveAudio(doc);
        return EDIT_DONE;
    }
    std::fprintf(Err(), "zexif: note: %s has no audio\n", path.c_str());
    return EDIT_UNCHANGED;
}

}  // namespace

int RunAudio(const ParsedArguments &parsed)
{
    const std::vector<std::string> &words = parsed.positional;
    if (words.size() < 2) return EXIT_USAGE;
    const std::string &action = words[0];
    if (action == "extract" && words.size() == 3 && !parsed.Has("out")) return Extract(words[1], words[2]);
    if (action == "set" && words.size() == 3) return Attach(words[1], words[2], SaveOptionsOf(parsed));
    if (action == "remove") return EditEach(parsed, {words.begin() + 1, words.end()}, Remove);
    return EXIT_USAGE;
}
