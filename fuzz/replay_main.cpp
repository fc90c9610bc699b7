// Runs a harness over files and directories of inputs without libFuzzer, so
// that the ordinary test suite replays every input the fuzzers ever found.
#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace {

bool ReadWholeFile(const std::string &path, std::vector<uint8_t> &bytes)
{
    FILE *file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) return false;
    bytes.clear();
    uint8_t chunk[1 << 16];
    size_t got;
    while ((got = std::fread(chunk, 1, sizeof chunk, file)) > 0) bytes.insert(bytes.end(), chunk, chunk + got);
    std::fclose(file);
    return true;
}

// Every file at or below path, in name order; the samples lie in folders.
std::vector<std::string> InputsUnder(const std::string &path)
{
    struct stat info;
    if (stat(path.c_str(), &info) != 0) return {};
    if (!S_ISDIR(info.st_mode)) return {path};
    std::vector<std::string> names;
    if (DIR *dir = opendir(path.c_str())) {
        while (dirent *entry = readdir(dir)) {
            if (entry->d_name[0] != '.') names.push_back(path + "/" + entry->d_name);
        }
        closedir(dir);
    }
    std::sort(names.begin(), names.end());
    std::vector<std::string> inputs;
    for (const std::string &name : names) {
        std::vector<std::string> below = InputsUnder(name);
        inputs.insert(inputs.end(), below.begin(), below.end());
    }
    return inputs;
}

}  // namespace

int main(int argc, char **argv)
{
    size_t replayed = 0;
    std::vector<uint8_t> bytes;
    for (int i = 1; i < argc; i++) {
        for (const std::string &input : InputsUnder(argv[i])) {
            if (!ReadWholeFile(input, bytes)) {
                std::fprintf(stderr, "cannot read %s\n", input.c_str());
                return 1;
            }
            LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
            replayed++;
        }
    }
    std::printf("replayed %zu inputs\n", replayed);
    return 0;
}
