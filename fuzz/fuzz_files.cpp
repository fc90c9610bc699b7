#include "fuzz/fuzz_files.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

std::vector<std::string> NamesIn(const std::string &path)
{
    std::vector<std::string> names;
    if (DIR *dir = opendir(path.c_str())) {
        while (dirent *entry = readdir(dir)) {
            std::string name = entry->d_name;
            if (name != "." && name != "..") names.push_back(name);
        }
        closedir(dir);
    }
    std::sort(names.begin(), names.end());
    return names;
}

void RemoveDirectory()
{
    const std::string &dir = FuzzDirectory();
    for (const std::string &name : NamesIn(dir)) unlink((dir + "/" + name).c_str());
    rmdir(dir.c_str());
}

std::string MakeDirectory()
{
    struct stat info;
    std::string base = stat("/dev/shm", &info) == 0 && S_ISDIR(info.st_mode) ? "/dev/shm" : "/tmp";
    std::string dir = base + "/zexif-fuzz-" + std::to_string(getpid());
    mkdir(dir.c_str(), 0700);
    std::atexit(RemoveDirectory);
    return dir;
}

}  // namespace

// Never destroyed: RemoveDirectory still needs the name at exit.
const std::string &FuzzDirectory()
{
    static const std::string *dir = new std::string(MakeDirectory());
    return *dir;
}

std::string WriteFuzzFile(const char *name, const uint8_t *data, size_t size)
{
    std::string path = FuzzDirectory() + "/" + name;
    FILE *file = std::fopen(path.c_str(), "wb");
    if (file == nullptr) FuzzFinding("cannot write the input file");
    if (size > 0 && std::fwrite(data, 1, size, file) != size) FuzzFinding("cannot write the input file");
    std::fclose(file);
    return path;
}

std::string ListFuzzDirectory()
{
    std::string list;
    for (const std::string &name : NamesIn(FuzzDirectory())) list += name + "\n";
    return list;
}

void FuzzFinding(const char *what)
{
    std::fprintf(stderr, "finding: %s\n", what);
    std::abort();
}
