#include "support/model.h"

#include <algorithm>
#include <set>

#include "streams/file_stream.h"

namespace {

size_t ValueSize(const Entry &entry)
{
    if (entry.sub >= 0) return 4;
    if (!entry.blobs.empty()) return 4 * entry.blobs.size();
    return entry.value.size();
}

size_t Padded(size_t size)
{
    return (size + 1) & ~size_t(1);
}

size_t IfdSize(const Ifd &ifd)
{
    size_t size = 2 + 12 * ifd.size() + 4;
    for (const Entry &entry : ifd) {
        if (ValueSize(entry) > 4) size += Padded(ValueSize(entry));
    }
    return size;
}

void Put16(Bytes &out, uint32_t v, bool bigEndian)
{
    if (bigEndian) {
        out.insert(out.end(), {uint8_t(v >> 8), uint8_t(v)});
    } else {
        out.insert(out.end(), {uint8_t(v), uint8_t(v >> 8)});
    }
}

void Put32(Bytes &out, uint32_t v, bool bigEndian)
{
    Put16(out, bigEndian ? v >> 16 : v & 0xFFFF, bigEndian);
    Put16(out, bigEndian ? v & 0xFFFF : v >> 16, bigEndian);
}

Bytes HostLongs(const std::vector<uint32_t> &numbers)
{
    Bytes out;
    for (uint32_t n : numbers) Put32(out, n, false);
    return out;
}

// 2-byte types turn by halves, 4- and 8-byte types by 32-bit words.
Bytes FileOrder(const Bytes &host, uint32_t type, bool bigEndian)
{
    Bytes out = host;
    int unit = TypeSize(type) == 2 ? 2 : TypeSize(type) >= 4 ? 4 : 1;
    if (!bigEndian || unit == 1) return out;
    for (size_t i = 0; i + unit <= out.size(); i += size_t(unit)) std::reverse(out.begin() + long(i), out.begin() + long(i) + unit);
    return out;
}

struct Offsets {
    std::vector<uint32_t> chain, subs, blobs;
};

Offsets PlaceAll(const Block &block)
{
    Offsets at;
    size_t pos = 8;
    for (const Ifd &ifd : block.chain) at.chain.push_back(uint32_t(pos)), pos += IfdSize(ifd);
    for (const Ifd &ifd : block.subs) at.subs.push_back(uint32_t(pos)), pos += IfdSize(ifd);
    for (const Bytes &blob : block.blobs) at.blobs.push_back(uint32_t(pos)), pos += Padded(blob.size());
    return at;
}

Bytes EncodedValue(const Entry &entry, const Offsets &at, bool bigEndian)
{
    if (entry.sub >= 0) return FileOrder(HostLongs({at.subs[size_t(entry.sub)]}), 4, bigEndian);
    if (entry.blobs.empty()) return FileOrder(entry.value, entry.type, bigEndian);
    std::vector<uint32_t> offsets;
    for (int blob : entry.blobs) offsets.push_back(at.blobs[size_t(blob)]);
    return FileOrder(HostLongs(offsets), 4, bigEndian);
}

void LayIfd(Bytes &out, const Ifd &ifd, uint32_t next, const Offsets &at, bool bigEndian)
{
    size_t valuePos = out.size() + 2 + 12 * ifd.size() + 4;
    Put16(out, uint32_t(ifd.size()), bigEndian);
    Bytes values;
    for (const Entry &entry : ifd) {
        Put16(out, entry.tag, bigEndian);
        Put16(out, entry.type, bigEndian);
        Put32(out, entry.count, bigEndian);
        Bytes value = EncodedValue(entry, at, bigEndian);
        if (value.size() > 4) {
            Put32(out, uint32_t(valuePos + values.size()), bigEndian);
            values.insert(values.end(), value.begin(), value.end());
            if (value.size() % 2) values.push_back(0);
        } else {
            value.resize(4, 0xA5);
            out.insert(out.end(), value.begin(), value.end());
        }
    }
    Put32(out, next, bigEndian);
    out.insert(out.end(), values.begin(), values.end());
}

Bytes RandomBytes(std::mt19937 &rng, size_t size)
{
    Bytes out(size);
    for (uint8_t &b : out) b = uint8_t(rng());
    return out;
}

int Pick(std::mt19937 &rng, int below)
{
    return int(rng() % unsigned(below));
}

const uint16_t kExifTableTags[] = {33434, 33437, 34850, 34852, 34855, 34856, 36864, 36867, 36868, 37121, 37122,
                                   37377, 37378, 37380, 37383, 37385, 37386, 37500, 37510, 37520, 40960, 40961,
                                   40962, 40963, 41483, 41486, 41495, 41728, 41985, 41986, 41987, 42016};
// Numbers whose values are offsets the writer assigns or drops, and the
// pointers: never given random values.
const std::set<uint16_t> kOffsetTags = {273, 279, 288, 289, 324, 325, 330, 513, 514, 519, 520, 521,
                                        34665, 34853, 40965};

Entry RandomEntry(std::mt19937 &rng, uint16_t tag)
{
    static const uint32_t counts[] = {0, 1, 1, 2, 3, 4, 5, 7, 9, 24};
    uint16_t type = uint16_t(1 + Pick(rng, 12));
    uint32_t count = counts[Pick(rng, 10)];
    if (type == 2) {
        Bytes text(count == 0 ? 1 : count, 0);
        for (size_t i = 0; i + 1 < text.size(); i++) text[i] = uint8_t('a' + Pick(rng, 26));
        return Typed(tag, 2, uint32_t(text.size()), text);
    }
    return Typed(tag, type, count, RandomBytes(rng, count * size_t(TypeSize(type))));
}

Ifd RandomIfd(std::mt19937 &rng, const std::vector<uint16_t> &pool, int most)
{
    std::set<uint16_t> tags;
    int wanted = 1 + Pick(rng, most);
    for (int i = 0; i < wanted; i++) tags.insert(pool[size_t(Pick(rng, int(pool.size())))]);
    Ifd ifd;
    for (uint16_t tag : tags) ifd.push_back(RandomEntry(rng, tag));
    return ifd;
}

std::vector<uint16_t> PlainTagPool(std::mt19937 &rng)
{
    std::vector<uint16_t> pool = {254, 256, 257, 262, 270, 271, 272, 274, 282, 283, 296, 305, 306, 315, 33432};
    while (pool.size() < 40) {
        uint16_t tag = uint16_t(rng());
        if (tag > 0 && kOffsetTags.count(tag) == 0 &&
            std::find(std::begin(kExifTableTags), std::end(kExifTableTags), tag) == std::end(kExifTableTags)) {
            pool.push_back(tag);
        }
    }
    return pool;
}

void SortIfd(Ifd &ifd)
{
    std::stable_sort(ifd.begin(), ifd.end(), [](const Entry &a, const Entry &b) { return a.tag < b.tag; });
}

// An image of a few strips, or tiles, in blobs, described in ifd.
void AddStrips(Block &block, Ifd &ifd, std::mt19937 &rng)
{
    bool tiles = Pick(rng, 3) == 0, shortCounts = Pick(rng, 2) == 0;
    int strips = 1 + Pick(rng, 4);
    std::vector<int> blobs;
    Bytes counts;
    for (int i = 0; i < strips; i++) {
        block.blobs.push_back(RandomBytes(rng, size_t(1 + Pick(rng, 300))));
        blobs.push_back(int(block.blobs.size()) - 1);
        (shortCounts ? Put16 : Put32)(counts, uint32_t(block.blobs.back().size()), false);
    }
    ifd.push_back(Short(256, 16));
    ifd.push_back(Short(257, uint16_t(strips)));
    ifd.push_back(Short(258, 8));
    ifd.push_back(OffsetsOf(tiles ? 324 : 273, blobs));
    ifd.push_back(Typed(tiles ? 325 : 279, shortCounts ? 3 : 4, uint32_t(strips), counts));
}

Ifd ThumbnailIfd(Block &block, std::mt19937 &rng, bool withSubfile)
{
    block.blobs.push_back(ThumbnailBytes(size_t(4 + Pick(rng, 2000)), uint8_t(rng())));
    Ifd ifd = {Short(259, 6), OffsetsOf(513, {int(block.blobs.size()) - 1}),
               Long(514, uint32_t(block.blobs.back().size()))};
    if (withSubfile) ifd.push_back(Long(254, 1));
    return ifd;
}

}  // namespace

