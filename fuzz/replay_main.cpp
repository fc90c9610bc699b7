// Runs a harness over files and directories of inputs without libFuzzer, so
// that the ordinary test suite replays every input the fuzzers ever found.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace fs = std::filesystem;

int main(int argc, char **argv)
{
    std::vector<fs::path> inputs;
    for (int i = 1; i < argc; i++) {
        std::error_code error;
        if (fs::is_regular_file(argv[i], error)) inputs.push_back(argv[i]);
        for (fs::recursive_directory_iterator it(argv[i], error), end; !error && it != end; it.increment(error)) {
            if (it->is_regular_file()) inputs.push_back(it->path());
        }
    }
    std::sort(inputs.begin(), inputs.end());
    for (const fs::path &input : inputs) {
        std::ifstream in(input, std::ios::binary);
        std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        if (!in.good() && !in.eof()) {
            std::fprintf(stderr, "cannot read %s\n", input.c_str());
            return 1;
        }
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
    std::printf("replayed %zu inputs\n", inputs.size());
    return 0;
}
