#include "platform/file_replace.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <new>

#include "platform/fault_point.h"

namespace {

constexpr size_t COPY_CHUNK = 1 << 16;
// Names tried beside the target for the copy before giving up.
constexpr int COPY_NAME_TRIES = 100;

int IsDirectory(const std::string &path)
{
    struct stat info;
    return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

// The target's permission bits go over to its replacement, as a copy over the
// old file would have kept them. A target that doesn't exist yet keeps the
// bits the temporary file was created with.
int TakeOverMode(const std::string &file, const std::string &target)
{
    struct stat info;
    if (stat(target.c_str(), &info) != 0) return errno == ENOENT ? 1 : 0;
    return chmod(file.c_str(), info.st_mode & 07777) == 0;
}

std::string DirectoryOf(const std::string &path)
{
    size_t slash = path.find_last_of('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

// The directory entry of a rename reaches the disk only with the directory.
// The rename has happened by then, so a failure here can't undo it.
void SyncDirectory(const std::string &dir)
{
    int fd = open(dir.c_str(), O_RDONLY | O_DIRECTORY);
    if (fd < 0) return;
    fsync(fd);
    close(fd);
}

int CopyContents(FILE *from, FILE *to)
{
    unsigned char *buffer = new (std::nothrow) unsigned char[COPY_CHUNK];
    if (buffer == nullptr) return 0;
    int ok = 1;
    size_t got;
    while ((got = std::fread(buffer, 1, COPY_CHUNK, from)) > 0) {
        if (FaultStrikes(FAULT_COPY) || std::fwrite(buffer, 1, got, to) != got) {
            ok = 0;
            break;
        }
    }
    if (std::ferror(from)) ok = 0;
    delete[] buffer;
    return ok;
}

// A fresh file beside target: target's name with a numbered suffix.
FILE *CreateCopyBeside(const std::string &target, std::string &copyPath)
{
    for (int i = 1; i <= COPY_NAME_TRIES; i++) {
        copyPath = target + ".$#$copy" + std::to_string(i);
        FILE *file = CreateNewFile(copyPath);
        if (file != nullptr || errno != EEXIST) return file;
    }
    return nullptr;
}

int CopyAndSync(const std::string &temp, FILE *to)
{
    FILE *from = std::fopen(temp.c_str(), "rb");
    if (from == nullptr) return 0;
    int ok = CopyContents(from, to);
    std::fclose(from);
    return ok && SyncFile(to);
}

}  // namespace

FILE *CreateNewFile(const std::string &path)
{
    if (FaultStrikes(FAULT_OPEN)) {
        errno = EIO;
        return nullptr;
    }
    int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd < 0) return nullptr;
    FILE *file = fdopen(fd, "wb");
    if (file == nullptr) {
        int saved = errno;
        close(fd);
        unlink(path.c_str());
        errno = saved;
    }
    return file;
}

int SyncFile(FILE *file)
{
    if (FaultStrikes(FAULT_SYNC) || std::fflush(file) != 0) return 0;
    return fsync(fileno(file)) == 0;
}

void StartWriteback(FILE *file)
{
    sync_file_range(fileno(file), 0, 0, SYNC_FILE_RANGE_WRITE);
}

int ReplaceFile(const std::string &temp, const std::string &target)
{
    if (IsDirectory(target)) return 0;
    if (!TakeOverMode(temp, target)) return 0;
    if (FaultStrikes(FAULT_RENAME)) return 0;
    if (std::rename(temp.c_str(), target.c_str()) == 0) {
        SyncDirectory(DirectoryOf(target));
        return 1;
    }
    if (errno != EXDEV || !ReplaceByCopy(temp, target)) return 0;
    RemoveFile(temp);
    return 1;
}

int ReplaceByCopy(const std::string &temp, const std::string &target)
{
    if (IsDirectory(target)) return 0;
    std::string copyPath;
    FILE *copy = CreateCopyBeside(target, copyPath);
    if (copy == nullptr) return 0;
    int ok = CopyAndSync(temp, copy);
    if (std::fclose(copy) != 0) ok = 0;
    ok = ok && TakeOverMode(copyPath, target) && !FaultStrikes(FAULT_RENAME) &&
         std::rename(copyPath.c_str(), target.c_str()) == 0;
    if (!ok) {
        RemoveFile(copyPath);
        return 0;
    }
    SyncDirectory(DirectoryOf(target));
    return 1;
}

int RemoveFile(const std::string &path)
{
    return unlink(path.c_str()) == 0 || errno == ENOENT;
}