int TypeSize(uint32_t type)
{
    static const int sizes[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8};
    return type <= 12 ? sizes[type] : 0;
}

Entry Typed(uint16_t tag, uint16_t type, uint32_t count, const Bytes &value)
{
    Entry entry;
    entry.tag = tag;
    entry.type = type;
    entry.count = count;
    entry.value = value;
    return entry;
}

Entry Ascii(uint16_t tag, const std::string &text)
{
    Bytes bytes(text.begin(), text.end());
    bytes.push_back(0);
    return Typed(tag, 2, uint32_t(bytes.size()), bytes);
}

Entry Short(uint16_t tag, uint16_t value)
{
    return Typed(tag, 3, 1, {uint8_t(value), uint8_t(value >> 8)});
}

Entry Long(uint16_t tag, uint32_t value)
{
    return Typed(tag, 4, 1, HostLongs({value}));
}

Entry Rational(uint16_t tag, uint32_t numerator, uint32_t denominator)
{
    return Typed(tag, 5, 1, HostLongs({numerator, denominator}));
}

Entry PointerTo(uint16_t tag, int sub)
{
    Entry entry = Typed(tag, 4, 1, {});
    entry.sub = sub;
    return entry;
}

Entry OffsetsOf(uint16_t tag, const std::vector<int> &blobs)
{
    Entry entry = Typed(tag, 4, uint32_t(blobs.size()), {});
    entry.blobs = blobs;
    return entry;
}

