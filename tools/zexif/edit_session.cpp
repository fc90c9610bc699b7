#include "zexif/edit_session.h"

#include <cstdio>

#include "zexif/command.h"
#include "zexif/load_document.h"
#include "zexif.h"

namespace {

bool Save(CExifDoc *doc, const std::string &target)
{
    if (zExifSaveFile(doc, target.c_str()) == 0) return true;
    std::fprintf(stderr, "zexif: cannot save %s\n", target.c_str());
    return false;
}

}  // namespace

int EditAndSave(const std::string &path, const std::string &out, const std::function<bool(CExifDoc *)> &edit)
{
    CExifDoc *doc = LoadDocument(path);
    if (doc == nullptr) return EXIT_FAILED;
    const bool done = edit(doc) && Save(doc, out.empty() ? path : out);
    zExifDestroy(doc);
    return done ? EXIT_OK : EXIT_FAILED;
}

int EditEach(const std::vector<std::string> &paths, const std::string &out,
             const std::function<bool(CExifDoc *, const std::string &path)> &edit)
{
    int status = EXIT_OK;
    for (const std::string &path : paths) {
        if (EditAndSave(path, out, [&](CExifDoc *doc) { return edit(doc, path); }) != EXIT_OK) status = EXIT_FAILED;
    }
    return status;
}

bool OutFitsFiles(bool hasOut, size_t files)
{
    if (!hasOut || files == 1) return true;
    std::fprintf(stderr, "zexif: -o OUT goes with a single FILE\n");
    return false;
}
