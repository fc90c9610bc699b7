#include <gtest/gtest.h>

#include "support/files.h"
#include "support/tree_records.h"

namespace {

Bytes ExifSegment(const Ifd &ifd0, const std::vector<Ifd> &subs = {})
{
    Bytes payload = ExifPayload(Layout({false, {ifd0}, subs, {}}));
    Bytes segment = {0xFF, 0xE1, uint8_t((payload.size() + 2) >> 8), uint8_t(payload.size() + 2)};
    segment.insert(segment.end(), payload.begin(), payload.end());
    return segment;
}

Bytes JpegOfPieces(const std::vector<Bytes> &pieces)
{
    Bytes file = {0xFF, 0xD8};
    for (const Bytes &piece : pieces) file.insert(file.end(), piece.begin(), piece.end());
    file.insert(file.end(), {0xFF, 0xD9});
    return file;
}

const Bytes kSos = {0xFF, 0xDA, 0, 8, 1, 1, 0, 0, 0x3F, 0, 1, 2, 3};

struct ReaderCase {
    const char *name;
    Bytes file;
    // Tags asked in this order, with the text of their values ("-" for -1).
    std::vector<std::pair<uint32_t, std::string>> answers;
};

const ReaderCase kCases[] = {
    {"a wanted scan keeps the inline values of the five it passes and fetches none of theirs",
     JpegOfPieces({ExifSegment({PointerTo(34665, 0)},
                               {{Ascii(270, "A long description"), Ascii(306, "ab"), Typed(37500, 7, 5, {'n', 'o', 't', 'e', 's'})}})}),
     {{37500, "notes"}, {270, "-"}, {306, std::string("ab", 3)}, {36867, "-"}}},
    {"of two Exif segments the last counts",
     JpegOfPieces({ExifSegment({Ascii(271, "First")}), ExifSegment({Ascii(271, "Second")})}),
     {{271, std::string("Second", 7)}}},
    {"of two entries of one number the first answers",
     JpegOfPieces({ExifSegment({PointerTo(34665, 0)}, {{Ascii(36867, "One"), Ascii(36867, "Two")}})}), {{36867, std::string("One", 4)}}},
    {"an Exif segment behind the first scan is not seen", JpegOfPieces({kSos, ExifSegment({Ascii(271, "Late")})}),
     {{271, "-"}}},
    {"a thumbnail offset in IFD 0 doesn't end the scan of its entries",
     JpegOfPieces({ExifSegment({Long(513, 8), Long(514, 4), PointerTo(34665, 0)}, {{Ascii(36867, "2001:01:01 01:01:01")}})}),
     {{36867, std::string("2001:01:01 01:01:01", 20)}}},
    {"an Exif segment too short for a TIFF block is passed over",
     JpegOfPieces({{0xFF, 0xE1, 0, 12, 'E', 'x', 'i', 'f', 0, 0, 'I', 'I', 42, 0}, ExifSegment({Ascii(271, "Next")})}),
     {{271, std::string("Next", 5)}}},
    {"segments of length 0 and 1 are stepped over",
     JpegOfPieces({{0xFF, 0xE5, 0, 0}, {0xFF, 0xE6, 0, 1}, ExifSegment({Ascii(271, "Found")})}),
     {{271, std::string("Found", 6)}}},
    {"an Exif segment behind the first 64 KiB is read from the file",
     JpegOfPieces({{0xFF, 0xE2, 0xFF, 0xFF}, Bytes(65533, 'i'), ExifSegment({Ascii(271, "Far")})}),
     {{271, std::string("Far", 4)}}},
};

TEST(Reader, AnswersWhatItsScansMet)
{
    for (const ReaderCase &c : kCases) {
        TempDir dir;
        ReaderPtr reader(zRExifBeginRead(dir.Write("photo.jpg", c.file).c_str()));
        ASSERT_NE(nullptr, reader) << c.name;
        for (const auto &answer : c.answers) EXPECT_EQ(answer.second, ReaderValue(reader.get(), answer.first)) << c.name;
        DocPtr doc(zExifLoadFile(dir.Path("photo.jpg").c_str()));
        ASSERT_NE(nullptr, doc) << c.name;
        EXPECT_EQ(ReadRaw(c.file).tags, TreeTags(*doc)) << c.name << ": the tree reads what a raw walk reads";
    }
}

TEST(Reader, RefusesWhatIsNoJpegOrTiff)
{
    TempDir dir;
    for (const Bytes &file : {Bytes{}, Bytes{0xFF}, Bytes{'I', 'M', 42, 0}, Bytes{0xFF, 0xD9, 0xFF, 0xD8}, Bytes{'G', 'I', 'F', '8'}}) {
        EXPECT_EQ(nullptr, zRExifBeginRead(dir.Write("file", file).c_str()));
        EXPECT_EQ(nullptr, zExifLoadFile(dir.Path("file").c_str()));
    }
    EXPECT_EQ(nullptr, zRExifBeginRead(dir.Path("missing").c_str()));
    ReaderPtr bare(zRExifBeginRead(dir.Write("bare.jpg", {0xFF, 0xD8}).c_str()));
    ASSERT_NE(nullptr, bare);
    EXPECT_EQ(FORMAT_JPEG, zRExifGetFileFormat(bare.get()));
    EXPECT_EQ(0, zRExifIsExifExist(bare.get()));
    EXPECT_EQ(-1, zRExifGetTag(bare.get(), 271, nullptr));
    EXPECT_EQ(-1, zRExifGetThumbnailData(bare.get(), nullptr));
    TifTagList *list = nullptr;
    EXPECT_EQ(-1, zRExifGetTIFExifData(nullptr, &list));
}

}  // namespace
