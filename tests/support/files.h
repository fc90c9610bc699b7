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

    std::string m_path;
};

Bytes ReadFile(const std::string &path);

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
