#include "support/tag_records.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "load/tiff_types.h"
#include "support/jpeg_files.h"
#include "tree/walk.h"

namespace {

const std::vector<int32_t> kOffsetTags = {273, 279, 324, 325, 513, 34665, 34853, 40965};

std::vector<uint8_t> ValueBytes(CTag *tag)
{
    int64_t size = EntryDataSize(tag->m_type, uint32_t(tag->m_count));
    if (TiffTypeSize(tag->m_type) == 0) size = 4;
    void *copy = nullptr;
    tag->CopyValue(&copy);
    if (copy == nullptr) return {};
    std::vector<uint8_t> bytes(static_cast<uint8_t *>(copy), static_cast<uint8_t *>(copy) + size);
    std::free(copy);
    return bytes;
}

bool Skipped(int32_t id, const std::vector<int32_t> &skip)
{
    return std::count(kOffsetTags.begin(), kOffsetTags.end(), id) > 0 || std::count(skip.begin(), skip.end(), id) > 0;
}

void Collect(CNode *owner, const std::string &place, const std::vector<int32_t> &skip,
             std::vector<TagRecord> &records)
{
    for (CNode *node = owner->m_child; node != nullptr; node = node->m_next) {
        CTag *tag = dynamic_cast<CTag *>(node);
        if (tag == nullptr) continue;
        if (tag->m_child != nullptr) Collect(tag, place + "/" + std::to_string(tag->m_id), skip, records);
        if (!Skipped(tag->m_id, skip)) {
            records.push_back({place, tag->m_id, tag->m_type, tag->m_count, ValueBytes(tag)});
        }
    }
}

uint32_t Element(CTag *tag, int32_t k)
{
    int width = TiffTypeSize(tag->m_type);
    if (tag->m_count * width <= 4) return width == 2 ? (tag->m_value >> (16 * k)) & 0xFFFF : tag->m_value;
    uint32_t value = 0;
    std::memcpy(&value, tag->m_data + k * width, size_t(width));
    return value;
}

CTag *ChainTag(CNode *owner, int32_t id)
{
    for (CNode *node = owner->m_child; node != nullptr; node = node->m_next) {
        CTag *tag = dynamic_cast<CTag *>(node);
        if (tag != nullptr && tag->m_id == id) return tag;
    }
    return nullptr;
}

}  // namespace

bool TagRecord::operator==(const TagRecord &other) const
{
    return place == other.place && tag == other.tag && type == other.type && count == other.count &&
           value == other.value;
}

std::ostream &operator<<(std::ostream &out, const TagRecord &record)
{
    return out << record.place << ":" << record.tag << " type " << record.type << " count " << record.count
               << " (" << record.value.size() << " bytes)";
}

std::vector<TagRecord> TagRecords(CExifDoc &doc, const std::vector<int32_t> &skip)
{
    std::vector<TagRecord> records;
    for (int i = 0; i < doc.CountIfds(); i++) {
        CNode *ifd = doc.FindIfd(uint32_t(i));
        if (ifd != nullptr) Collect(ifd, "IFD" + std::to_string(i), skip, records);
    }
    return records;
}

std::vector<int32_t> TopLevelIds(const CExifDoc &doc)
{
    std::vector<int32_t> ids;
    for (CNode *node = doc.m_root; node != nullptr; node = node->m_next) ids.push_back(node->m_id);
    return ids;
}

std::vector<uint8_t> TiffBlockOf(const std::vector<uint8_t> &file)
{
    if (file.size() < 2 || file[0] != 0xFF) return file;
    for (const JpegSegmentView &segment : SegmentsOf(file)) {
        const std::vector<uint8_t> &payload = segment.payload;
        if (segment.code == 0xE1 && payload.size() > 6 && std::memcmp(payload.data(), "Exif", 4) == 0) {
            return std::vector<uint8_t>(payload.begin() + 6, payload.end());
        }
    }
    return {};
}

std::vector<std::vector<uint8_t>> ImageData(CExifDoc &doc, const std::vector<uint8_t> &file)
{
    const std::vector<uint8_t> block = TiffBlockOf(file);
    std::vector<std::vector<uint8_t>> images;
    for (int i = 0; i < doc.CountIfds(); i++) {
        CNode *ifd = doc.FindIfd(uint32_t(i));
        CTag *offsets = ChainTag(ifd, 273);
        CTag *counts = ChainTag(ifd, 279);
        if (offsets == nullptr || counts == nullptr) {
            offsets = ChainTag(ifd, 324);
            counts = ChainTag(ifd, 325);
        }
        std::vector<uint8_t> image;
        for (int32_t k = 0; offsets != nullptr && counts != nullptr && k < offsets->m_count; k++) {
            size_t start = Element(offsets, k);
            size_t size = Element(counts, k);
            if (start + size > block.size()) break;
            image.insert(image.end(), block.begin() + long(start), block.begin() + long(start + size));
        }
        images.push_back(image);
    }
    return images;
}
