#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <set>

#include "zexif/command.h"
#include "zexif/exif_date.h"
#include "zexif/field_types.h"
#include "zexif/file_runner.h"
#include "zexif/open_reader.h"
#include "zexif/output.h"
#include "zexif.h"

namespace {

constexpr uint32_t TAG_DATE_TIME = 306, TAG_ORIGINAL = 36867;
constexpr int MAX_SUFFIX = 9999;

bool ReadDate(CExifReader *reader, int ifd, uint32_t tag, ExifDate *date)
{
    ExifTagValue value{};
    if (zRExifGetTagAt(reader, ifd, tag, &value) != 0 || value.type != TIFF_ASCII || value.data == nullptr) return false;
    return ParseExifDate(std::string(static_cast<const char *>(value.data), value.count), date);
}

std::string NameOfDate(const std::string &format, const ExifDate &date)
{
    struct tm parts = {};
    parts.tm_year = date.year - 1900;
    parts.tm_mon = date.month - 1;
    parts.tm_mday = date.day;
    parts.tm_hour = date.hour;
    parts.tm_min = date.minute;
    parts.tm_sec = date.second;
    parts.tm_isdst = -1;
    timegm(&parts);  // fills in the day of the week and of the year
    char name[4096];
    const size_t size = std::strftime(name, sizeof name, format.c_str(), &parts);
    return std::string(name, size);
}

class Renamer {
public:
    Renamer(const std::string &format, bool dryRun) : m_format(format), m_dryRun(dryRun) {}

    int File(const std::string &path)
    {
        std::string message;
        CExifReader *reader = TryBeginRead(path, &message);
        if (reader == nullptr) {
            std::fprintf(Err(), "zexif: %s\n", message.c_str());
            return EXIT_FAILED;
        }
        ExifDate date;
        const bool dated = ReadDate(reader, IFD_EXIF, TAG_ORIGINAL, &date) || ReadDate(reader, 0, TAG_DATE_TIME, &date);
        zRExifEndRead(reader);
        if (!dated) {
            std::fprintf(Err(), "zexif: note: %s has no date taken; left as it is\n", path.c_str());
            return EXIT_OK;
        }
        const std::string stem = NameOfDate(m_format, date);
        if (stem.empty()) {
            std::fprintf(Err(), "zexif: %s: --format gives an empty name\n", path.c_str());
            return EXIT_FAILED;
        }
        return Move(path, stem);
    }

private:
    // NAME.ext, else NAME-1.ext, NAME-2.ext...: the first that is free.
    int Move(const std::string &path, const std::string &stem)
    {
        const std::filesystem::path from(path);
        const std::string extension = from.extension().string();
        for (int suffix = 0; suffix <= MAX_SUFFIX; ++suffix) {
            const std::string name = stem + (suffix == 0 ? "" : "-" + std::to_string(suffix)) + extension;
            const std::string to = (from.parent_path() / name).string();
            if (to == path || name == from.filename().string()) {
                std::fprintf(Out(), "%s: already so named\n", path.c_str());
                return EXIT_OK;
            }
            const int claimed = Claim(path, to);
            if (claimed < 0) return EXIT_FAILED;
            if (claimed == 0) continue;
            std::fprintf(Out(), "%s -> %s\n", path.c_str(), to.c_str());
            return EXIT_OK;
        }
        std::fprintf(Err(), "zexif: %s: every name of %s-N is taken\n", path.c_str(), stem.c_str());
        return EXIT_FAILED;
    }

    // 1 when path has moved to (or, in a dry run, would), 0 when the name is
    // taken, -1 when the move failed. The kernel refuses to replace an
    // existing name, so no file is lost even to another program making one
    // at the same time.
    int Claim(const std::string &path, const std::string &to)
    {
        struct stat info;
        if (m_dryRun) return lstat(to.c_str(), &info) != 0 && m_planned.insert(to).second ? 1 : 0;
        if (renameat2(AT_FDCWD, path.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return 1;
        if (errno == EEXIST) return 0;
        std::fprintf(Err(), "zexif: cannot rename %s to %s: %s\n", path.c_str(), to.c_str(), std::strerror(errno));
        return -1;
    }

    std::string m_format;
    bool m_dryRun;
    std::set<std::string> m_planned;
};

}  // namespace

// One file after the other, so that the counters follow the order given.
int RunRename(const ParsedArguments &parsed)
{
    if (!parsed.Has("format") || parsed.positional.empty()) return EXIT_USAGE;
    Renamer renamer(parsed.Value("format", ""), parsed.Has("dry-run"));
    if (JobsOf(parsed) == 0) return EXIT_USAGE;
    return RunOverFiles(ExpandFiles(parsed.positional, parsed.Has("recursive")), 1, {},
                        [&](const std::string &path) { return renamer.File(path); });
}
