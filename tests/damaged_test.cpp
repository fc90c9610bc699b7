#include <gtest/gtest.h>

#include "support/files.h"
#include "support/oracle.h"
#include "support/tree_records.h"

namespace {

Bytes Generated(int seed, bool tiff)
{
    std::mt19937 rng{uint32_t(seed)};
    Block block = RandomBlock(rng, tiff);
    return tiff ? Layout(block) : CameraJpeg(Layout(block), rng);
}

TEST(DamagedFiles, CutShortAnywhere)
{
    for (int seed = 1; seed <= 12; seed++) {
        for (bool tiff : {false, true}) {
            Bytes file = Generated(seed, tiff);
            for (size_t cut = 1; cut < file.size(); cut += 1 + cut / 8) {
                CheckDamaged(Bytes(file.begin(), file.begin() + long(cut)), "cut at " + std::to_string(cut));
            }
        }
    }
}

struct Patch {
    uint32_t pos;
    uint32_t value;
    int width;  // 4 or 2
};

struct Hostile {
    const char *name;
    std::vector<Patch> patches;
    std::vector<uint32_t> found;  // of 271, 270, 33434, 36867
};

// IFD 0 with Make and the Exif pointer, IFD 1 with a description, the Exif
// IFD with a rational and a date: 134 bytes. Fields the cases overwrite: in
// IFD 0 (at 8) Make's count (14) and offset (18), the pointer's type (24)
// and offset (30), the link (34); IFD 1 (at 46) and its link (60); in the
// Exif IFD (at 76) the counts of its entries (82, 94), the first's offset (86).
Block Fixture(bool bigEndian)
{
    return {bigEndian, {{Ascii(271, "Camera"), PointerTo(34665, 0)}, {Ascii(270, "Description")}},
            {{Rational(33434, 1, 250), Ascii(36867, "2020:01:01 10:00:00")}}, {}};
}

const Hostile kHostile[] = {
    {"untouched", {}, {271, 270, 33434, 36867}},
    {"a chain that loops back", {{60, 8, 4}}, {271, 270, 33434, 36867}},
    {"IFD 0 linked to itself", {{34, 8, 4}}, {271, 33434, 36867}},
    {"offsets with the top bit set", {{18, 0x80000020, 4}, {34, 0x8000002E, 4}}, {33434, 36867}},
    {"an Exif pointer with the top bit set", {{30, 0xFFFFFFF0, 4}}, {271, 270}},
    {"a first IFD offset with the top bit set", {{4, 0x80000008, 4}}, {}},
    {"counts larger than the stream", {{14, 0xFFFFFFFF, 4}, {82, 0x20000001, 4}, {94, 1000000, 4}}, {270}},
    {"values behind the end", {{18, 130, 4}, {86, 0x7FFFFFFF, 4}}, {270, 36867}},
    {"IFDs behind the end", {{34, 0x7FFFFFF0, 4}, {30, 0x00FFFFF0, 4}}, {271}},
    {"a link to the last offset 31 bits name", {{34, 0x7FFFFFFF, 4}}, {271, 33434, 36867}},
    {"a link to the end of the block", {{34, 134, 4}}, {271, 33434, 36867}},
    {"a value as large as the block", {{14, 134, 4}}, {270, 33434, 36867}},
    {"type 0 ends the chain", {{24, 0, 2}}, {271}},
    {"an entry count with its top bit set", {{46, 0x8001, 2}}, {271, 33434, 36867}},
};

Bytes Patched(const Block &block, const Hostile &c)
{
    Bytes bytes = Layout(block);
    for (const Patch &p : c.patches) {
        if (p.width == 4) Patch32(bytes, p.pos, p.value, block.bigEndian);
        if (p.width == 2) {
            bytes[p.pos] = uint8_t(block.bigEndian ? p.value >> 8 : p.value);
            bytes[p.pos + 1] = uint8_t(block.bigEndian ? p.value : p.value >> 8);
        }
    }
    return bytes;
}

std::vector<uint32_t> FoundByReader(const std::string &path)
{
    ReaderPtr reader(zRExifBeginRead(path.c_str()));
    std::vector<uint32_t> found;
    for (uint32_t tag : {271u, 270u, 33434u, 36867u}) {
        ExifTagValue value = {};
        if (reader != nullptr && zRExifGetTag(reader.get(), tag, &value) == 0) found.push_back(tag);
    }
    return found;
}

// The reader gives what lies where the file says, and nothing it would have
// to guess; the load keeps what the raw reading keeps.
TEST(HostileFields, ReaderAnswersOnlyWhatTheFileHolds)
{
    for (bool bigEndian : {false, true}) {
        Block block = Fixture(bigEndian);
        ASSERT_EQ(134u, Layout(block).size());
        ASSERT_EQ(76u, IfdOffset(block, 2));
        for (const Hostile &c : kHostile) {
            Bytes tiff = Patched(block, c);
            std::mt19937 rng{1};
            for (const Bytes &file : {tiff, CameraJpeg(tiff, rng)}) {
                std::string label = std::string(c.name) + (file == tiff ? " in a TIFF" : " in a JPEG") +
                                    (bigEndian ? ", big-endian" : "");
                TempDir dir;
                EXPECT_EQ(c.found, FoundByReader(dir.Write("photo", file))) << label;
                CheckDamaged(file, label);
            }
        }
    }
}

Bytes TiffOfIfds(size_t count, size_t entries)
{
    Block block;
    for (size_t i = 0; i < count; i++) {
        Ifd ifd;
        for (size_t k = 0; k < entries; k++) ifd.push_back(Short(uint16_t(270 + k), uint16_t(i)));
        block.chain.push_back(ifd);
    }
    return Layout(block);
}

// An IFD holds 100 entries at most; a chain is followed for 1024 IFDs, by
// the load and the reader alike: IFD 1023 is the last one whose tags count.
TEST(Limits, EntriesPerIfdAndIfdsPerChain)
{
    CheckDamaged(TiffOfIfds(1, 100), "100 entries");
    CheckDamaged(TiffOfIfds(1, 101), "101 entries");
    Bytes chain = TiffOfIfds(1030, 1);
    CheckDamaged(chain, "1030 IFDs");
    TempDir dir;
    ReaderPtr reader(zRExifBeginRead(dir.Write("chain.tif", chain).c_str()));
    ExifTagValue value = {};
    ASSERT_EQ(0, zRExifGetTag(reader.get(), 270, &value));
    EXPECT_EQ((Bytes{0xFF, 0x03}), ValueBytes(value));
}

}  // namespace
