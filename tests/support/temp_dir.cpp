#include "support/temp_dir.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
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

std::string TempDir::Write(const std::string &name, const std::vector<uint8_t> &bytes) const
{
    std::string path = Path(name);
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char *>(bytes.data()), std::streamsize(bytes.size()));
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