Bytes Layout(const Block &block)
{
    Offsets at = PlaceAll(block);
    Bytes out;
    const bool be = block.bigEndian;
    out.insert(out.end(), {uint8_t(be ? 'M' : 'I'), uint8_t(be ? 'M' : 'I')});
    Put16(out, 42, be);
    Put32(out, at.chain.empty() ? 0 : at.chain[0], be);
    for (size_t i = 0; i < block.chain.size(); i++) {
        LayIfd(out, block.chain[i], i + 1 < at.chain.size() ? at.chain[i + 1] : 0, at, be);
    }
    for (const Ifd &ifd : block.subs) LayIfd(out, ifd, 0, at, be);
    for (const Bytes &blob : block.blobs) {
        out.insert(out.end(), blob.begin(), blob.end());
        if (blob.size() % 2) out.push_back(0);
    }
    return out;
}

uint32_t IfdOffset(const Block &block, size_t index)
{
    Offsets at = PlaceAll(block);
    return index < at.chain.size() ? at.chain[index] : at.subs[index - at.chain.size()];
}

void Patch32(Bytes &bytes, size_t pos, uint32_t value, bool bigEndian)
{
    Bytes field;
    Put32(field, value, bigEndian);
    std::copy(field.begin(), field.end(), bytes.begin() + long(pos));
}

Bytes ExifPayload(const Bytes &block)
{
    Bytes out = {'E', 'x', 'i', 'f', 0, 0};
    out.resize(out.size() + block.size());
    std::copy(block.begin(), block.end(), out.end() - long(block.size()));
    return out;
}

void AppendSegment(Bytes &out, const Segment &segment)
{
    out.insert(out.end(), {0xFF, segment.code});
    Put16(out, uint32_t(segment.payload.size() + 2), true);
    out.insert(out.end(), segment.payload.begin(), segment.payload.end());
}

Bytes Jpeg(const std::vector<Segment> &segments, const Bytes &scan)
{
    Bytes out = {0xFF, 0xD8};
    for (const Segment &segment : segments) AppendSegment(out, segment);
    out.insert(out.end(), scan.begin(), scan.end());
    out.insert(out.end(), {0xFF, 0xD9});
    return out;
}

Bytes ScanData(std::mt19937 &rng, size_t size)
{
    Bytes out;
    int restart = 0;
    while (out.size() < size) {
        uint8_t byte = uint8_t(rng());
        out.push_back(byte);
        if (byte == 0xFF) out.push_back(0x00);
        if (Pick(rng, 97) == 0) out.insert(out.end(), {0xFF, uint8_t(0xD0 + restart++ % 8)});
        // An APPn segment inside the scan is a segment all the same (none of
        // the codes that hold Exif or audio).
        if (Pick(rng, 499) == 0) out.insert(out.end(), {0xFF, uint8_t(0xE3 + Pick(rng, 13)), 0, 4, 1, 2});
    }
    return out;
}

