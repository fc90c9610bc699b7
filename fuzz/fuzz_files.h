#ifndef ZEXIF_FUZZ_FUZZ_FILES_H
#define ZEXIF_FUZZ_FUZZ_FILES_H

#include <cstddef>
#include <cstdint>
#include <string>

// The library opens files by path, so each input goes through a file in a
// directory of this process's own (under /dev/shm where there is one, so the
// disk isn't worn by millions of runs).
const std::string &FuzzDirectory();

// Writes bytes to name inside FuzzDirectory and returns the full path.
std::string WriteFuzzFile(const char *name, const uint8_t *data, size_t size);

// The names in FuzzDirectory, sorted; a save must leave nothing behind there.
std::string ListFuzzDirectory();

// Stops the run with a finding: libFuzzer and the replay both report the
// input that got here.
[[noreturn]] void FuzzFinding(const char *what);

#endif
