#include <cstdio>

#include "zexif/arguments.h"
#include "zexif/command.h"
#include "zexif/edit_session.h"
#include "zexif/load_document.h"
#include "zexif.h"

namespace {

int Extract(const std::string &path, const std::string &out)
{
    CExifDoc *doc = LoadDocument(path);
    if (doc == nullptr) return EXIT_FAILED;
    const bool done = zExifGetAudioFile(doc, out.c_str()) == 0;
    zExifDestroy(doc);
    if (!done) std::fprintf(stderr, "zexif: cannot extract audio from %s to %s\n", path.c_str(), out.c_str());
    return done ? EXIT_OK : EXIT_FAILED;
}

// The library keeps the pointer to the WAV path until the save, which
// EditAndSave does while wav is still alive.
int Attach(const std::string &path, const std::string &wav, const SaveOptions &options)
{
    return EditAndSave(path, options, [&](CExifDoc *doc) {
        if (zExifSetAudioFile(doc, wav.c_str()) == 0) return true;
        std::fprintf(stderr, "zexif: cannot attach %s to %s\n", wav.c_str(), path.c_str());
        return false;
    });
}

int Remove(const std::string &path, const SaveOptions &options)
{
    return EditAndSave(path, options, [](CExifDoc *doc) {
        zExifRemoveAudio(doc);
        return true;
    });
}

}  // namespace

int RunAudio(const std::vector<std::string> &arguments)
{
    ParsedArguments parsed;
    if (arguments.empty() || !ParseArguments({arguments.begin() + 1, arguments.end()}, {"-o"}, SaveFlags(), &parsed)) {
        return EXIT_USAGE;
    }
    const std::vector<std::string> &files = parsed.positional;
    const std::string &action = arguments[0];
    const SaveOptions options = SaveOptionsOf(parsed);
    if (action == "extract" && files.size() == 2 && !parsed.Has("-o")) return Extract(files[0], files[1]);
    if (action == "set" && files.size() == 2) return Attach(files[0], files[1], options);
    if (action == "remove" && files.size() == 1) return Remove(files[0], options);
    return EXIT_USAGE;
}
