#include "support/exif_block.h"

#include <cstring>

#include "support/byte_builder.h"

const char kBlockDate[21] = "2021:02:03 04:05:06";

namespace {

constexpr uint32_t kBlockDateOffset = 68;
constexpr uint32_t kExifIfdOffset = 50;
constexpr uint32_t kIfd1Offset = kBlockDateOffset + 20;
constexpr uint32_t kThumbDataOffset = kIfd1Offset + 42;

}  // namespace

std::vector<uint8_t> ExifBlock(const ExifBlockDef &def)
{
    const bool withThumb = !def.thumbnail.empty();
    ByteBuilder b(def.bigEndian);
    b.TiffHeader(8);
    b.U16(3);
    b.EntryRaw(271, 2, 4, {'C', 'a', 'm', 0});
    b.Entry(274, 3, 1, def.bigEndian ? 6u << 16 : 6u);
    b.Entry(34665, 4, 1, kExifIfdOffset);
    b.U32(withThumb ? kIfd1Offset : 0);
    b.U16(1);
    b.Entry(36867, 2, 20, kBlockDateOffset);
    b.U32(0);
    b.Bytes(std::vector<uint8_t>(kBlockDate, kBlockDate + 20));
    if (!withThumb) return b.m_bytes;
    b.U16(def.withLength ? 3 : 2);
    b.Entry(259, 3, 1, def.bigEndian ? 6u << 16 : 6u);
    b.Entry(513, 4, 1, def.thumbOffset < 0 ? kThumbDataOffset : uint32_t(def.thumbOffset));
    if (def.withLength) {
        b.Entry(514, 4, 1, def.thumbLength < 0 ? uint32_t(def.thumbnail.size()) : uint32_t(def.thumbLength));
    } else {
        b.U32(0).U32(0).U32(0);
    }
    b.U32(0);
    b.Bytes(def.thumbnail);
    return b.m_bytes;
}

std::vector<uint8_t> ExifPayload(const std::vector<uint8_t> &block)
{
    std::vector<uint8_t> payload(6 + block.size(), 0);
    std::memcpy(payload.data(), "Exif", 4);
    if (!block.empty()) std::memcpy(payload.data() + 6, block.data(), block.size());
    return payload;
}
