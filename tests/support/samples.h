#ifndef ZEXIF_TESTS_SAMPLES_H
#define ZEXIF_TESTS_SAMPLES_H

#include <string>
#include <vector>

// The real camera files beside the repository. They are read-only: tests copy
// them into a TempDir before anything could write.
std::string SamplesDir();
// Every .jpg and .tif/.tiff below SamplesDir(), sorted, as absolute paths.
std::vector<std::string> AllSamples();
std::vector<std::string> JpegSamples();
std::vector<std::string> TiffSamples();
// The path of one sample, relative to SamplesDir().
std::string Sample(const std::string &relative);
// A test name for a sample path: its file name, with what gtest can't take
// as "_".
std::string SampleTestName(const std::string &path);

#endif
