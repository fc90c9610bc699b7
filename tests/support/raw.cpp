#include "support/raw.h"

#include <algorithm>
#include <cstring>
#include <iomanip>
#include <set>

namespace {

constexpr int64_t kBudgetExtra = 1 << 20;

// A TIFF block read from base to the end of the file: values may lie behind
// the segment that holds the block, as they may for a load.
struct TiffReader {
    const Bytes &file;
    int64_t base;
    bool be = false;
    int64_t *budget;
    RawFile &raw;
    int64_t segment = -1;  // the block's size in its APP1, which bounds the reader's values
    bool seenExif = false, seenGps = false, seenInterop = false;

    int64_t Size() const { return int64_t(file.size()) - base; }
    bool Has(int64_t at, int64_t n) const { return at >= 0 && at + n <= Size(); }
    uint32_t U16(int64_t at) const
    {
        const uint8_t *p = &file[size_t(base + at)];
        return be ? (p[0] << 8) | p[1] : p[0] | (p[1] << 8);
    }
    uint32_t U32(int64_t at) const
    {
        return be ? (U16(at) << 16) | U16(at + 2) : U16(at) | (U16(at + 2) << 16);
    }

    // The value as it leaves the file: zeros where the file ends, host order.
    Bytes Fetch(int64_t at, int64_t size, uint32_t type) const
    {
        Bytes out(size_t(size), 0);
        for (int64_t i = 0; i < size && Has(at + i, 1); i++) out[size_t(i)] = file[size_t(base + at + i)];
        int unit = TypeSize(type) == 2 ? 2 : TypeSize(type) >= 4 ? 4 : 1;
        for (size_t i = 0; be && unit > 1 && i + unit <= out.size(); i += size_t(unit)) {
            std::reverse(out.begin() + long(i), out.begin() + long(i) + unit);
        }
        return out;
    }

    // 1 on success, 0 when the load would fail; *link gets the next offset.
    bool Ifd(int64_t at, const std::string &place, uint32_t *link)
    {
        if (!Has(at, 2)) return false;
        uint32_t count = U16(at);
        if (count == 0 || count > 100) return false;
        int64_t avail = Size() - at - 2;
        uint32_t complete = uint32_t(std::min<int64_t>(count, avail < 0 ? 0 : avail / 12));
        if (complete < count) raw.cutIfds.push_back(place);
        struct Raw { uint16_t tag, type; uint32_t count; int64_t field; };
        std::vector<Raw> kept;
        for (uint32_t i = 0; i < complete; i++) {
            int64_t e = at + 2 + 12 * int64_t(i);
            Raw read = {uint16_t(U16(e)), uint16_t(U16(e + 2)), U32(e + 4), e + 8};
            if (read.type == 0) return false;
            int size = TypeSize(read.type);
            int64_t bytes = int64_t(read.count) * size;
            bool outOfLine = size != 0 && read.count > 0 && (size == 8 || bytes > 4);
            if (!outOfLine || bytes <= Size()) kept.push_back(read);
        }
        if (kept.empty()) return false;
        for (const Raw &entry : kept) {
            if (!Entry(entry.tag, entry.type, entry.count, entry.field, place)) return false;
        }
        *link = complete == count && Has(at + 2 + 12 * int64_t(count), 4) ? U32(at + 2 + 12 * int64_t(count)) : 0;
        return true;
    }

    bool Entry(uint16_t tag, uint16_t type, uint32_t count, int64_t field, const std::string &place)
    {
        int size = TypeSize(type);
        int64_t bytes = int64_t(count) * size;
        RawTag record = {place, tag, type, count, {}};
        bool inEntry = size != 0 && size != 8 && bytes <= 4;
        uint32_t offset = U32(field);
        if (inEntry) {
            record.value = Fetch(field, bytes, size == 1 ? 1 : type);
        } else if (size != 0 && count > 0) {
            if (bytes > *budget) return false;
            *budget -= bytes;
            record.value = Fetch(offset, bytes, type);
            if (!Has(offset, bytes) || (segment >= 0 && offset + bytes > segment)) raw.cutValues.insert(raw.tags.size());
        }
        raw.tags.push_back(record);
        bool exifNote = tag == 37500 && !inEntry && place.find("IFD") == 0 && place.find("/34665") != std::string::npos;
        if (exifNote && Has(offset, bytes) && raw.note.empty()) Note(offset, bytes);
        bool *seen = tag == 34665 ? &seenExif : tag == 34853 ? &seenGps : tag == 40965 ? &seenInterop : nullptr;
        if (seen == nullptr || *seen || (type != 4 && type != 13) || count != 1) return true;
        *seen = true;
        uint32_t target = offset;
        if (inEntry && size == 2) target = U16(field) | (U16(field + 2) << 16);
        if (inEntry && size == 1) std::memcpy(&target, &file[size_t(base + field)], 4);
        // A sub-IFD's link is not followed, but one with its top bit set
        // fails the load like any offset of that kind.
        uint32_t link = 0;
        return int64_t(target) < Size() && Ifd(target, place + "/" + std::to_string(tag), &link) && link <= 0x7FFFFFFFu;
    }

