#ifndef ZEXIF_TESTS_SUPPORT_FILES_H
#define ZEXIF_TESTS_SUPPORT_FILES_H

#include <string>
#include <vector>

#include "support/model.h"

// A fresh directory, removed with everything in it when the object goes.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir &) = delete;
    TempDir &operator=(const TempDir &) = delete;

    std::string Path(const std::string &name) const { return m_path + "/" + name; }
    // Writes bytes to name in the directory and returns the path.
    std::string Write(const std::string &name, const Bytes &bytes) const;
    // Names in the directory, sorted.
    std::vector<std::string> List() const;
    // The path of name in the directory in 16-bit characters (the
    // directory's bytes widened one by one).
    Bytes WidePath(const std::u16string &name) const;

    std::string m_path;
};

Bytes ReadFile(const std::string &path);
// text in little-endian 16-bit characters, with a 16-bit NUL.
Bytes Utf16Of(const std::u16string &text);

// The real camera files: the folder named by ZEXIF_SAMPLES, else the one
// beside the repository. Every .jpg and .tif(f) below it, sorted; empty when
// the folder is missing. They are never written: tests copy them first.
std::vector<std::string> Samples();
// GTEST_SKIP()s the calling test, with one message, when there are none.
#define SKIP_WITHOUT_SAMPLES()                                                                   \
    if (Samples().empty()) GTEST_SKIP() << "no real camera files: set ZEXIF_SAMPLES to their folder"

// The file name of a sample, for messages.
std::string ShortName(const std::string &path);

#endif
