#ifndef ZEXIF_TESTS_THUMB_JPEG_H
#define ZEXIF_TESTS_THUMB_JPEG_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "support/memory_jpeg.h"
#include "support/thumb_tree.h"
#include "zexif.h"

// Where the old thumbnail of an InMemoryExifJpeg lies in its TIFF block.
constexpr uint32_t kOldThumbOffset = 100;

// An APP0 payload with the "JFIF" signature.
const std::vector<uint8_t> &JfifPayload();

// The entries of a thumbnail's IFD 1 whose bytes lie at kOldThumbOffset.
std::vector<HandTag> OldThumbIfd(uint32_t size);

// A JPEG document in memory: SOI, APP0, an APP1 of payloadSize bytes whose
// TIFF block holds oldThumb at kOldThumbOffset, DQT, EOI. The APP1's tree is
// hung by hand from ifds; the payload stays on the source stream.
struct InMemoryExifJpeg {
    InMemoryExifJpeg(size_t payloadSize, const std::vector<uint8_t> &oldThumb,
                     const std::vector<std::vector<HandTag>> &ifds);

    MemoryJpeg jpeg;
    std::unique_ptr<CExifDoc> doc;
    CMarker *app1 = nullptr;
};

// Closes the source stream, as a save does.
void DropSource(CExifDoc &doc);

ExifBuffer BufferOf(std::vector<uint8_t> &bytes);
std::vector<uint8_t> BytesOf(const ExifBuffer &buffer);
// The thumbnail that zExifGetThumbnailData hands out, released; empty on -1.
std::vector<uint8_t> GetThumbnail(CExifDoc *doc);
// The thumbnail that a reader of the file hands out; empty when there is none.
std::vector<uint8_t> ReaderThumbnail(const std::string &path);

#endif