    void Note(int64_t note, int64_t size)
    {
        for (int64_t start : {0, 6, 8, 10, 12, 14, 18}) {
            int64_t e = note + start + 2;
            uint32_t count = start + 2 <= size ? U16(note + start) : 0;
            if (count == 0 || count > 512 || start + 2 + 12 * int64_t(count) > size) continue;
            bool known = true;
            for (uint32_t i = 0; i < count; i++) known = known && TypeSize(U16(e + 12 * i + 2)) != 0;
            for (uint32_t i = 0; known && i < count; i++, e += 12) {
                uint16_t type = uint16_t(U16(e + 2));
                int64_t bytes = int64_t(U32(e + 4)) * TypeSize(type), offset = U32(e + 8);
                bool inEntry = TypeSize(type) != 8 && bytes <= 4, inNote = offset >= note && offset + bytes <= note + size;
                raw.note.push_back({"note", uint16_t(U16(e)), type, U32(e + 4),
                                    inEntry ? Fetch(e + 8, bytes, type) : inNote ? Fetch(offset, bytes, type) : Bytes()});
            }
            if (known) return;
        }
    }

    bool Block(const std::string &prefix, bool *bigEndian)
    {
        if (!Has(0, 8) || file[size_t(base)] != file[size_t(base + 1)]) return false;
        if (file[size_t(base)] != 'I' && file[size_t(base)] != 'M') return false;
        be = file[size_t(base)] == 'M';
        if (prefix.empty()) *bigEndian = be;
        if (*budget < 0) *budget = 4 * Size() + kBudgetExtra;
        std::set<uint32_t> visited;
        uint32_t offset = U32(4);
        for (int index = 0; offset != 0; index++) {
            if (offset > 0x7FFFFFFFu) return false;
            if (offset >= Size() || !visited.insert(offset).second || visited.size() > 1024) break;
            if (!Ifd(offset, prefix + "IFD" + std::to_string(index), &offset)) return false;
        }
        return true;
    }
};

bool IsDataCode(int code)
{
    return code == 0 || (code >= 0xD0 && code <= 0xD7) || code == 0xDC || code == 0xDE || code == 0xDF;
}

bool IsAppCode(int code)
{
    return code >= 0xE0 && code <= 0xEF;
}

struct JpegWalk {
    const Bytes &file;
    RawFile &raw;
    int64_t budget = -1;
    int64_t runStart = 0, runLength = 0;
    bool scanStarted = false, eoiSeen = false;
    int blocks = 0;

    void Count(int64_t start, int64_t n)
    {
        if (runLength == 0) runStart = start;
        runLength += n;
    }
    void Flush()
    {
        if (runLength > 0) raw.segments.push_back({161, runStart, runLength});
        runLength = 0;
    }
    int64_t Length(int64_t at) const { return (int64_t(file[size_t(at)]) << 8) | file[size_t(at + 1)]; }

    // The position to go on from; -1 ends the walk, -2 fails the load.
    int64_t App(int code, int64_t at)
    {
        if (at + 6 > int64_t(file.size())) return -1;
        int64_t length = Length(at);
        raw.segments.push_back({code, at + 2, length - 2});
        if (code == 0xE1 && std::memcmp(&file[size_t(at + 2)], "Exif", 4) == 0 && length - 2 >= 14) {
            TiffReader tiff{file, at + 8, false, &budget, raw, length - 8};
            std::string prefix = blocks == 0 ? "" : "APP1#" + std::to_string(blocks) + ":";
            blocks++;
            if (!tiff.Block(prefix, &raw.bigEndian)) return -2;
        }
        return at + length;
    }

