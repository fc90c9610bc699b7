#include "support/samples.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

bool HasExtension(const fs::path &path, std::initializer_list<const char *> extensions)
{
    std::string ext = path.extension().string();
    std::transform(ext.begin(), ext.end(), ext.begin(), [](unsigned char c) { return char(std::tolower(c)); });
    for (const char *candidate : extensions) {
        if (ext == candidate) return true;
    }
    return false;
}

std::vector<std::string> SamplesWith(std::initializer_list<const char *> extensions)
{
    std::vector<std::string> paths;
    for (const auto &entry : fs::recursive_directory_iterator(SamplesDir())) {
        if (entry.is_regular_file() && HasExtension(entry.path(), extensions)) paths.push_back(entry.path().string());
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

}  // namespace

std::string SamplesDir()
{
    return fs::canonical(ZEXIF_SAMPLES_DIR).string();
}

std::vector<std::string> JpegSamples()
{
    return SamplesWith({".jpg", ".jpeg"});
}

std::vector<std::string> TiffSamples()
{
    return SamplesWith({".tif", ".tiff"});
}

std::vector<std::string> AllSamples()
{
    std::vector<std::string> all = JpegSamples();
    std::vector<std::string> tiffs = TiffSamples();
    all.insert(all.end(), tiffs.begin(), tiffs.end());
    return all;
}

std::string Sample(const std::string &relative)
{
    return SamplesDir() + "/" + relative;
}

std::string SampleTestName(const std::string &path)
{
    std::string name = fs::path(path).filename().string();
    for (char &c : name) {
        if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
    }
    return name;
}
