#include <gtest/gtest.h>

#include <cstdlib>

#include "edit/ifd_chain.h"
#include "reader/tif_tag_list.h"
#include "support/files.h"
#include "support/tree_records.h"
#include "tree/document.h"

namespace {

const Entry kMake = Ascii(271, "Cam");
const Entry kDescription = Ascii(270, "A view");
const Entry kDate = Ascii(36867, "2020:01:02 03:04:05");
const Entry kExposure = Rational(33434, 1, 250);
const Entry kExifPointer = Long(34665, 0);

RawTag At(const std::string &place, const Entry &e)
{
    return {place, e.tag, e.type, e.count, e.value};
}

Bytes JpegWithoutApp0()
{
    return Jpeg({{0xDB, Bytes(65, 1)}, {0xDA, {1, 1, 0, 0, 0x3F, 0}}}, {1, 2, 3});
}

const Entry kStripOffsets = OffsetsOf(273, {0});
const Entry kStripCounts = Long(279, 40);

// A big-endian TIFF file with an image of one strip, which IFD 0 names.
Bytes TiffOf(const std::vector<Ifd> &chain)
{
    return Layout({true, chain, {}, {Bytes(40, 7)}});
}

struct Step {
    bool set;
    Entry entry;
    int ifd;
    int result;
};
Step Set(const Entry &entry, int ifd = 0, int result = 0)
{
    return {true, entry, ifd, result};
}
Step Del(uint16_t tag, int ifd = 0, int result = 0)
{
    return {false, Typed(tag, 0, 0, {}), ifd, result};
}

struct EditCase {
    const char *name;
    Bytes file;
    std::vector<Step> steps;
    std::vector<RawTag> tags;
    std::vector<int> leadingMarkers = {};  // the first top-level codes, where they matter
};

const EditCase kEdits[] = {
    {"a JPEG without Exif gets an APP1 behind APP0 and IFD 0 first", JpegOf({}), {Set(kDescription, 1)},
     {At("IFD0", kDescription)}, {0xD8, 0xE0, 0xE1, 0xDB}},
    {"an Exif APP1 without a block gets one",
     Jpeg({{0xE0, {'J', 'F', 'I', 'F', 0}}, {0xE1, {'E', 'x', 'i', 'f', 0, 0, 'I', 'I'}}, {0xDB, Bytes(65, 1)}}, {}),
     {Set(kMake)}, {At("IFD0", kMake)}, {0xD8, 0xE0, 0xE1, 0xDB}},
    {"an IFD 0 emptied in front of IFD 1 comes back for the Exif IFD", JpegOf({{kMake}, {Short(300, 1)}}),
     {Del(271), Set(kDate)}, {At("IFD0", kExifPointer), At("IFD0/34665", kDate), At("IFD1", Short(300, 1))}},
    {"without APP0 the APP1 goes behind SOI", JpegWithoutApp0(), {Set(kDate, 3)},
     {At("IFD0", kExifPointer), At("IFD0/34665", kDate)}, {0xD8, 0xE1, 0xDB}},
    {"new tags go at their sorted place", JpegOf({{kDescription, Short(272, 1)}}),
     {Set(kMake), Set(Short(100, 2)), Set(Short(65535, 3)), Set(Typed(300, 65535, 1, {}))},
     {At("IFD0", Short(100, 2)), At("IFD0", kDescription), At("IFD0", kMake), At("IFD0", Short(272, 1)),
      At("IFD0", Typed(300, 65535, 1, {})), At("IFD0", Short(65535, 3))}},
    {"a set replaces a value where it stands", JpegOf({{kDescription, Short(272, 1)}}),
     {Set(Ascii(270, "A much longer view")), Set(Typed(272, 4, 2, {1, 0, 0, 0, 2, 0, 0, 0}))},
     {At("IFD0", Ascii(270, "A much longer view")), At("IFD0", Typed(272, 4, 2, {1, 0, 0, 0, 2, 0, 0, 0}))}},
    {"Exif-table tags go to the Exif IFD whatever IFD is named",
     JpegOf({{kMake, PointerTo(34665, 0)}}, {{kExposure}}), {Set(kDate, 1), Set(Short(274, 6), 0)},
     {At("IFD0", kMake), At("IFD0", kExifPointer), At("IFD0/34665", Short(274, 6)), At("IFD0/34665", kExposure),
      At("IFD0/34665", kDate)}},
    {"a JPEG's IFD is made one past the last and no further", JpegOf({{kMake}}),
     {Set(kDescription, 2, -1), Set(kDescription, 1), Set(Short(300, 1), 2)},
     {At("IFD0", kMake), At("IFD1", kDescription), At("IFD2", Short(300, 1))}},
    {"an IFD 0 holding the thumbnail moves behind a new IFD 0 for the Exif IFD",
     JpegOf({{Short(259, 6), OffsetsOf(513, {0}), Long(514, 60)}}, {}, {ThumbnailBytes(60)}), {Set(kDate)},
     {At("IFD0", kExifPointer), At("IFD0/34665", kDate), At("IFD1", Short(259, 6)), At("IFD1", Long(513, 0)),
      At("IFD1", Long(514, 60))}},
    {"a GPS tag is found below IFD 0 though its number is a node's",
     JpegOf({{PointerTo(34853, 0)}}, {{Ascii(1, "N"), Rational(2, 48, 1)}}), {Set(Ascii(1, "S")), Set(Ascii(3, "E"))},
     {At("IFD0", Ascii(3, "E")), At("IFD0", Long(34853, 0)), At("IFD0/34853", Ascii(1, "S")),
      At("IFD0/34853", Rational(2, 48, 1))}},
    {"tags set into new chains can be deleted again", JpegOf({}),
     {Set(kDate), Set(Short(300, 1)), Del(36867), Set(kExposure), Del(300)},
     {At("IFD0", kExifPointer), At("IFD0/34665", kExposure)}},
    {"deleting the last tag of IFD 1 takes the IFD, and the Exif IFD stays found",
     JpegOf({{kMake, PointerTo(34665, 0)}, {kDescription}}, {{kDate}}), {Del(270, 1), Set(kExposure)},
     {At("IFD0", kMake), At("IFD0", kExifPointer), At("IFD0/34665", kExposure), At("IFD0/34665", kDate)}},
    {"deleting the Exif IFD's last tag takes its pointer, and an APP1 left empty",
     JpegOf({{PointerTo(34665, 0)}}, {{kDate}}), {Del(36867)}, {}, {0xD8, 0xE0, 0xDB}},
    {"an IFD 0 emptied through the Exif IFD in front of IFD 1 leaves the APP1",
     JpegOf({{PointerTo(34665, 0)}, {kDescription}}, {{kDate}}), {Del(36867), Set(kMake)},
     {At("IFD0", kMake), At("IFD1", kDescription)}},
    {"a tag that isn't there is not deleted", JpegOf({{kMake, PointerTo(34665, 0)}}, {{kDate}}),
     {Del(305, 0, -1), Del(33434, 0, -1), Del(271, 1, -1)},
     {At("IFD0", kMake), At("IFD0", kExifPointer), At("IFD0/34665", kDate)}},
    {"refused values change nothing", JpegOf({{kMake}}),
     {Set(Typed(305, 0, 1, {1, 0, 0, 0}), 0, -1), Set(Typed(270, 2, 5, {}), 0, -1), Set(Ascii(271, "x"), -5, -1)},
     {At("IFD0", kMake)}},
    {"a TIFF makes no IFD, and finds a tag in any IFD", TiffOf({{kMake, kStripOffsets, kStripCounts}, {kDescription}}),
     {Set(Short(300, 1), 2, -1), Set(Ascii(270, "Elsewhere"), 0)},
     {At("IFD0", kMake), At("IFD0", kStripOffsets), At("IFD0", kStripCounts), At("IFD1", Ascii(270, "Elsewhere"))}},
    {"a TIFF's Exif IFD is made below IFD 0", TiffOf({{kMake, kStripOffsets, kStripCounts}}), {Set(kDate, 1)},
     {At("IFD0", kMake), At("IFD0", kStripOffsets), At("IFD0", kStripCounts), At("IFD0", kExifPointer),
      At("IFD0/34665", kDate)}},
};

// Each step gives its result, a failed one leaves the tree as it was; the
// tree ends as the case says, and a save writes that tree.
TEST(TagEdits, ShapeTheTreeAsTheFormatWants)
{
    for (const EditCase &c : kEdits) {
        TempDir dir;
        DocPtr doc(zExifLoadFile(dir.Write("photo", c.file).c_str()));
        ASSERT_NE(nullptr, doc) << c.name;
        for (const Step &step : c.steps) {
            std::vector<RawTag> before = TreeTags(*doc);
            ExifTagValue value = {step.entry.type, step.entry.count,
                                  step.entry.value.empty() ? nullptr : const_cast<uint8_t *>(step.entry.value.data())};
            int result = step.set ? zExifSetTag(doc.get(), step.entry.tag, &value, step.ifd)
                                  : zExifDelTag(doc.get(), step.entry.tag, step.ifd);
            EXPECT_EQ(step.result, result) << c.name << ": tag " << step.entry.tag;
            if (result != 0) EXPECT_EQ(before, TreeTags(*doc)) << c.name << ": tag " << step.entry.tag;
        }
        EXPECT_EQ(AsSaved(c.tags), AsSaved(TreeTags(*doc))) << c.name;
        std::vector<int> codes = MarkerCodes(*doc);
        codes.resize(c.leadingMarkers.size());
        EXPECT_EQ(c.leadingMarkers, codes) << c.name;
        ASSERT_EQ(0, zExifSaveFile(doc.get(), dir.Path("saved").c_str())) << c.name;
        EXPECT_EQ(AsSaved(c.tags), AsSaved(ReadRaw(ReadFile(dir.Path("saved"))).tags)) << c.name;
    }
}

// A tag that is found takes the value it is given, type and count included,
// and gives it back; nothing a caller passed is kept.
TEST(TagEdits, ValuesComeBackAsTheyWereSet)
{
    TempDir dir;
    DocPtr doc(zExifLoadFile(dir.Write("photo.jpg", JpegOf({})).c_str()));
    for (uint16_t type = 1; type <= 13; type++) {
        for (uint32_t count : {0u, 1u, 2u, 3u, 4u, 5u}) {
            Bytes bytes(count * size_t(TypeSize(type)));
            for (size_t i = 0; i < bytes.size(); i++) bytes[i] = uint8_t(i * 31 + type);
            ExifTagValue value = {type, count, bytes.data()};
            ASSERT_EQ(0, zExifSetTag(doc.get(), 700, &value, 0));
            bytes.assign(bytes.size(), 0xEE);
            ExifTagValue got = {0, 0, &value};
            ASSERT_EQ(0, zExifGetTag(doc.get(), 700, &got, 0));
            EXPECT_EQ(type, got.type);
            EXPECT_EQ(count, got.count);
            for (size_t i = 0; i < bytes.size(); i++) bytes[i] = uint8_t(i * 31 + type);
            EXPECT_EQ(bytes, ValueBytes(got)) << "type " << type << " count " << count;
            if (count == 0 && type <= 12) EXPECT_EQ(nullptr, got.data) << "a value of no bytes is null";
            if (got.data != &value) std::free(got.data);
            if (type == 13) EXPECT_EQ(&value, got.data) << "a type outside 1 to 12 has no bytes to hand out";
        }
    }
    EXPECT_EQ(-1, zExifGetTag(nullptr, 271, nullptr, 0));
    EXPECT_EQ(-1, zExifSetTag(doc.get(), 271, nullptr, 0));
    ExifTagValue huge = {4, 0x40000000, &huge};
    EXPECT_EQ(-1, zExifSetTag(doc.get(), 700, &huge, 0)) << "a value larger than a file may be";
    EXPECT_EQ(-1, zExifDelTag(nullptr, 271, 0));
}

// An entry of a number the chain holds already goes in front of it.
TEST(TagEdits, AnEqualNumberKeepsItsPlaceBehindTheNewEntry)
{
    TempDir dir;
    DocPtr doc(zExifLoadFile(dir.Write("photo.tif", TiffOf({{kStripOffsets, kStripCounts, Short(300, 1), Short(300, 2), Short(310, 3)}})).c_str()));
    CNode *first = doc->FindIfd(0)->m_child;
    CNode *place = FindInsertPoint(first, 300);
    EXPECT_EQ(279, place->m_id);
    EXPECT_EQ(300, place->m_next->m_id);
    EXPECT_EQ(310, FindInsertPoint(first, 301)->m_next->m_id);
}

// A list handed to a TIFF brings an Exif tag of a type that has no bytes.
TEST(TagEdits, AListBringsAnExifTagWithoutBytes)
{
    TempDir dir;
    DocPtr doc(zExifLoadFile(dir.Write("photo.tif", TiffOf({{kStripOffsets, kStripCounts}})).c_str()));
    TifTagList *list = AllocTifTagList(1);
    AddTifTagItem(list, AllocTifTagItem(0));
    *list->items[0] = {41729, 13, 1, nullptr};
    ASSERT_EQ(0, zExifSetTIFExifData(doc.get(), list));
    EXPECT_NE(nullptr, doc->FindExifTag(41729));
}

}  // namespace
