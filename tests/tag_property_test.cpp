#include <gtest/gtest.h>

#include <iterator>
#include <random>
#include <tuple>

#include "edit/exif_ifd_tags.h"
#include "support/tag_steps.h"
#include "support/tree_check.h"
#include "tree/walk.h"

namespace {

constexpr int kSteps = 3000;
constexpr int kPhase = 150;

// Exif IFD tags, IFD 0 and 1 tags with the pointers and the thumbnail's, and
// small numbers that GPS tags and structural nodes share.
const uint32_t kTags[] = {33434, 36867, 37383, 41728, 274, 40965, 256, 270, 271, 305, 513, 514, 34665,
                          34853, 0,     1,     2,     3,   4,     59,  60,  61,  70,  80,  999, 65535};
const uint32_t kTypes[] = {1, 2, 3, 4, 5, 7, 9, 10, 12, 99};
const int kIfds[] = {0, 0, 0, 1, 1, 2, -1};

enum DocKind { JPEG_BARE, JPEG_CAMERA, TIFF_CAMERA, TIFF_TWO_IFDS };

std::unique_ptr<CExifDoc> MakeDoc(DocKind kind)
{
    IfdDef ifd0 = {Ascii(271, "Cam"), Short(274, 1),
                   Pointer(34665, {Rational(33434, 1, 250), Ascii(36867, "2020:01:02 03:04:05")}),
                   Pointer(34853, {Bytes(0, TIFF_BYTE, {2, 2, 0, 0}), Ascii(1, "N"), Rational(2, 48, 1)})};
    IfdDef ifd1 = {Short(259, 6), Long(513, 0), Long(514, 0)};
    switch (kind) {
    case JPEG_BARE:
        return JpegDoc({});
    case JPEG_CAMERA:
        return JpegDoc({ifd0, ifd1});
    case TIFF_CAMERA:
        return TiffDoc({ifd0});
    case TIFF_TWO_IFDS:
        return TiffDoc({{Short(256, 8), Short(257, 8)}, {Short(256, 4), Short(257, 4)}});
    }
    return nullptr;
}

struct Step {
    bool set;
    uint32_t tag;
    int ifd;
    EntryDef entry;
};

// Phases that mostly set alternate with phases that mostly delete, so that
// trees grow and then empty down to the cascades that remove whole blocks.
Step RandomStep(std::mt19937 &rng, int index)
{
    auto pick = [&rng](size_t size) { return size_t(rng() % size); };
    size_t setsInTen = (index / kPhase) % 2 == 0 ? 7 : 2;
    Step step{pick(10) < setsInTen, kTags[pick(std::size(kTags))], kIfds[pick(std::size(kIfds))], {}};
    uint32_t type = kTypes[pick(std::size(kTypes))];
    uint32_t count = uint32_t(pick(7));
    int size = TiffTypeSize(type);
    std::vector<uint8_t> bytes(size_t(count) * size_t(size == 0 ? 1 : size));
    for (uint8_t &byte : bytes) byte = uint8_t(rng());
    step.entry = EntryDef{int32_t(step.tag), type, count, bytes, {}};
    return step;
}

void CollectTags(CNode *first, std::vector<CTag *> &tags)
{
    for (CNode *node = first; node != nullptr; node = node->m_next) {
        if (CTag *tag = dynamic_cast<CTag *>(node)) tags.push_back(tag);
        CollectTags(node->m_child, tags);
    }
}

uint32_t IfdIndexOf(const CNode *node)
{
    while (node != nullptr && !(node->m_id == NODE_IFD && dynamic_cast<const CTag *>(node) == nullptr)) {
        node = node->m_parent;
    }
    return node != nullptr ? node->m_value : 0;
}

// Most deletions aim at a tag the tree holds, named by its IFD's index.
void AimAtATag(CExifDoc &doc, std::mt19937 &rng, Step &step)
{
    std::vector<CTag *> tags;
    CollectTags(doc.m_root, tags);
    if (tags.empty() || rng() % 4 == 0) return;
    CTag *tag = tags[rng() % tags.size()];
    step.tag = uint32_t(tag->m_id);
    step.ifd = int(IfdIndexOf(tag));
}

int CountMarkers(const CExifDoc &doc, int32_t id)
{
    int count = 0;
    for (CNode *node = doc.m_root; node != nullptr; node = node->m_next) count += node->m_id == id;
    return count;
}

// The index of the first IFD: a TIFF lookup from there sees the whole tree in
// the order of the search that a set makes.
int FirstIfdIndex(CExifDoc &doc)
{
    CNode *ifd = FindNode(doc.m_root, NODE_IFD);
    return ifd != nullptr ? int(ifd->m_value) : 0;
}

// Where a get must find what a set put: the Exif IFD for table tags, else
// the IFD named, except that a JPEG's first APP1 opens with IFD 0.
int LookupIfd(CExifDoc &doc, const Step &step, bool madeApp1)
{
    if (IsExifIfdTag(step.tag)) return step.ifd;
    if (doc.m_format == FORMAT_TIFF) return FirstIfdIndex(doc);
    return madeApp1 ? 0 : step.ifd;
}

class RandomEdits : public ::testing::TestWithParam<std::tuple<DocKind, unsigned>> {};

// After every step the tree is whole: counts equal the tags of their chain,
// chains stay sorted, parents and shortcuts point where they should, and a
// set tag reads back as set.
TEST_P(RandomEdits, KeepTheTreeWhole)
{
    auto doc = MakeDoc(std::get<0>(GetParam()));
    std::mt19937 rng(std::get<1>(GetParam()));
    for (int i = 0; i < kSteps; i++) {
        Step step = RandomStep(rng, i);
        if (!step.set) AimAtATag(*doc, rng, step);
        int app1Before = CountMarkers(*doc, 0xE1);
        int result = 0;
        if (step.set) {
            ExifTagValue value = ValueOf(step.entry);
            result = zExifSetTag(doc.get(), step.tag, &value, step.ifd);
        } else {
            result = zExifDelTag(doc.get(), step.tag, step.ifd);
        }
        std::string where = "step " + std::to_string(i) + (step.set ? " set " : " del ") + std::to_string(step.tag) +
                            " ifd " + std::to_string(step.ifd);
        ASSERT_EQ("", TreeFaults(*doc, true)) << where;
        ASSERT_EQ("", ShortcutFaults(*doc)) << where;
        if (step.set && result == 0) {
            bool madeApp1 = CountMarkers(*doc, 0xE1) > app1Before;
            ASSERT_EQ("", RunSteps(*doc, {Get(step.entry, LookupIfd(*doc, step, madeApp1))})) << where;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomEdits,
                         ::testing::Combine(::testing::Values(JPEG_BARE, JPEG_CAMERA, TIFF_CAMERA, TIFF_TWO_IFDS),
                                            ::testing::Values(1u, 7u, 42u, 2024u)));

}  // namespace
