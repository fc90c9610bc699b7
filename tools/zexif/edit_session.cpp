#include "tools/zexif/edit_session.h"

#include <cstdio>

#include "tools/zexif/command.h"
#include "tools/zexif/load_document.h"
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
