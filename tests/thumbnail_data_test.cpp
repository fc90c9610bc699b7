#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>

#include "edit/thumbnail_edit.h"
#include "streams/stream.h"
#include "support/case_name.h"
#include "support/tag_steps.h"
#include "support/thumb_jpeg.h"
#include "support/tree_check.h"
#include "tree/walk.h"

namespace {

// A document, the bytes its source stream reads, and the thumbnail it holds.
struct Source {
    std::unique_ptr<InMemoryExifJpeg> exif;
    std::unique_ptr<CExifDoc> own;
    std::vector<uint8_t> old;
    std::vector<uint8_t> tiffFile;  // what a TIFF document's stream reads

    CExifDoc &Doc() { return exif ? *exif->doc : *own; }
    // The bytes that the thumbnail's offset counts in.
    std::vector<uint8_t> Block() const
    {
        if (!exif) return tiffFile;
        const std::vector<uint8_t> &file = exif->jpeg.m_bytes;
        return std::vector<uint8_t>(file.begin() + exif->app1->m_offset + 6, file.end());
    }
};
using MakeSource = std::function<std::unique_ptr<Source>()>;
using Tags = std::vector<std::vector<HandTag>>;

using Change = void (*)(InMemoryExifJpeg &);

// An InMemoryExifJpeg, which change may cut or mark.
MakeSource Exif(size_t payload, const std::vector<uint8_t> &old, const Tags &ifds, Change change = nullptr)
{
    return [=] {
        auto source = std::make_unique<Source>();
        source->exif = std::make_unique<InMemoryExifJpeg>(payload, old, ifds);
        source->old = old;
        if (change != nullptr) change(*source->exif);
        return source;
    };
}

const std::vector<HandTag> kIfd0 = {{271, 2, 4, 0}};
const std::vector<HandTag> kPage = {{256, 3, 1, 640}, {257, 3, 1, 480}};
const std::vector<HandTag> kMakerNote = {{37500, 7, 60000, 0}};
const std::vector<HandTag> kLengthFirst = {{514, 4, 1, 200}, {513, 4, 1, kOldThumbOffset}};
const std::vector<HandTag> kExifInIfd1 = {{259, 3, 1, 6}, {34665, 4, 1, 0}};
const std::vector<HandTag> kReduced = {{254, 4, 1, 1}, {256, 3, 1, 160}};
const std::vector<HandTag> kFullSize = {{254, 4, 1, 0}, {256, 3, 1, 320}};

// A 431-byte file with a 200-byte thumbnail at offset 100 of its TIFF block,
// which starts at byte 30; the last segment, a DQT, lies behind the APP1, so
// the source ends at offset 401 of the block.
MakeSource OldThumb(Change change = nullptr, uint32_t offset = kOldThumbOffset, uint32_t size = 200)
{
    return Exif(400, FakeThumbnail(200, 3), {kIfd0, {{513, 4, 1, offset}, {514, 4, 1, size}}}, change);
}

MakeSource Tiff(const Tags &ifds, void (*change)(CExifDoc &) = nullptr)
{
    return [=] {
        auto source = std::make_unique<Source>();
        source->own = std::make_unique<CExifDoc>();
        source->own->m_format = FORMAT_TIFF;
        HangTiffBlock(*source->own, nullptr, ifds);
        if (change != nullptr) change(*source->own);
        return source;
    };
}

void DropFirstIfd(CNode *header)
{
    CNode *ifd0 = header->m_next;
    header->m_next = ifd0->m_next;
    ifd0->m_next = nullptr;
    DeleteTree(ifd0);
}

void WithoutApp1(InMemoryExifJpeg &file)
{
    zExifRemoveMarker(file.doc.get(), 0xE1, 0);
}

// A 60,000-byte maker note that the source's small APP1 never had.
void GrowMakerNote(InMemoryExifJpeg &file)
{
    std::vector<uint8_t> maker(60000, 7);
    AsTag(FindNode(file.app1, 37500))->SetData(maker.data(), int32_t(maker.size()));
}

// The document, the size of the thumbnail set into it, the result, and the
// outline the tree must have then ("" where it stays as it was).
struct SetCase {
    const char *name;
    MakeSource make;
    size_t size;
    int result;
    std::string outline = "";
    std::vector<TagStep> steps = {};
};

SetCase Sets(const char *name, const MakeSource &make, size_t size, int result, const std::string &outline = "",
             const std::vector<TagStep> &steps = {})
{
    return {name, make, size, result, outline, steps};
}

class SetThumbnail : public ::testing::TestWithParam<SetCase> {};

// A thumbnail that is set is all the document hands out from then on, with
// nothing but the JPEG bit and without the source; one that is refused leaves
// tree and thumbnail as they were.
TEST_P(SetThumbnail, ChangesTheTreeOnlyWhenItFits)
{
    auto source = GetParam().make();
    CExifDoc &doc = source->Doc();
    std::string before = Outline(doc);
    std::vector<uint8_t> thumb = FakeThumbnail(GetParam().size, 2);
    ExifBuffer buffer = BufferOf(thumb);
    ASSERT_EQ(GetParam().result, zExifSetThumbnailData(&doc, &buffer));
    EXPECT_EQ("", TreeFaults(doc, false) + ShortcutFaults(doc));
    if (GetParam().result != 0) {
        EXPECT_EQ(before, Outline(doc));
        EXPECT_EQ(source->old, GetThumbnail(&doc));
        return;
    }
    EXPECT_EQ(GetParam().outline.empty() ? before : GetParam().outline, Outline(doc));
    EXPECT_EQ(uint32_t(THUMB_TYPE_JPEG), zExifGetThumbType(&doc));
    EXPECT_EQ(thumb.size(), FindThumbLengthTag(&doc)->m_value);
    EXPECT_EQ("", RunSteps(doc, GetParam().steps));
    if (doc.m_stream != nullptr) DropSource(doc);
    EXPECT_EQ(thumb, GetThumbnail(&doc));
}

const char *const kThumbIfd = "2:1[3:6 259 282 283 296 513 514 60]";
const char *const kTiffThumbIfd = "1 2:0[3:2 256 257 60] 2:1[3:7 254 259 282 283 296 513 514 60]";

std::string NewApp1()
{
    return std::string("216 224'JFIF' 225'Exif'[1 2:0[3:3 282 283 296 60] ") + kThumbIfd + "] 219 217";
}

std::string InApp1(const std::string &ifd0)
{
    return "216 224'JFIF' 225'Exif'[1 2:0[" + ifd0 + "] " + kThumbIfd + "] 219 217";
}

// A JPEG without an Exif APP1 gets one where a tag would make it, for a
// thumbnail within a bound of its own. An Exif APP1 gets the thumbnail's IFD 1,
// and IFD 0 when it has none. The payload, old thumbnail out and new one in,
// stays within its bound: 6,900 - 3,000 + 60,000 is exactly it, and so is
// 3,900 + 60,000 for a block without thumbnail. What the tree holds counts,
// not what the source had.
INSTANTIATE_TEST_SUITE_P(
    Jpeg, SetThumbnail,
    ::testing::Values(
        Sets("AtTheBound", Exif(100, {}, {}, WithoutApp1), size_t(THUMB_NEW_LIMIT), 0, NewApp1()),
        Sets("PastTheBound", Exif(100, {}, {}, WithoutApp1), size_t(THUMB_NEW_LIMIT) + 1, -1),
        Sets("ReplacedAtTheBound", Exif(60000, FakeThumbnail(3000, 1), {kIfd0, OldThumbIfd(3000)}), 6900, 0),
        Sets("ReplacedPastTheBound", Exif(60000, FakeThumbnail(3000, 1), {kIfd0, OldThumbIfd(3000)}), 6901, -1),
        Sets("ReplacedOfAnyType", OldThumb([](InMemoryExifJpeg &f) { f.doc->m_thumbType = 0x801; }), 300, 0),
        Sets("AddedAtTheBound", Exif(60000, {}, {kIfd0}), 3900, 0, InApp1("3:1 271 60")),
        Sets("AddedPastTheBound", Exif(60000, {}, {kIfd0}), 3901, -1),
        Sets("RebuiltIfd1", Exif(200, {}, {kIfd0, kExifInIfd1, kPage}), 500, 0, InApp1("3:1 271 60")),
        Sets("NewIfd0InFrontOfIfd1",
             Exif(200, {}, {kIfd0, kExifInIfd1}, [](InMemoryExifJpeg &f) { DropFirstIfd(f.app1->m_child); }), 500, 0,
             NewApp1()),
        Sets("BigTree", Exif(400, {}, {kMakerNote}, GrowMakerNote), 3000, 0, InApp1("3:1 37500 60")),
        Sets("BigTreePastTheBound", Exif(400, {}, {kMakerNote}, GrowMakerNote), 4000, -1),
        Sets("BigTreeWithThumbnail", Exif(400, FakeThumbnail(200), {kMakerNote, OldThumbIfd(200)}, GrowMakerNote), 4000,
             -1)),
    CaseName());

// A TIFF file's IFD 1 becomes the thumbnail's when it is a reduced image;
// another page moves up behind a new one, since the writer reaches each IFD
// by its index. Without IFD 0 there is no chain for a new IFD to join.
INSTANTIATE_TEST_SUITE_P(
    Tiff, SetThumbnail,
    ::testing::Values(Sets("ReducedIfd1", Tiff({kPage, kReduced}), 700, 0, kTiffThumbIfd, {Get(Long(254, 1), 1)}),
                      Sets("InFrontOfAnotherPage", Tiff({kPage, kFullSize, kIfd0}), 700, 0,
                           std::string(kTiffThumbIfd) + " 2:2[3:2 254 256 60] 2:3[3:1 271 60]"),
                      Sets("BehindASingleIfd", Tiff({kPage}), 700, 0, kTiffThumbIfd),
                      Sets("Ifd1WithTheExifPointer", Tiff({kPage, kExifInIfd1}), 70, 0, kTiffThumbIfd),
                      Sets("HeaderOnly", Tiff({}), 70, -1),
                      Sets("WithoutIfd0", Tiff({kPage, kFullSize}, [](CExifDoc &d) { DropFirstIfd(d.m_root); }), 70,
                           -1)),
    CaseName());

// The flags say what the tree holds, so a second set replaces the first in
// place.
TEST(SetThumbnail, ASecondReplacesTheFirst)
{
    auto source = Tiff({kPage})();
    for (size_t size : {700u, 90u}) {
        std::vector<uint8_t> thumb = FakeThumbnail(size, uint8_t(size));
        ExifBuffer buffer = BufferOf(thumb);
        ASSERT_EQ(0, zExifSetThumbnailData(&source->Doc(), &buffer));
        EXPECT_EQ(kTiffThumbIfd, Outline(source->Doc()));
        EXPECT_EQ(thumb, GetThumbnail(&source->Doc()));
    }
}

// Nothing is stored that would leave a tag 513 without bytes.
TEST(SetThumbnail, RefusesWhatIsNoThumbnail)
{
    auto source = OldThumb()();
    CExifDoc &doc = source->Doc();
    std::vector<uint8_t> thumb = FakeThumbnail(10);
    ExifBuffer empty{thumb.data(), 0};
    ExifBuffer noData{nullptr, 10};
    std::string before = Outline(doc);
    for (ExifBuffer *buffer : {&empty, &noData, static_cast<ExifBuffer *>(nullptr)}) {
        EXPECT_EQ(-1, zExifSetThumbnailData(&doc, buffer));
    }
    EXPECT_EQ(-1, zExifSetThumbnailData(nullptr, &empty));
    EXPECT_EQ(-1, zExifSetThumbDataEx(&doc, &empty, THUMB_TYPE_JPEG));
    EXPECT_EQ(before, Outline(doc));
    EXPECT_EQ(source->old, GetThumbnail(&doc));

    CExifDoc bare;
    bare.m_format = FORMAT_JPEG;
    ExifBuffer buffer = BufferOf(thumb);
    EXPECT_EQ(-1, zExifSetThumbnailData(&bare, &buffer));
    EXPECT_EQ(nullptr, bare.m_root);
    EXPECT_EQ(0, zExifIsThumbnailExist(nullptr));
    EXPECT_EQ(0u, zExifGetThumbType(nullptr));
}

// Where the document's thumbnail lies in its block; nothing for a size of 0.
struct ReadCase {
    const char *name;
    MakeSource make;
    uint32_t offset;
    uint32_t size;
};

ReadCase Reads(const char *name, const MakeSource &make, uint32_t offset = 0, uint32_t size = 0)
{
    return {name, make, offset, size};
}

class ReadThumbnail : public ::testing::TestWithParam<ReadCase> {};

// The thumbnail is read from inside the source, once: a copy serves after
// the source is gone. A failed read leaves no stale pointer for its caller.
TEST_P(ReadThumbnail, StaysInsideTheSource)
{
    auto source = GetParam().make();
    CExifDoc &doc = source->Doc();
    int32_t loaded = doc.m_thumbLoaded;
    static unsigned char stale[1];
    ExifBuffer out{stale, 99};
    if (GetParam().size == 0) {
        EXPECT_EQ(-1, zExifGetThumbnailData(&doc, &out));
        EXPECT_EQ(nullptr, out.data);
        EXPECT_EQ(0u, out.size);
        EXPECT_EQ(loaded, doc.m_thumbLoaded);
        return;
    }
    std::vector<uint8_t> block = source->Block();
    std::vector<uint8_t> thumb(block.begin() + GetParam().offset, block.begin() + GetParam().offset + GetParam().size);
    ASSERT_EQ(0, zExifGetThumbnailData(&doc, &out));
    EXPECT_EQ(thumb, BytesOf(out));
    std::free(out.data);
    EXPECT_EQ(1, doc.m_thumbLoaded);
    if (doc.m_stream != nullptr) DropSource(doc);
    EXPECT_EQ(thumb, GetThumbnail(&doc));
}

// A TIFF file of 600 bytes with a thumbnail at 300: its offsets count from
// the file's start.
std::unique_ptr<Source> TiffInMemory()
{
    auto source = Tiff({kIfd0, {{513, 4, 1, 300}, {514, 4, 1, 250}}})();
    source->tiffFile.assign(600, 0);
    std::vector<uint8_t> thumb = FakeThumbnail(250, 5);
    std::copy(thumb.begin(), thumb.end(), source->tiffFile.begin() + 300);
    CreateMemoryStream(&source->own->m_stream, source->tiffFile.data(), int32_t(source->tiffFile.size()));
    return source;
}

// A tag 513 that no APP1 holds has no block to count its offset in.
INSTANTIATE_TEST_SUITE_P(
    Places, ReadThumbnail,
    ::testing::Values(
        Reads("AsWritten", OldThumb(), kOldThumbOffset, 200),
        Reads("LengthTagInFront", Exif(400, FakeThumbnail(200, 3), {kIfd0, kLengthFirst}), kOldThumbOffset, 200),
        Reads("UpToTheFileEnd", OldThumb(nullptr, 100, 301), 100, 301),
        Reads("TiffFromTheFileStart", TiffInMemory, 300, 250), Reads("OffsetZero", OldThumb(nullptr, 0, 10)),
        Reads("SizeZero", OldThumb(nullptr, 100, 0)), Reads("OneBytePastTheEnd", OldThumb(nullptr, 100, 302)),
        Reads("HugeSize", OldThumb(nullptr, 100, 0x7FFFFFF0u)),
        Reads("NegativeOffset", OldThumb(nullptr, 0x80000000u, 10)),
        Reads("SizeWrapsTheOffset", OldThumb(nullptr, 0xFFFFFFF0u, 0x20)),
        Reads("NoLengthTag", Exif(400, FakeThumbnail(200), {kIfd0, {{513, 4, 1, 100}}})),
        Reads("NoThumbnailTag", OldThumb([](InMemoryExifJpeg &f) { f.doc->m_thumbTag = nullptr; })),
        Reads("NoSource", OldThumb([](InMemoryExifJpeg &f) { DropSource(*f.doc); })),
        Reads("LoadedWithoutBytes", OldThumb([](InMemoryExifJpeg &f) { f.doc->m_thumbLoaded = 1; })),
        Reads("OutsideAnApp1", Tiff({kIfd0, OldThumbIfd(200)}, [](CExifDoc &d) { d.m_format = FORMAT_JPEG; }))),
    CaseName());

// Only the type of the loaded thumbnail is served from memory; another type
// with the JPEG bit reads the source, which never overwrites a new thumbnail.
// Without a thumbnail nothing is served and the caller's record stays.
TEST(ThumbDataEx, ServesByType)
{
    auto source = OldThumb()();
    CExifDoc &doc = source->Doc();
    static unsigned char stale[1];
    ExifBuffer out{stale, 99};
    EXPECT_EQ(-1, zExifGetThumbDataEx(&doc, &out, 0x100));
    EXPECT_EQ(-1, zExifGetThumbDataEx(nullptr, &out, 0x800));
    EXPECT_EQ(stale, out.data);

    std::vector<uint8_t> replaced = FakeThumbnail(200, 8);
    ExifBuffer buffer = BufferOf(replaced);
    ASSERT_EQ(0, zExifSetThumbnailData(&doc, &buffer));
    for (uint32_t type : {0x800u, 0x801u}) {
        ASSERT_EQ(0, zExifGetThumbDataEx(&doc, &out, type));
        EXPECT_EQ(type == 0x800 ? replaced : source->old, BytesOf(out));
        std::free(out.data);
    }
    EXPECT_EQ(replaced, GetThumbnail(&doc));

    auto none = Exif(400, {}, {kIfd0})();
    out = {stale, 99};
    EXPECT_EQ(-1, zExifGetThumbDataEx(&none->Doc(), &out, 0x800));
    EXPECT_EQ(-1, zExifGetThumbnailData(&none->Doc(), &out));
    EXPECT_EQ(-1, zExifGetThumbnailData(nullptr, &out));
    EXPECT_EQ(stale, out.data);
}

// The APP1's payload in memory serves once the source is closed, as after a
// save; a thumbnail beyond the segment then has nowhere to come from.
TEST(ThumbDataEx, ReadsALoadedPayloadWithoutTheSource)
{
    auto source = OldThumb()();
    InMemoryExifJpeg &file = *source->exif;
    unsigned char *payload = nullptr;
    int32_t size = 0;
    ASSERT_EQ(1, file.app1->Load(file.doc->m_stream, &payload, &size));
    DropSource(*file.doc);
    ExifBuffer out{nullptr, 0};
    ASSERT_EQ(0, zExifGetThumbDataEx(file.doc.get(), &out, 0x801));
    EXPECT_EQ(source->old, BytesOf(out));
    std::free(out.data);

    AsTag(FindNode(file.app1, 514))->m_value = 295;
    EXPECT_EQ(-1, zExifGetThumbDataEx(file.doc.get(), &out, 0x801));
    EXPECT_EQ(nullptr, out.data);
}

}  // namespace
