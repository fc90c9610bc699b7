#include <gtest/gtest.h>

#include <functional>

#include "support/fault_injection.h"
#include "support/tree_builder.h"
#include "support/tree_check.h"

namespace {

// The tree and everything the document records about it.
std::string Snapshot(const CExifDoc &doc)
{
    return TreeDump(doc) + "|" + std::to_string(reinterpret_cast<uintptr_t>(doc.m_exifMarker)) + "|" +
           std::to_string(reinterpret_cast<uintptr_t>(doc.m_exifIfdTag)) + "|" +
           std::to_string(reinterpret_cast<uintptr_t>(doc.m_thumbTag)) + "|" + std::to_string(doc.m_hasExif) + "|" +
           std::to_string(doc.m_bigEndian);
}

struct AllocCase {
    const char *name;
    std::function<std::unique_ptr<CExifDoc>()> make;
    int32_t tag;
    int ifd;
};

void PrintTo(const AllocCase &c, std::ostream *os)
{
    *os << c.name;
}

class RefusedAllocation : public ::testing::TestWithParam<AllocCase> {};

// Each allocation of a set is refused in turn: the call fails and the
// document stays as it was, until enough memory lets it through.
TEST_P(RefusedAllocation, LeavesTheDocumentAsItWas)
{
    EntryDef entry = Rational(GetParam().tag, 1, 3);
    ExifTagValue value = ValueOf(entry);
    for (int refuse = 0;; refuse++) {
        auto doc = GetParam().make();
        doc->m_bigEndian = 1;
        std::string before = Snapshot(*doc);
        FaultWindow window(FAULT_ALLOC, uint64_t(refuse) + 1);
        int result = zExifSetTag(doc.get(), uint32_t(GetParam().tag), &value, GetParam().ifd);
        bool refused = window.Close();
        if (!refused) {
            ASSERT_EQ(0, result);
            EXPECT_GT(refuse, 0);
            EXPECT_EQ("", TreeFaults(*doc, true));
            break;
        }
        ASSERT_EQ(-1, result) << refuse;
        EXPECT_EQ(before, Snapshot(*doc)) << refuse;
    }
}

std::unique_ptr<CExifDoc> ChildlessExifApp1()
{
    auto doc = TreeBuilder(FORMAT_JPEG).Marker(0xD8).Marker(0xE1, "Exif").Marker(0xD9).Take();
    doc->m_exifMarker = static_cast<CMarker *>(doc->m_root->m_next);
    return doc;
}

INSTANTIATE_TEST_SUITE_P(
    Structures, RefusedAllocation,
    ::testing::Values(
        AllocCase{"NewApp1", [] { return JpegDoc({}); }, 282, 0},
        AllocCase{"NewApp1WithExifIfd", [] { return JpegDoc({}); }, 33434, 0},
        AllocCase{"BlockInChildlessApp1", ChildlessExifApp1, 282, 0},
        AllocCase{"ExifBlockInChildlessApp1", ChildlessExifApp1, 33434, 0},
        AllocCase{"NewIfd1", [] { return JpegDoc({{Short(256, 1)}}); }, 282, 1},
        AllocCase{"NewIfd0WithExifIfd", [] { return JpegDoc({{Long(513, 0)}}); }, 33434, 0},
        AllocCase{"NewExifIfd", [] { return JpegDoc({{Short(256, 1)}}); }, 33434, 0},
        AllocCase{"TiffExifIfd", [] { return TiffDoc({{Short(256, 1)}}); }, 33434, 0},
        AllocCase{"ChainBelowChildlessPointer", [] { return JpegDoc({{Pointer(34665, {})}}); }, 33434, 0},
        AllocCase{"EntryInIfd", [] { return TiffDoc({{Short(256, 1)}}); }, 282, 0},
        AllocCase{"EntryInExifIfd", [] { return JpegDoc({{Pointer(34665, {Short(37383, 1)})}}); }, 33434, 0},
        AllocCase{"ReplacedValue", [] { return TiffDoc({{Short(282, 1)}}); }, 282, 0}),
    [](const ::testing::TestParamInfo<AllocCase> &p) { return p.param.name; });

}  // namespace
