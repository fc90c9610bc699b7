#include <exiv2/exiv2.hpp>

#include <cstdlib>

#include "bench/bench.h"

int main(int argc, char **argv)
{
    Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
    const char *samples = std::getenv("ZEXIF_SAMPLES");
    RegisterReaderBenchmarks(samples != nullptr ? samples : ZEXIF_SAMPLES_DIR);
    if (const char *big = std::getenv("ZEXIF_BIG_JPEGS")) RegisterBigJpegBenchmarks(big);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
