#include "support/memory_jpeg.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "streams/stream.h"
#include "support/byte_builder.h"
#include "zexif.h"

MemoryJpeg::MemoryJpeg()
{
    m_bytes.push_back(0xFF);
    m_bytes.push_back(0xD8);
}

MemoryJpeg &MemoryJpeg::Segment(uint8_t code, const std::vector<uint8_t> &payload)
{
    m_markers.push_back({code, int32_t(payload.size()), int32_t(m_bytes.size() + 4)});
    std::vector<uint8_t> segment = JpegSegment(code, payload);
    m_bytes.insert(m_bytes.end(), segment.begin(), segment.end());
    return *this;
}

MemoryJpeg &MemoryJpeg::Segments(uint8_t code, const std::vector<std::vector<uint8_t>> &payloads)
{
    for (const auto &payload : payloads) Segment(code, payload);
    return *this;
}

MemoryJpeg &MemoryJpeg::CutEnd(size_t count)
{
    m_bytes.resize(m_bytes.size() - count);
    return *this;
}

std::unique_ptr<CExifDoc> MemoryJpeg::Load()
{
    auto doc = std::make_unique<CExifDoc>();
    doc->m_format = FORMAT_JPEG;
    CreateMemoryStream(&doc->m_stream, m_bytes.data(), int32_t(m_bytes.size()));
    doc->AddChild(new CMarker(0xD8, 0, 0));
    for (const Marker &m : m_markers) {
        CMarker *marker = new CMarker(m.code, m.size, m.offset);
        if (m.code >= 0xE0 && m.code <= 0xEF) {
            marker->m_sig = static_cast<char *>(std::calloc(8, 1));
            std::memcpy(marker->m_sig, m_bytes.data() + m.offset, size_t(std::min(m.size, 4)));
        }
        doc->AddSibling(marker);
    }
    doc->AddSibling(new CMarker(0xD9, 0, 0));
    return doc;
}

std::vector<std::tuple<int, int, int>> ChainOf(const CExifDoc &doc)
{
    std::vector<std::tuple<int, int, int>> chain;
    for (CNode *node = doc.m_root; node != nullptr; node = node->m_next) {
        CMarker *marker = dynamic_cast<CMarker *>(node);
        chain.emplace_back(node->m_id, marker ? marker->m_size : 0, marker ? marker->m_offset : 0);
    }
    return chain;
}

std::vector<CMarker *> MarkersOf(const CExifDoc &doc)
{
    std::vector<CMarker *> markers;
    for (CNode *node = doc.m_root; node != nullptr; node = node->m_next) {
        markers.push_back(dynamic_cast<CMarker *>(node));
    }
    return markers;
}