// Scan data that runs past the first buffer a file stream reads, with a
// marker split across the buffer's edge: its FF is the buffer's last byte.
// It is a stuffed byte, a restart or an EOI behind which the scan goes on as
// trailing bytes. start is the scan's offset in the file.
Bytes ScanAcrossBuffer(std::mt19937 &rng, size_t start)
{
    static const uint8_t codes[] = {0x00, 0xD5, 0xD9};
    const size_t edge = FILE_BUFFER_SIZE - 1 - start;
    Bytes out = ScanData(rng, edge);
    out.resize(edge);
    if (!out.empty() && out.back() == 0xFF) out.back() = 0;
    out.insert(out.end(), {0xFF, codes[Pick(rng, 3)]});
    Bytes rest = ScanData(rng, 100);
    out.insert(out.end(), rest.begin(), rest.end());
    return out;
}

// Bytes between segments that count as image data: fill, a stuffed byte and
// each marker that has no length. In a JPEG they are followed by a segment of
// code 255 with no payload: before the first scan any code that isn't data
// opens a segment.
Bytes DataBetweenSegments(std::mt19937 &rng)
{
    static const uint8_t codes[] = {0x00, 0xD0, 0xD1, 0xD2, 0xD3, 0xD4, 0xD5, 0xD6, 0xD7, 0xDC, 0xDE, 0xDF};
    Bytes out = {uint8_t(rng() % 0xFF)};
    for (uint8_t code : codes) out.insert(out.end(), {0xFF, code, uint8_t(rng() % 0xFF)});
    return out;
}

Bytes CameraJpeg(const Bytes &block, std::mt19937 &rng)
{
    Bytes out = {0xFF, 0xD8};
    AppendSegment(out, {0xE0, {'J', 'F', 'I', 'F', 0, 1, 1, 0, 0, 1, 0, 1, 0, 0}});
    if (!block.empty()) AppendSegment(out, {0xE1, ExifPayload(block)});
    if (Pick(rng, 3) == 0) AppendSegment(out, {0xE1, {'h', 't', 't', 'p', ':', '/', '/', 'n', 's', '.'}});
    AppendSegment(out, {0xDB, Bytes(65, 1)});
    if (Pick(rng, 3) == 0) {
        Bytes data = DataBetweenSegments(rng);
        out.insert(out.end(), data.begin(), data.end());
        AppendSegment(out, {0xFF, {}});
    }
    AppendSegment(out, {0xC0, {8, 0, 16, 0, 16, 3, 1, 0x22, 0, 2, 0x11, 1, 3, 0x11, 1}});
    AppendSegment(out, {0xC4, RandomBytes(rng, 29)});
    const bool acrossBuffer = Pick(rng, 3) == 0;
    // Sometimes the scan opens with a marker pair split by the buffer's edge.
    if (acrossBuffer && Pick(rng, 2) == 0) AppendSegment(out, {0xFE, Bytes(FILE_BUFFER_SIZE - 1 - 18 - out.size(), 'c')});
    AppendSegment(out, {0xDA, {3, 1, 0, 2, 0x11, 3, 0x11, 0, 0x3F, 0}});
    Bytes scan = acrossBuffer ? ScanAcrossBuffer(rng, out.size()) : ScanData(rng, size_t(200 + Pick(rng, 2000)));
    out.insert(out.end(), scan.begin(), scan.end());
    out.insert(out.end(), {0xFF, 0xD9});
    return out;
}

Bytes JpegOf(const std::vector<Ifd> &chain, const std::vector<Ifd> &subs, const std::vector<Bytes> &blobs)
{
    std::mt19937 rng{5};
    return CameraJpeg(chain.empty() ? Bytes{} : Layout({false, chain, subs, blobs}), rng);
}

