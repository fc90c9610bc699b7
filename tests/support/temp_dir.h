#ifndef ZEXIF_TESTS_TEMP_DIR_H
#define ZEXIF_TESTS_TEMP_DIR_H

#include <cstdint>
#include <string>
#include <vector>

// A fresh directory removed with everything in it when the object goes.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir &) = delete;
    TempDir &operator=(const TempDir &) = delete;

    std::string Path(const std::string &name) const { return m_path + "/" + name; }
    // Writes bytes to a file in the directory and returns its path.
    std::string Write(const std::string &name, const std::vector<uint8_t> &bytes) const;
    // Copies a file into the directory and returns the copy's path.
    std::string Copy(const std::string &source, const std::string &name) const;

    std::string m_path;
};

std::vector<uint8_t> ReadFileBytes(const std::string &path);
bool FileExists(const std::string &path);
std::vector<std::string> ListFiles(const std::string &dir);

#endif
