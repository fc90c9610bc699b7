#ifndef ZEXIF_BENCH_BENCH_H
#define ZEXIF_BENCH_BENCH_H

#include <benchmark/benchmark.h>

#include <string>

// Each family of benchmarks registers itself under names "<subject>/<what
// runs>", so that bench/run pairs a measure with its baseline or peer by
// name. All run in one process, their repetitions shuffled among each other.

// Over the real camera files below root: "<file>/<library>" for one file,
// "all/<library>" for all of them, and "all/open-read-close" as the floor.
void RegisterReaderBenchmarks(const std::string &root);

// Over big<N>MB.jpg in dir, where bench/run made them.
void RegisterBigJpegBenchmarks(const std::string &dir);

#endif