Bytes BigEndianNote()
{
    const Bytes note = {'Z', 'N', 'o', 't', 'e', 0, 0, 3, 0, 1, 0, 3, 0, 0, 0, 1, 1, 2, 0, 0, 0, 2, 0, 3, 0, 0, 0, 3,
                        0, 0, 0, 0, 0, 3, 0, 5, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 1, 2, 3, 4, 5, 6, 0, 0, 0, 7, 0, 0, 0, 9};
    Bytes block = Layout({true, {{PointerTo(34665, 0)}}, {{Typed(37500, 7, uint32_t(note.size()), note)}}, {}});
    const uint32_t at = uint32_t(block.size() - note.size());  // the block's last value
    Patch32(block, at + 28, at + 48, true);
    Patch32(block, at + 40, at + 54, true);
    return Jpeg({{0xE1, ExifPayload(block)}, {0xFE, {'n'}}}, {});
}

Bytes ThumbnailBytes(size_t size, uint8_t seed)
{
    static const Bytes frame = {0xFF, 0xC4, 0, 3, 0, 0xFF, 0xC0, 0, 17, 8, 0, 120, 0, 160, 3, 1, 0x22, 0, 2, 0x11, 1, 3, 0x11, 1};
    Bytes out(size < 4 ? 4 : size, 0);
    for (size_t i = 0; i < out.size(); i++) out[i] = uint8_t((i * 7 + seed) % 0xFE);
    out[0] = 0xFF, out[1] = 0xD8;
    if (out.size() >= frame.size() + 4) std::copy(frame.begin(), frame.end(), out.begin() + 2);
    out[out.size() - 2] = 0xFF, out[out.size() - 1] = 0xD9;
    return out;
}

Block RandomBlock(std::mt19937 &rng, bool tiffFile)
{
    Block block;
    block.bigEndian = Pick(rng, 2) == 1;
    std::vector<uint16_t> plain = PlainTagPool(rng);
    block.chain.push_back(RandomIfd(rng, plain, 10));
    Ifd &ifd0 = block.chain[0];
    if (Pick(rng, 10) < 7) {
        std::vector<uint16_t> exifPool(std::begin(kExifTableTags), std::end(kExifTableTags));
        exifPool.insert(exifPool.end(), {42032, 42033, 59932});
        block.subs.push_back(RandomIfd(rng, exifPool, 8));
        ifd0.push_back(PointerTo(34665, int(block.subs.size()) - 1));
        if (Pick(rng, 2) == 0) {
            block.subs.push_back({Ascii(1, "R98"), Typed(2, 7, 4, {'0', '1', '0', '0'})});
            block.subs[block.subs.size() - 2].push_back(PointerTo(40965, int(block.subs.size()) - 1));
        }
    }
    if (!block.subs.empty() && Pick(rng, 4) == 0) {
        // A GPS pointer of no IFD pointer's form, whose value happens to be
        // the Exif IFD's offset.
        Entry odd = PointerTo(34853, 0);
        if (Pick(rng, 2) == 0) {
            odd.count = 0;
        } else {
            odd.type = 3;
        }
        ifd0.push_back(odd);
    } else if (Pick(rng, 2) == 0) {
        std::vector<uint16_t> gpsPool;
        for (uint16_t tag = 0; tag < 32; tag++) gpsPool.push_back(tag);
        block.subs.push_back(RandomIfd(rng, gpsPool, 8));
        ifd0.push_back(PointerTo(34853, int(block.subs.size()) - 1));
    }
    if (tiffFile) {
        ifd0.erase(std::remove_if(ifd0.begin(), ifd0.end(), [](const Entry &e) { return e.tag == 258 || e.tag == 256 || e.tag == 257; }),
                   ifd0.end());
        AddStrips(block, ifd0, rng);
    }
    int next = Pick(rng, 3);
    if (next == 1 || (next == 2 && !tiffFile)) block.chain.push_back(ThumbnailIfd(block, rng, tiffFile));
    if (next == 2 && tiffFile) {
        Ifd page = {Long(254, 0)};
        AddStrips(block, page, rng);
        block.chain.push_back(page);
    }
    for (Ifd &ifd : block.chain) SortIfd(ifd);
    for (Ifd &ifd : block.subs) SortIfd(ifd);
    return block;
}
