#include "support/tree_records.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "tree/document.h"
#include "tree/walk.h"

namespace {

bool IsStructural(const CNode *node, int32_t id)
{
    return node != nullptr && node->m_id == id && dynamic_cast<const CTag *>(node) == nullptr;
}

RawTag Record(CTag *tag, const std::string &place)
{
    RawTag record = {place, uint16_t(tag->m_id), uint16_t(tag->m_type), uint32_t(tag->m_count), {}};
    size_t bytes = size_t(uint32_t(tag->m_count)) * size_t(TypeSize(tag->m_type));
    bool inEntry = TypeSize(tag->m_type) != 8 && bytes <= 4;
    if (bytes == 0 || (!inEntry && (tag->m_data == nullptr || size_t(tag->m_size) < bytes))) return record;
    void *data = nullptr;
    if (tag->CopyValue(&data) && data != nullptr) {
        record.value.assign(static_cast<uint8_t *>(data), static_cast<uint8_t *>(data) + bytes);
    }
    std::free(data);
    return record;
}

// The chain's count node holds the number of its entries, whatever edits
// made them.
void AddChain(CNode *owner, const std::string &place, std::vector<RawTag> &out)
{
    uint32_t entries = 0;
    for (CNode *node = owner->m_child; node != nullptr; node = node->m_next) {
        CTag *tag = AsTag(node);
        if (tag == nullptr) continue;
        entries++;
        out.push_back(Record(tag, place));
        if (IsStructural(tag->m_child, NODE_ENTRY_COUNT)) AddChain(tag, place + "/" + std::to_string(tag->m_id), out);
    }
    if (IsStructural(owner->m_child, NODE_ENTRY_COUNT)) EXPECT_EQ(entries, owner->m_child->m_value) << place;
}

void AddBlock(CNode *header, const std::string &prefix, std::vector<RawTag> &out)
{
    for (CNode *node = header; node != nullptr; node = node->m_next) {
        if (IsStructural(node, NODE_IFD)) AddChain(node, prefix + "IFD" + std::to_string(node->m_value), out);
    }
}

}  // namespace

std::vector<RawTag> TreeTags(const CExifDoc &doc)
{
    std::vector<RawTag> out;
    if (IsStructural(doc.m_root, NODE_TIFF_HEADER)) {
        AddBlock(doc.m_root, "", out);
        return out;
    }
    int blocks = 0;
    for (CNode *marker = doc.m_root; marker != nullptr; marker = marker->m_next) {
        if (!IsStructural(marker->m_child, NODE_TIFF_HEADER)) continue;
        AddBlock(marker->m_child, blocks == 0 ? "" : "APP1#" + std::to_string(blocks) + ":", out);
        blocks++;
    }
    return out;
}

std::vector<RawSegment> TreeSegments(const CExifDoc &doc)
{
    std::vector<RawSegment> out;
    for (CNode *node = doc.m_root; node != nullptr; node = node->m_next) {
        if (const CMarker *marker = dynamic_cast<const CMarker *>(node)) {
            out.push_back({marker->m_id, marker->m_offset, marker->m_size});
        }
    }
    return out;
}

Bytes ValueBytes(const ExifTagValue &value)
{
    size_t size = size_t(value.count) * size_t(TypeSize(value.type));
    if (value.data == nullptr || size == 0) return {};
    const uint8_t *p = static_cast<const uint8_t *>(value.data);
    return Bytes(p, p + size);
}

Bytes DocThumbnail(CExifDoc *doc, uint32_t type)
{
    ExifBuffer out = {};
    if ((type == 0 ? zExifGetThumbnailData(doc, &out) : zExifGetThumbDataEx(doc, &out, type)) != 0) return {};
    Bytes bytes(out.data, out.data + out.size);
    std::free(out.data);
    return bytes;
}

std::string ReaderValue(CExifReader *reader, uint32_t tag)
{
    ExifTagValue value = {};
    if (zRExifGetTag(reader, tag, &value) != 0) return "-";
    Bytes bytes = ValueBytes(value);
    return std::string(bytes.begin(), bytes.end());
}

std::vector<int> MarkerCodes(const CExifDoc &doc)
{
    std::vector<int> codes;
    for (const RawSegment &s : TreeSegments(doc)) codes.push_back(s.code);
    return codes;
}
