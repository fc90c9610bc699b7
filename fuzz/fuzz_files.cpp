#include "fuzz/fuzz_files.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <vector>

namespace fs = std::filesystem;

namespace {

void RemoveDirectory()
{
    std::error_code ignored;
    fs::remove_all(FuzzDirectory(), ignored);
}

std::string MakeDirectory()
{
    std::error_code error;
    std::string base = fs::is_directory("/dev/shm", error) ? "/dev/shm" : "/tmp";
    std::string dir = base + "/zexif-fuzz-" + std::to_string(getpid());
    fs::create_directory(dir, error);
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
    if (file == nullptr || (size > 0 && std::fwrite(data, 1, size, file) != size)) FuzzFinding("cannot write the input file");
    std::fclose(file);
    return path;
}

std::string ListFuzzDirectory()
{
    std::vector<std::string> names;
    for (const auto &entry : fs::directory_iterator(FuzzDirectory())) names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    std::string list;
    for (const std::string &name : names) list += name + "\n";
    return list;
}

void FuzzFinding(const char *what)
{
    std::fprintf(stderr, "finding: %s\n", what);
    std::abort();
}
