#include "support/temp_dir.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <stdexcept>

namespace fs = std::filesystem;

TempDir::TempDir()
{
    std::string pattern = (fs::temp_directory_path() / "zexif-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
    m_path = pattern;
}

TempDir::~TempDir()
{
    std::error_code ignored;
    fs::remove_all(m_path, ignored);
}

namespace {

void WriteBytes(const std::string &path, const std::vector<uint8_t> &bytes)
{
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char *>(bytes.data()), std::streamsize(bytes.size()));
}

// The files the tests build by hand are the fuzzers' best seeds: each reaches
// a corner of the format on purpose. With ZEXIF_SEED_DIR set, every one is
// also kept there, named by its contents so that repeats fall together.
void KeepAsSeed(const std::vector<uint8_t> &bytes)
{
    const char *dir = std::getenv("ZEXIF_SEED_DIR");
    if (dir == nullptr || bytes.empty()) return;
    std::string name = std::to_string(std::hash<std::string>()(std::string(bytes.begin(), bytes.end())));
    WriteBytes(std::string(dir) + "/" + name, bytes);
}

}  // namespace

std::string TempDir::Write(const std::string &name, const std::vector<uint8_t> &bytes) const
{
    std::string path = Path(name);
    WriteBytes(path, bytes);
    KeepAsSeed(bytes);
    return path;
}

std::string TempDir::Copy(const std::string &source, const std::string &name) const
{
    std::string path = Path(name);
    fs::copy_file(source, path, fs::copy_options::overwrite_existing);
    fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write, fs::perm_options::add);
    return path;
}

std::vector<uint8_t> ReadFileBytes(const std::string &path)
{
    std::ifstream in(path, std::ios::binary);
    return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

bool FileExists(const std::string &path)
{
    return fs::exists(path);
}

std::vector<std::string> ListFiles(const std::string &dir)
{
    std::vector<std::string> names;
    for (const auto &entry : fs::directory_iterator(dir)) names.push_back(entry.path().filename().string());
    return names;
}
