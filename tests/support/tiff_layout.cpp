#include "support/tiff_layout.h"

#include "support/byte_builder.h"

namespace {

size_t ValueSize(const LayoutEntry &entry)
{
    switch (entry.type) {
    case 3: case 8: return size_t(entry.count) * 2;
    case 4: case 9: case 11: return size_t(entry.count) * 4;
    case 5: case 10: case 12: return size_t(entry.count) * 8;
    default: return entry.bytes.size();
    }
}

size_t Padded(size_t size)
{
    return (size + 1) & ~size_t(1);
}

size_t IfdSize(const std::vector<LayoutEntry> &entries)
{
    size_t size = 2 + entries.size() * 12 + 4;
    for (const auto &entry : entries) {
        if (ValueSize(entry) > 4 && entry.ifd < 0 && entry.blob < 0) size += Padded(ValueSize(entry));
    }
    return size;
}

void EncodeValue(ByteBuilder &out, const LayoutEntry &entry)
{
    switch (entry.type) {
    case 3: case 8:
        for (uint32_t v : entry.numbers) out.U16(uint16_t(v));
        break;
    case 4: case 9: case 11: case 5: case 10: case 12:
        for (uint32_t v : entry.numbers) out.U32(v);
        break;
    default:
        out.Bytes(entry.bytes);
        break;
    }
}

}  // namespace

LayoutEntry Ascii(uint16_t tag, const std::string &text)
{
    std::vector<uint8_t> bytes(text.begin(), text.end());
    bytes.push_back(0);
    return Raw(tag, 2, uint32_t(bytes.size()), bytes);
}

LayoutEntry Raw(uint16_t tag, uint16_t type, uint32_t count, const std::vector<uint8_t> &bytes)
{
    LayoutEntry entry;
    entry.tag = tag;
    entry.type = type;
    entry.count = count;
    entry.bytes = bytes;
    return entry;
}

LayoutEntry Shorts(uint16_t tag, const std::vector<uint32_t> &values)
{
    LayoutEntry entry;
    entry.tag = tag;
    entry.type = 3;
    entry.count = uint32_t(values.size());
    entry.numbers = values;
    return entry;
}

LayoutEntry Long(uint16_t tag, uint32_t value)
{
    LayoutEntry entry;
    entry.tag = tag;
    entry.type = 4;
    entry.count = 1;
    entry.numbers = {value};
    return entry;
}

LayoutEntry Rational(uint16_t tag, uint32_t numerator, uint32_t denominator)
{
    LayoutEntry entry;
    entry.tag = tag;
    entry.type = 5;
    entry.count = 1;
    entry.numbers = {numerator, denominator};
    return entry;
}

LayoutEntry PointerTo(uint16_t tag, int ifd)
{
    LayoutEntry entry = Long(tag, 0);
    entry.ifd = ifd;
    return entry;
}

LayoutEntry OffsetOf(uint16_t tag, int blob)
{
    LayoutEntry entry = Long(tag, 0);
    entry.blob = blob;
    return entry;
}

int TiffLayout::AddIfd(const std::vector<LayoutEntry> &entries, bool inChain)
{
    m_ifds.push_back({entries, inChain});
    return int(m_ifds.size()) - 1;
}

int TiffLayout::AddBlob(const std::vector<uint8_t> &bytes)
{
    m_blobs.push_back(bytes);
    return int(m_blobs.size()) - 1;
}

uint32_t TiffLayout::IfdOffset(int ifd) const
{
    size_t offset = 8;
    for (int i = 0; i < ifd; i++) offset += IfdSize(m_ifds[size_t(i)].entries);
    return uint32_t(offset);
}

uint32_t TiffLayout::BlobOffset(int blob) const
{
    size_t offset = IfdOffset(int(m_ifds.size()));
    for (int i = 0; i < blob; i++) offset += Padded(m_blobs[size_t(i)].size());
    return uint32_t(offset);
}

std::vector<uint8_t> TiffLayout::Build() const
{
    ByteBuilder out(m_bigEndian);
    int first = -1;
    for (size_t i = 0; i < m_ifds.size() && first < 0; i++) {
        if (m_ifds[i].inChain) first = int(i);
    }
    out.TiffHeader(first < 0 ? 0 : IfdOffset(first));
    for (size_t i = 0; i < m_ifds.size(); i++) {
        const auto &entries = m_ifds[i].entries;
        size_t valuePos = IfdOffset(int(i)) + 2 + entries.size() * 12 + 4;
        out.U16(uint16_t(entries.size()));
        for (const auto &entry : entries) {
            out.U16(entry.tag).U16(entry.type).U32(entry.count);
            if (entry.ifd >= 0 || entry.blob >= 0) {
                uint32_t offset = entry.ifd >= 0 ? IfdOffset(entry.ifd) : BlobOffset(entry.blob);
                if (entry.type == 3) {
                    out.U16(uint16_t(offset)).U16(0);
                } else {
                    out.U32(offset);
                }
            } else if (ValueSize(entry) > 4) {
                out.U32(uint32_t(valuePos));
                valuePos += Padded(ValueSize(entry));
            } else {
                ByteBuilder field(m_bigEndian);
                EncodeValue(field, entry);
                field.Fill(4 - field.Size(), 0);
                out.Bytes(field.Data());
            }
        }
        uint32_t next = 0;
        for (size_t j = i + 1; j < m_ifds.size() && m_ifds[i].inChain; j++) {
            if (m_ifds[j].inChain) {
                next = IfdOffset(int(j));
                break;
            }
        }
        out.U32(next);
        for (const auto &entry : entries) {
            if (ValueSize(entry) <= 4 || entry.ifd >= 0 || entry.blob >= 0) continue;
            EncodeValue(out, entry);
            if (ValueSize(entry) % 2) out.U8(0);
        }
    }
    for (const auto &blob : m_blobs) {
        out.Bytes(blob);
        if (blob.size() % 2) out.U8(0);
    }
    return out.Data();
}
