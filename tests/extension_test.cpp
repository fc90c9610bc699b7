#include <gtest/gtest.h>

#include <cstdlib>
#include <map>

#include "support/files.h"
#include "support/tree_records.h"

namespace {

// A wanted scan of the Exif IFD that meets a tag with a slot of its own
// replaces the chain's value, unless that value went to a caller: a pointer
// handed out stays valid and keeps what it showed.
TEST(ReaderSlots, AWantedScanReplacesWhatWasNotHandedOut)
{
    TempDir dir;
    std::string path = dir.Write("slots.jpg", JpegOf({{Ascii(271, "Ab"), Short(274, 1), PointerTo(34665, 0)}},
                                                     {{Ascii(271, "Zq"), Short(274, 6), Rational(33434, 1, 250)}}));
    // The tags asked first, and what 274 and 271 answer then.
    const std::pair<std::vector<uint32_t>, std::string> cases[] = {
        {{33434}, "6 Zq"}, {{274, 33434}, "1 Zq"}, {{271, 274, 33434}, "1 Ab"}};
    for (const auto &[asked, answers] : cases) {
        ReaderPtr reader(zRExifBeginRead(path.c_str()));
        std::map<uint32_t, void *> handedOut;
        for (uint32_t tag : asked) {
            ExifTagValue value{};
            ASSERT_EQ(0, zRExifGetTag(reader.get(), tag, &value)) << answers;
            handedOut[tag] = value.data;
        }
        ExifTagValue orientation{}, make{};
        ASSERT_EQ(0, zRExifGetTag(reader.get(), 274, &orientation));
        ASSERT_EQ(0, zRExifGetTag(reader.get(), 271, &make));
        EXPECT_EQ(answers, std::to_string(*static_cast<uint16_t *>(orientation.data)) + " " + static_cast<const char *>(make.data));
        if (handedOut.count(274)) EXPECT_EQ(handedOut[274], orientation.data) << answers;
        if (handedOut.count(271)) EXPECT_EQ(handedOut[271], make.data) << answers;
    }
}

std::vector<std::string> TagsOf(const std::string &path, int ifd)
{
    ReaderPtr reader(zRExifBeginRead(path.c_str()));
    TifTagList *list = nullptr;
    std::vector<std::string> tags;
    if (zRExifGetTagList(reader.get(), ifd, &list) != 0) return tags;
    for (int32_t i = 0; i < list->count; i++) {
        const TifTagItem &item = *list->items[i];
        Bytes bytes = ValueBytes({item.type, item.count, item.data});
        tags.push_back(std::to_string(item.tag) + " " + std::to_string(item.type) + " " + std::string(bytes.begin(), bytes.end()));
    }
    zExifFreeTagList(list);
    return tags;
}

// A TIFF's Exif data goes over with its Interop IFD, which takes the place of
// the target's own; a number that is no Exif tag stays behind.
TEST(Tool, CopiesTheInteropIfdOfATiff)
{
    TempDir dir;
    const std::vector<Ifd> subs = {{Rational(33434, 1, 250), PointerTo(40965, 1), Short(50000, 1)}, {Ascii(1, "R98"), Short(4097, 640)}};
    const std::string source = dir.Write("source.tif", Layout({false, {{Short(274, 1), PointerTo(34665, 0)}}, subs, {}}));
    const Bytes targets[] = {Layout({false, {{Short(274, 1)}}, {}, {}}),
                             Layout({false, {{PointerTo(34665, 0)}}, {{PointerTo(40965, 1)}, {Ascii(1, "THM"), Short(4098, 9)}}, {}})};
    for (const Bytes &target : targets) {
        const std::string into = dir.Write("into.tif", target), out = dir.Path("out.tif");
        const std::string command = "'" + std::string(ZEXIF_TOOL_PATH) + "' copy-exif '" + source + "' '" + into + "' -o '" + out + "'";
        ASSERT_EQ(0, std::system(command.c_str()));
        EXPECT_EQ(TagsOf(source, IFD_INTEROP), TagsOf(out, IFD_INTEROP));
        EXPECT_EQ(2u, TagsOf(out, IFD_EXIF).size());
    }
}

}  // namespace
