#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <vector>

#include "edit/tag_lookup.h"
#include "support/tree_builder.h"
#include "tree/walk.h"

namespace {

// A caller's record, filled by zExifGetTag; data is a malloc block then.
struct Got {
    int result;
    ExifTagValue value;
    std::vector<uint8_t> bytes;
};

Got Get(CExifDoc *doc, uint32_t tag, int ifd)
{
    Got got{0, {0, 0, nullptr}, {}};
    got.result = zExifGetTag(doc, tag, &got.value, ifd);
    if (got.result == 0 && got.value.data != nullptr) {
        size_t size = size_t(ValueDataSize(got.value));
        const uint8_t *data = static_cast<const uint8_t *>(got.value.data);
        got.bytes.assign(data, data + size);
        std::free(got.value.data);
    }
    return got;
}

const std::vector<uint8_t> kGpsVersion = {2, 2, 0, 0};

// IFD 0: Make, Orientation, the Exif IFD, the GPS IFD with tags 0 to 3; IFD 1:
// the thumbnail's tags and a tag that IFD 0 lacks.
std::vector<IfdDef> CameraIfds()
{
    return {
        {Ascii(271, "Cam"), Short(274, 6),
         Pointer(34665, {Rational(33434, 1, 250), Ascii(36867, "2020:01:02 03:04:05")}),
         Pointer(34853, {Bytes(0, TIFF_BYTE, kGpsVersion), Ascii(1, "N"), Rational(2, 48, 1), Ascii(3, "E")})},
        {Short(259, 6), Long(305, 77), Long(513, 0), Long(514, 0)},
    };
}

struct SizeCase {
    uint32_t type;
    uint32_t count;
    int64_t size;
};

class ValueSize : public ::testing::TestWithParam<SizeCase> {};

TEST_P(ValueSize, FollowsTheTypeClass)
{
    ExifTagValue value{GetParam().type, GetParam().count, nullptr};
    EXPECT_EQ(GetParam().size, ValueDataSize(value));
}

INSTANTIATE_TEST_SUITE_P(Classes, ValueSize,
                         ::testing::Values(SizeCase{1, 3, 3}, SizeCase{3, 3, 6}, SizeCase{4, 3, 12},
                                           SizeCase{5, 3, 24}, SizeCase{12, 3, 24}, SizeCase{13, 3, 3},
                                           SizeCase{0, 3, 3}, SizeCase{12, 0xFFFFFFFFu, 0x7FFFFFFF8LL}));

TEST(GetTag, TableTagsComeFromTheExifIfdWhateverTheIndex)
{
    auto doc = JpegDoc(CameraIfds());
    for (int ifd : {0, 1, 7, -1}) {
        Got got = Get(doc.get(), 33434, ifd);
        ASSERT_EQ(0, got.result) << ifd;
        EXPECT_EQ(uint32_t(TIFF_RATIONAL), got.value.type);
        EXPECT_EQ(1u, got.value.count);
        EXPECT_EQ(Rational(0, 1, 250).bytes, got.bytes);
    }
}

// The Exif IFD search starts at the pointer tag: an orientation in front of
// it is out of sight, a table tag behind it in IFD 0 is found.
TEST(GetTag, TableSearchRunsFromThePointerOn)
{
    auto doc = JpegDoc({{Short(274, 6), Pointer(34665, {Ascii(36867, "x")}), Short(41728, 3)}});
    EXPECT_EQ(-1, Get(doc.get(), 274, 0).result);
    Got behind = Get(doc.get(), 41728, 0);
    ASSERT_EQ(0, behind.result);
    EXPECT_EQ(Short(0, 3).bytes, behind.bytes);
}

TEST(GetTag, OtherTagsAreSearchedFromTheNamedIfdOnward)
{
    auto doc = JpegDoc(CameraIfds());
    EXPECT_EQ(0, Get(doc.get(), 305, 0).result);
    EXPECT_EQ(0, Get(doc.get(), 305, 1).result);
    EXPECT_EQ(0, Get(doc.get(), 271, 0).result);
    EXPECT_EQ(-1, Get(doc.get(), 271, 1).result);
    EXPECT_EQ(-1, Get(doc.get(), 271, 2).result);
    EXPECT_EQ(-1, Get(doc.get(), 271, -1).result);
}

// The numbers of the header, IFD, count and link nodes are also GPS tag
// numbers: the lookup goes past the structural nodes to the real tags.
TEST(GetTag, StructuralNumbersFindRealTagsOnly)
{
    auto doc = JpegDoc(CameraIfds());
    Got version = Get(doc.get(), 0, 0);
    ASSERT_EQ(0, version.result);
    EXPECT_EQ(kGpsVersion, version.bytes);
    Got latRef = Get(doc.get(), 1, 0);
    ASSERT_EQ(0, latRef.result);
    EXPECT_EQ(Ascii(0, "N").bytes, latRef.bytes);
    Got lat = Get(doc.get(), 2, 0);
    ASSERT_EQ(0, lat.result);
    EXPECT_EQ(uint32_t(TIFF_RATIONAL), lat.value.type);
    EXPECT_EQ(Rational(0, 48, 1).bytes, lat.bytes);
    Got lonRef = Get(doc.get(), 3, 1);
    EXPECT_EQ(-1, lonRef.result);
    EXPECT_EQ(0, Get(doc.get(), 3, 0).result);
    EXPECT_EQ(-1, Get(doc.get(), NODE_NEXT_IFD, 0).result);
    EXPECT_EQ(-1, Get(doc.get(), NODE_NEXT_IFD, 1).result);
}

TEST(GetTag, StructuralNumbersInATiffTree)
{
    auto bare = TiffDoc({{Short(256, 8)}});
    for (uint32_t number : {1u, 2u, 3u, 60u}) EXPECT_EQ(-1, Get(bare.get(), number, 0).result) << number;

    IfdDef entries = {Short(1, 11), Short(60, 12), Short(70, 13), Short(80, 14)};
    auto doc = TiffDoc({entries});
    for (const EntryDef &entry : entries) {
        Got got = Get(doc.get(), uint32_t(entry.tag), 0);
        ASSERT_EQ(0, got.result) << entry.tag;
        EXPECT_EQ(entry.bytes, got.bytes) << entry.tag;
    }
}

struct ValueCase {
    const char *name;
    EntryDef entry;
};

void PrintTo(const ValueCase &c, std::ostream *os)
{
    *os << c.name;
}

class ValueClass : public ::testing::TestWithParam<ValueCase> {};

// Whether the value stood in the entry or in a block, the caller gets its
// bytes in host order and owns them.
TEST_P(ValueClass, ComesBackAsStored)
{
    EntryDef entry = GetParam().entry;
    auto doc = TiffDoc({{entry}});
    Got got = Get(doc.get(), uint32_t(entry.tag), 0);
    ASSERT_EQ(0, got.result);
    EXPECT_EQ(entry.type, got.value.type);
    EXPECT_EQ(entry.count, got.value.count);
    EXPECT_EQ(entry.bytes, got.bytes);
}

INSTANTIATE_TEST_SUITE_P(
    Classes, ValueClass,
    ::testing::Values(ValueCase{"BytesInEntry", Bytes(700, TIFF_BYTE, {1, 2, 3})},
                      ValueCase{"TwoShortsInEntry", Bytes(530, TIFF_SHORT, {1, 0, 2, 0})},
                      ValueCase{"ThreeShortsInBlock", Bytes(258, TIFF_SHORT, {8, 0, 8, 0, 8, 0})},
                      ValueCase{"Double", Bytes(700, TIFF_DOUBLE, {0, 0, 0, 0, 0, 0, 0xF0, 0x3F})}),
    [](const ::testing::TestParamInfo<ValueCase> &p) { return p.param.name; });

TEST(GetTag, UnknownTypeGivesTypeAndCountAndLeavesTheData)
{
    auto doc = TiffDoc({{EntryDef{700, 99, 2, {1, 2, 3, 4}, {}}}});
    int sentinel = 0;
    ExifTagValue value{0, 0, &sentinel};
    ASSERT_EQ(0, zExifGetTag(doc.get(), 700, &value, 0));
    EXPECT_EQ(99u, value.type);
    EXPECT_EQ(2u, value.count);
    EXPECT_EQ(&sentinel, value.data);
}

TEST(GetTag, ValueOfNoBytesIsNull)
{
    auto doc = TiffDoc({{EntryDef{270, TIFF_ASCII, 0, {}, {}}, EntryDef{282, TIFF_RATIONAL, 0, {}, {}}}});
    for (uint32_t number : {270u, 282u}) {
        int sentinel = 0;
        ExifTagValue value{0, 0, &sentinel};
        ASSERT_EQ(0, zExifGetTag(doc.get(), number, &value, 0));
        EXPECT_EQ(0u, value.count);
        EXPECT_EQ(nullptr, value.data);
    }
}

TEST(GetTag, RefusesMissingDocumentOrRecord)
{
    ExifTagValue value{0, 0, nullptr};
    EXPECT_EQ(-1, zExifGetTag(nullptr, 271, &value, 0));
    auto doc = JpegDoc(CameraIfds());
    EXPECT_EQ(-1, zExifGetTag(doc.get(), 271, nullptr, 0));
    EXPECT_EQ(-1, Get(doc.get(), 271 + 65536, 0).result);
}

// A JPEG without an APP1 and an Exif APP1 without a tree have nothing to find.
TEST(GetTag, NothingToFindWithoutABlock)
{
    auto plain = JpegDoc({});
    EXPECT_EQ(-1, Get(plain.get(), 36867, 0).result);
    EXPECT_EQ(-1, Get(plain.get(), 271, 0).result);

    auto childless = TreeBuilder(FORMAT_JPEG).Marker(0xD8).Marker(0xE1, "Exif").Marker(0xD9).Take();
    childless->m_exifMarker = static_cast<CMarker *>(childless->m_root->m_next);
    EXPECT_EQ(-1, Get(childless.get(), 36867, 0).result);
    EXPECT_EQ(nullptr, childless->m_exifMarker->m_child);
}

// The copy needs more memory than the process may have: the lookup fails and
// the caller's record keeps what it held. Run in a child process, whose
// address space is capped.
TEST(GetTag, FailedCopyLeavesTheRecord)
{
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the sanitizer's allocator doesn't return null";
#else
    constexpr int32_t kSize = 256 << 20;
    auto doc = TiffDoc({{Short(256, 1)}});
    CTag *big = AsTag(FindNode(doc->m_root, 256));
    big->m_type = TIFF_BYTE;
    big->m_count = kSize;
    big->m_data = new unsigned char[kSize];
    big->m_size = kSize;
    pid_t child = fork();
    ASSERT_NE(-1, child);
    if (child == 0) {
        rlimit limit{64u << 20, 64u << 20};
        setrlimit(RLIMIT_AS, &limit);
        int sentinel = 0;
        ExifTagValue value{7, 8, &sentinel};
        int result = zExifGetTag(doc.get(), 256, &value, 0);
        bool untouched = value.type == 7 && value.count == 8 && value.data == &sentinel;
        _exit(result == -1 && untouched ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(0, WEXITSTATUS(status));
#endif
}

}  // namespace
