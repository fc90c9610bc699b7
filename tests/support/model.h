#ifndef ZEXIF_TESTS_SUPPORT_MODEL_H
#define ZEXIF_TESTS_SUPPORT_MODEL_H

#include <cstdint>
#include <random>
#include <string>
#include <vector>

using Bytes = std::vector<uint8_t>;

// Files described the way the tests think of them, and laid out into bytes
// independently of the library: the oracle that the library's trees, readers
// and saves are compared with.

// One IFD entry. value holds the value's bytes in host order (1-byte values
// as they stand). Where sub or blobs are set, the value is instead the offset
// of that sub-IFD, or of those blobs, as LONGs.
struct Entry {
    uint16_t tag = 0;
    uint16_t type = 0;
    uint32_t count = 0;
    Bytes value;
    int sub = -1;
    std::vector<int> blobs;
};
using Ifd = std::vector<Entry>;

Entry Ascii(uint16_t tag, const std::string &text);  // NUL added
Entry Short(uint16_t tag, uint16_t value);
Entry Long(uint16_t tag, uint32_t value);
Entry Rational(uint16_t tag, uint32_t numerator, uint32_t denominator);
// count values of type: the bytes as given, in host order.
Entry Typed(uint16_t tag, uint16_t type, uint32_t count, const Bytes &value);
Entry PointerTo(uint16_t tag, int sub);
Entry OffsetsOf(uint16_t tag, const std::vector<int> &blobs);

// A TIFF block: the chain's IFDs in order, the sub-IFDs that pointers name
// and the blobs (thumbnails, strips) that offsets name. Laid out as header,
// chain IFDs, sub-IFDs, each followed by its out-of-line values, then blobs.
struct Block {
    bool bigEndian = false;
    std::vector<Ifd> chain;
    std::vector<Ifd> subs;
    std::vector<Bytes> blobs;
};
Bytes Layout(const Block &block);
// Where Layout puts an IFD: index counts the chain's IFDs, then the subs.
uint32_t IfdOffset(const Block &block, size_t index);
// Overwrites 4 bytes at pos in the byte order of the block.
void Patch32(Bytes &bytes, size_t pos, uint32_t value, bool bigEndian);

// Bytes of one value of a TIFF type; 0 outside 1 to 12.
int TypeSize(uint32_t type);

// JPEG pieces. Segment payloads exclude the length field.
struct Segment {
    uint8_t code;
    Bytes payload;
};
Bytes ExifPayload(const Bytes &block);  // "Exif", two NULs, the block
// SOI, the segments, the scan bytes as they are, EOI.
Bytes Jpeg(const std::vector<Segment> &segments, const Bytes &scan);
// A JPEG as a camera writes one: APP0, an Exif APP1 around block (none when
// empty), tables, a frame, SOS, then scan data with stuffed bytes and
// restart markers, one file in three past a file stream's buffer with a
// marker across its edge.
Bytes CameraJpeg(const Bytes &block, std::mt19937 &rng);
// The same, always alike, around a little-endian block of these IFDs (no
// APP1 when there are none).
Bytes JpegOf(const std::vector<Ifd> &chain, const std::vector<Ifd> &subs = {}, const std::vector<Bytes> &blobs = {});
// A JPEG whose big-endian block has a maker note that holds an IFD behind a
// signature, with a value in an entry and values of two and eight bytes in
// the note.
Bytes BigEndianNote();
Bytes ScanData(std::mt19937 &rng, size_t size);
// A JPEG stream fit to be a thumbnail: SOI, a table and a frame header of
// 160 x 120 where the size leaves room for them, filler, EOI.
Bytes ThumbnailBytes(size_t size, uint8_t seed = 1);

// Random files in every shape the library meets: either byte order, all
// twelve types at counts around the 4-byte boundary, Exif and GPS IFDs, a
// thumbnail IFD, and for a TIFF file strips and further pages.
Block RandomBlock(std::mt19937 &rng, bool tiffFile);

#endif
