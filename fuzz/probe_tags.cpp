#include "fuzz/probe_tags.h"

namespace {

const uint32_t KNOWN_TAGS[] = {
    0,   1,   2,   3,   4,   6,   256, 257, 259, 270, 271, 272, 273, 274, 277, 279, 282, 306,
    322, 323, 324, 325, 330, 513, 514, 531, 33434, 33437, 34665, 34853, 36864, 36867, 37500, 40965,
};
constexpr size_t STEERED_TAGS = 4;

}  // namespace

std::vector<uint32_t> ProbeTags(const uint8_t *data, size_t size)
{
    std::vector<uint32_t> tags(std::begin(KNOWN_TAGS), std::end(KNOWN_TAGS));
    for (size_t i = 0; i < STEERED_TAGS && 2 * i + 1 < size; i++) {
        const uint8_t *tail = data + size - 2 * i - 2;
        tags.push_back(static_cast<uint32_t>(tail[0] | tail[1] << 8));
    }
    return tags;
}
