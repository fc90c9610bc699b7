#ifndef ZEXIF_FUZZ_PROBE_TAGS_H
#define ZEXIF_FUZZ_PROBE_TAGS_H

#include <cstddef>
#include <cstdint>
#include <vector>

// Tags every harness asks for: the ones cameras write in IFD 0, the Exif and
// GPS IFDs and the thumbnail IFD, the pointers themselves, and a few numbers
// taken from the input's last bytes so that the fuzzer can steer lookups at
// whatever tag it made up.
std::vector<uint32_t> ProbeTags(const uint8_t *data, size_t size);

#endif
