#ifndef ZEXIF_TESTS_MEMORY_JPEG_H
#define ZEXIF_TESTS_MEMORY_JPEG_H

#include <cstdint>
#include <memory>
#include <tuple>
#include <vector>

#include "tree/document.h"

// A JPEG document made in memory the way a load makes one: SOI, a marker per
// segment whose payload stays on the source stream, EOI. The source stream
// reads m_bytes, which must outlive the document.
class MemoryJpeg {
public:
    MemoryJpeg();
    MemoryJpeg &Segment(uint8_t code, const std::vector<uint8_t> &payload);
    MemoryJpeg &Segments(uint8_t code, const std::vector<std::vector<uint8_t>> &payloads);
    // Cuts count bytes off the end of the file; the markers keep their sizes,
    // as they do for a file whose last segment runs past its end.
    MemoryJpeg &CutEnd(size_t count);
    std::unique_ptr<CExifDoc> Load();

    std::vector<uint8_t> m_bytes;

private:
    struct Marker {
        uint8_t code;
        int32_t size;
        int32_t offset;
    };
    std::vector<Marker> m_markers;
};

// The top-level chain as (id, size, offset), and each of its nodes.
std::vector<std::tuple<int, int, int>> ChainOf(const CExifDoc &doc);
std::vector<CMarker *> MarkersOf(const CExifDoc &doc);

#endif
