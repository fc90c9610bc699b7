#include "zexif/edit_session.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "zexif/command.h"
#include "zexif/load_document.h"
#include "zexif.h"

namespace {

const char *const STANDARD_OUTPUT = "-";

// The library refuses whatever is no regular file to put a new file in the
// place of; errno tells the rest, where the system had a say.
std::string SaveFailure(const std::string &target, int error)
{
    struct stat info;
    if (stat(target.c_str(), &info) == 0 && !S_ISREG(info.st_mode)) {
        return S_ISDIR(info.st_mode) ? ": it is a directory" : ": not a regular file (-o - writes to standard output)";
    }
    return std::string(": ") + (error != 0 ? std::strerror(error) : zExifGetErrorText(zExifGetLastError()));
}

bool Save(CExifDoc *doc, const std::string &target)
{
    errno = 0;
    if (zExifSaveFile(doc, target.c_str()) == 0) return true;
    const int error = errno;
    std::fprintf(stderr, "zexif: cannot save %s%s\n", target.c_str(), SaveFailure(target, error).c_str());
    return false;
}

// Standard output is a stream, no file to put a new one in the place of.
bool SaveToStandardOutput(CExifDoc *doc)
{
    ExifBuffer bytes = {};
    if (zExifSaveMemory(doc, &bytes) != 0) {
        std::fprintf(stderr, "zexif: cannot save: %s\n", zExifGetErrorText(zExifGetLastError()));
        return false;
    }
    const size_t size = static_cast<size_t>(bytes.size);
    const bool done = std::fwrite(bytes.data, 1, size, stdout) == size && std::fflush(stdout) == 0;
    if (!done) std::fprintf(stderr, "zexif: cannot write to standard output: %s\n", std::strerror(errno));
    zExifFreeBuffer(&bytes);
    return done;
}

bool KeepTime(const std::string &target, const struct stat &before)
{
    const struct timespec times[2] = {before.st_atim, before.st_mtim};
    if (utimensat(AT_FDCWD, target.c_str(), times, 0) == 0) return true;
    std::fprintf(stderr, "zexif: cannot keep the time of %s: %s\n", target.c_str(), std::strerror(errno));
    return false;
}

}  // namespace

std::set<std::string> SaveFlags(std::set<std::string> own)
{
    own.insert({"-P", "--preserve-time"});
    return own;
}

SaveOptions SaveOptionsOf(const ParsedArguments &parsed)
{
    return {parsed.Value("-o", ""), parsed.Has("-P") || parsed.Has("--preserve-time")};
}

int EditAndSave(const std::string &path, const SaveOptions &options, const std::function<bool(CExifDoc *)> &edit)
{
    // A file that can't be looked at fails the load right after.
    struct stat before;
    const bool keepTime = options.keepTime && stat(path.c_str(), &before) == 0;
    CExifDoc *doc = LoadDocument(path);
    if (doc == nullptr) return EXIT_FAILED;
    const std::string target = options.out.empty() ? path : options.out;
    const bool toStream = target == STANDARD_OUTPUT;
    bool done = edit(doc) && (toStream ? SaveToStandardOutput(doc) : Save(doc, target));
    zExifDestroy(doc);
    if (done && keepTime && !toStream) done = KeepTime(target, before);
    return done ? EXIT_OK : EXIT_FAILED;
}

int EditEach(const std::vector<std::string> &paths, const SaveOptions &options,
             const std::function<bool(CExifDoc *, const std::string &path)> &edit)
{
    int status = EXIT_OK;
    for (const std::string &path : paths) {
        if (EditAndSave(path, options, [&](CExifDoc *doc) { return edit(doc, path); }) != EXIT_OK) status = EXIT_FAILED;
    }
    return status;
}

bool OutFitsFiles(bool hasOut, size_t files)
{
    if (!hasOut || files == 1) return true;
    std::fprintf(stderr, "zexif: -o OUT goes with a single FILE\n");
    return false;
}