    bool Walk()
    {
        int64_t pos = 0, size = int64_t(file.size());
        while (pos < size) {
            if (file[size_t(pos++)] != 0xFF) {
                Count(pos - 1, 1);
                continue;
            }
            if (pos >= size) break;
            int code = file[size_t(pos++)];
            if (code != 0xD8 && code != 0xD9 && !IsAppCode(code) && (IsDataCode(code) || scanStarted)) {
                Count(pos - 2, 2);
            } else if (code == 0xD9) {
                Flush();
                raw.segments.push_back({0xD9, 0, 0});
                eoiSeen = true;
            } else {
                Flush();
                if (code == 0xD8) {
                    raw.segments.push_back({0xD8, 0, 0});
                } else if (IsAppCode(code)) {
                    pos = App(code, pos);
                    if (pos == -2) return false;
                    if (pos == -1) break;
                } else {
                    if (pos + 2 > size) break;
                    scanStarted |= code == 0xDA;
                    raw.segments.push_back({code, pos + 2, Length(pos) - 2});
                    pos += Length(pos);
                }
            }
        }
        if (!eoiSeen) Flush();
        return true;
    }
};

const RawTag *Find(const std::vector<RawTag> &tags, const std::string &place, uint16_t tag)
{
    for (const RawTag &t : tags) {
        if (t.place == place && t.tag == tag) return &t;
    }
    return nullptr;
}

Bytes Slice(const Bytes &file, int64_t base, uint32_t offset, uint32_t size)
{
    if (base + int64_t(offset) + size > int64_t(file.size())) return {};
    return Bytes(file.begin() + long(base + offset), file.begin() + long(base + offset + size));
}

uint32_t Number(const RawTag &tag, size_t k)
{
    const uint8_t *p = tag.value.data();
    if (tag.type == 3 && 2 * k + 2 <= tag.value.size()) return p[2 * k] | p[2 * k + 1] << 8;
    if (tag.type == 4 && 4 * k + 4 <= tag.value.size()) {
        return p[4 * k] | p[4 * k + 1] << 8 | p[4 * k + 2] << 16 | uint32_t(p[4 * k + 3]) << 24;
    }
    return 0;
}

// How many numbers a SHORT or LONG tag holds.
size_t Numbers(const RawTag *tag)
{
    if (tag == nullptr || (tag->type != 3 && tag->type != 4)) return 0;
    return std::min<size_t>(tag->count, tag->value.size() / (tag->type == 3 ? 2 : 4));
}

// Each chain IFD's strips (else tiles), one after the other.
void ReadImages(const Bytes &file, RawFile &raw)
{
    for (int i = 0;; i++) {
        std::string place = "IFD" + std::to_string(i);
        if (std::none_of(raw.tags.begin(), raw.tags.end(), [&](const RawTag &t) { return t.place == place; })) return;
        const RawTag *offsets = Find(raw.tags, place, 273), *counts = Find(raw.tags, place, 279);
        if (offsets == nullptr || counts == nullptr) offsets = Find(raw.tags, place, 324), counts = Find(raw.tags, place, 325);
        Bytes image;
        for (size_t k = 0; k < Numbers(offsets) && k < Numbers(counts); k++) {
            Bytes strip = Slice(file, 0, Number(*offsets, k), Number(*counts, k));
            image.insert(image.end(), strip.begin(), strip.end());
        }
        raw.images.push_back(image);
    }
}

int64_t FirstExifBlock(const RawFile &raw)
{
    for (const RawSegment &s : raw.segments) {
        if (s.code == 0xE1 && s.size >= 14) return s.offset + 6;
    }
    return 0;
}

}  // namespace

std::ostream &operator<<(std::ostream &out, const RawTag &tag)
{
    out << tag.place << " " << tag.tag << " type " << tag.type << " count " << tag.count << " [";
    for (size_t i = 0; i < tag.value.size() && i < 24; i++) out << (i ? " " : "") << int(tag.value[i]);
    return out << (tag.value.size() > 24 ? " ...]" : "]");
}

std::ostream &operator<<(std::ostream &out, const RawSegment &segment)
{
    return out << "marker " << segment.code << " at " << segment.offset << " size " << segment.size;
}

uint32_t FirstNumber(const RawTag &tag)
{
    return Number(tag, 0);
}

RawFile ReadRaw(const Bytes &file)
{
    RawFile raw;
    if (file.size() < 2) return raw;
    if (file[0] == 0xFF && file[1] == 0xD8) {
        raw.format = 1;
        JpegWalk walk{file, raw};
        raw.loads = walk.Walk();
    } else if (file[0] == file[1] && (file[0] == 'I' || file[0] == 'M')) {
        raw.format = 2;
        int64_t budget = -1;
        TiffReader tiff{file, 0, false, &budget, raw};
        raw.loads = tiff.Block("", &raw.bigEndian);
        ReadImages(file, raw);
    }
    const RawTag *offset = Find(raw.tags, "IFD1", 513), *length = Find(raw.tags, "IFD1", 514);
    if (offset != nullptr && length != nullptr) {
        raw.thumbnail = Slice(file, raw.format == 1 ? FirstExifBlock(raw) : 0, FirstNumber(*offset), FirstNumber(*length));
    }
    return raw;
}

std::vector<RawTag> AsSaved(const std::vector<RawTag> &tags, bool bigEndian)
{
    static const std::set<uint16_t> dropped = {288, 289, 330, 519, 520, 521};
    static const std::set<uint16_t> offsets = {34665, 34853, 40965, 273, 279, 324, 325, 513, 514};
    std::vector<RawTag> out;
    for (RawTag tag : tags) {
        if (dropped.count(tag.tag)) continue;
        if (bigEndian && tag.tag == 37500) tag.value.clear();
        if (offsets.count(tag.tag)) {
            tag.value.clear();
            if (tag.tag != 34665 && tag.tag != 34853 && tag.tag != 40965) tag.type = 0;
        }
        out.push_back(tag);
    }
    return out;
}
