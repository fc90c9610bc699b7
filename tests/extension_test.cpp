#include <gtest/gtest.h>

#include <map>

#include "support/files.h"
#include "support/tree_records.h"

namespace {

// A wanted scan of the Exif IFD that meets a tag with a slot of its own
// replaces the chain's value, unless that value went to a caller: a pointer
// handed out stays valid and keeps what it showed.
TEST(ReaderSlots, AWantedScanReplacesWhatWasNotHandedOut)
{
    struct Case {
        const char *name;
        std::vector<uint32_t> asked;
        uint16_t orientation;
        std::string make;
    };
    const Case cases[] = {
        {"nothing handed out", {33434}, 6, "Zq"},
        {"the orientation handed out", {274, 33434}, 1, "Zq"},
        {"both handed out", {271, 274, 33434}, 1, "Ab"},
    };
    TempDir dir;
    std::string path = dir.Write("slots.jpg", JpegOf({{Ascii(271, "Ab"), Short(274, 1), PointerTo(34665, 0)}},
                                                     {{Ascii(271, "Zq"), Short(274, 6), Rational(33434, 1, 250)}}));
    for (const Case &c : cases) {
        ReaderPtr reader(zRExifBeginRead(path.c_str()));
        std::map<uint32_t, void *> handedOut;
        for (uint32_t tag : c.asked) {
            ExifTagValue value{};
            ASSERT_EQ(0, zRExifGetTag(reader.get(), tag, &value)) << c.name;
            handedOut[tag] = value.data;
        }
        ExifTagValue orientation{}, make{};
        ASSERT_EQ(0, zRExifGetTag(reader.get(), 274, &orientation));
        ASSERT_EQ(0, zRExifGetTag(reader.get(), 271, &make));
        EXPECT_EQ(c.orientation, *static_cast<uint16_t *>(orientation.data)) << c.name;
        EXPECT_EQ(c.make, static_cast<const char *>(make.data)) << c.name;
        if (handedOut.count(274)) EXPECT_EQ(handedOut[274], orientation.data) << c.name;
        if (handedOut.count(271)) EXPECT_EQ(handedOut[271], make.data) << c.name;
    }
}

}  // namespace
