#include "support/files.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <stdexcept>

namespace fs = std::filesystem;

namespace {

void WriteBytes(const std::string &path, const Bytes &bytes)
{
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char *>(bytes.data()), std::streamsize(bytes.size()));
}

// The files the tests build are the fuzzers' best seeds: each reaches a
// corner of the format on purpose. With ZEXIF_SEED_DIR set, every one is kept
// there too, named by its contents so that repeats fall together.
void KeepAsSeed(const Bytes &bytes)
{
    const char *dir = std::getenv("ZEXIF_SEED_DIR");
    if (dir == nullptr || bytes.empty()) return;
    WriteBytes(std::string(dir) + "/" + std::to_string(std::hash<std::string>()(std::string(bytes.begin(), bytes.end()))),
               bytes);
}

bool IsImage(const fs::path &path)
{
    std::string ext = path.extension().string();
    std::transform(ext.begin(), ext.end(), ext.begin(), [](unsigned char c) { return char(std::tolower(c)); });
    return ext == ".jpg" || ext == ".jpeg" || ext == ".tif" || ext == ".tiff";
}

}  // namespace

TempDir::TempDir()
{
    std::string pattern = (fs::temp_directory_path() / "zexif-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
    m_path = pattern;
}

TempDir::~TempDir()
{
    std::error_code ignored;
    fs::permissions(m_path, fs::perms::owner_all, fs::perm_options::add, ignored);
    fs::remove_all(m_path, ignored);
}

std::string TempDir::Write(const std::string &name, const Bytes &bytes) const
{
    WriteBytes(Path(name), bytes);
    KeepAsSeed(bytes);
    return Path(name);
}

std::vector<std::string> TempDir::List() const
{
    std::vector<std::string> names;
    for (const auto &entry : fs::directory_iterator(m_path)) names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

Bytes TempDir::WidePath(const std::u16string &name) const
{
    std::u16string wide;
    for (char c : m_path + "/") wide += char16_t(uint8_t(c));
    return Utf16Of(wide + name);
}

Bytes Utf16Of(const std::u16string &text)
{
    Bytes out;
    for (char16_t unit : text) out.insert(out.end(), {uint8_t(unit), uint8_t(unit >> 8)});
    out.insert(out.end(), {0, 0});
    return out;
}

Bytes ReadFile(const std::string &path)
{
    std::ifstream in(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

std::vector<std::string> Samples()
{
    static const std::vector<std::string> samples = [] {
        const char *dir = std::getenv("ZEXIF_SAMPLES");
        fs::path root = dir != nullptr && *dir != '\0' ? fs::path(dir) : fs::path(ZEXIF_SAMPLES_DIR);
        std::vector<std::string> found;
        std::error_code error;
        for (fs::recursive_directory_iterator it(root, error), end; !error && it != end; it.increment(error)) {
            if (it->is_regular_file() && IsImage(it->path())) found.push_back(it->path().string());
        }
        std::sort(found.begin(), found.end());
        return found;
    }();
    return samples;
}

std::string ShortName(const std::string &path)
{
    return fs::path(path).filename().string();
}
