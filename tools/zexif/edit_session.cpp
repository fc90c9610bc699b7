#include "zexif/edit_session.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "zexif/command.h"
#include "zexif/dry_run.h"
#include "zexif/file_runner.h"
#include "zexif/load_document.h"
#include "zexif/output.h"
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
    std::fprintf(Err(), "zexif: cannot save %s%s\n", target.c_str(), SaveFailure(target, error).c_str());
    return false;
}

// Standard output is a stream, no file to put a new one in the place of.
bool SaveToStandardOutput(CExifDoc *doc)
{
    ExifBuffer bytes = {};
    if (zExifSaveMemory(doc, &bytes) != 0) {
        std::fprintf(Err(), "zexif: cannot save: %s\n", zExifGetErrorText(zExifGetLastError()));
        return false;
    }
    const size_t size = static_cast<size_t>(bytes.size);
    const bool done = std::fwrite(bytes.data, 1, size, Out()) == size && std::fflush(Out()) == 0;
    if (!done) std::fprintf(Err(), "zexif: cannot write to standard output: %s\n", std::strerror(errno));
    zExifFreeBuffer(&bytes);
    return done;
}

// The edited document as its saved bytes read back, beside the old one.
bool ShowChanges(CExifDoc *doc, const std::string &path, const std::vector<SnapshotEntry> &old)
{
    ExifBuffer bytes = {};
    if (zExifSaveMemory(doc, &bytes) != 0) {
        std::fprintf(Err(), "zexif: %s: cannot make the new file: %s\n", path.c_str(), zExifGetErrorText(zExifGetLastError()));
        return false;
    }
    CExifDoc *saved = zExifLoadMemory(bytes.data, bytes.size);
    zExifFreeBuffer(&bytes);
    if (saved == nullptr) return false;
    PrintChanges(path, old, TakeSnapshot(saved), Out());
    zExifDestroy(saved);
    return true;
}

bool KeepTime(const std::string &target, const struct stat &before)
{
    const std::array times = {before.st_atim, before.st_mtim};
    if (utimensat(AT_FDCWD, target.c_str(), times.data(), 0) == 0) return true;
    std::fprintf(Err(), "zexif: cannot keep the time of %s: %s\n", target.c_str(), std::strerror(errno));
    return false;
}

}  // namespace

SaveOptions SaveOptionsOf(const ParsedArguments &parsed)
{
    return {parsed.Value("out", ""), parsed.Has("preserve-time"), parsed.Has("dry-run")};
}

int EditAndSave(const std::string &path, const SaveOptions &options, const std::function<EditResult(CExifDoc *)> &edit)
{
    // A file that can't be looked at fails the load right after.
    struct stat before;
    const bool keepTime = options.keepTime && stat(path.c_str(), &before) == 0;
    CExifDoc *doc = LoadDocument(path);
    if (doc == nullptr) return EXIT_FAILED;
    const std::vector<SnapshotEntry> old = options.dryRun ? TakeSnapshot(doc) : std::vector<SnapshotEntry>();
    const std::string target = options.out.empty() ? path : options.out;
    const bool toStream = target == STANDARD_OUTPUT;
    const EditResult result = edit(doc);
    bool done = result != EDIT_FAILED;
    if (done && options.dryRun) {
        done = ShowChanges(doc, path, old);
    } else if (result == EDIT_DONE || (done && !options.out.empty())) {
        done = toStream ? SaveToStandardOutput(doc) : Save(doc, target);
        if (done && keepTime && !toStream) done = KeepTime(target, before);
    }
    zExifDestroy(doc);
    return done ? EXIT_OK : EXIT_FAILED;
}

int EditEach(const ParsedArguments &parsed, const std::vector<std::string> &files,
             const std::function<EditResult(CExifDoc *, const std::string &path)> &edit)
{
    const SaveOptions options = SaveOptionsOf(parsed);
    if (!options.out.empty() && files.size() != 1) {
        std::fprintf(Err(), "zexif: -o OUT goes with a single FILE\n");
        return EXIT_USAGE;
    }
    return RunForEachFile(parsed, files, {}, [&](const std::string &path) {
        return EditAndSave(path, options, [&](CExifDoc *doc) { return edit(doc, path); });
    });
}
