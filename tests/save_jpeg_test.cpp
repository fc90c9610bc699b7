#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "support/byte_builder.h"
#include "support/exif_block.h"
#include "support/fpxr_builder.h"
#include "support/jpeg_files.h"
#include "support/load_bytes.h"
#include "support/reader_file.h"
#include "support/temp_dir.h"
#include "tree/walk.h"

namespace {

using Edit = std::function<void(CExifDoc *)>;

std::vector<uint8_t> ExifSegment(const ExifBlockDef &def = {})
{
    return JpegSegment(0xE1, ExifPayload(ExifBlock(def)));
}

std::vector<uint8_t> XmpSegment()
{
    std::string xmp = "http://ns.adobe.com/xap/1.0/";
    std::vector<uint8_t> payload(xmp.begin(), xmp.end());
    payload.push_back(0);
    for (char c : std::string("<x:xmpmeta/>")) payload.push_back(uint8_t(c));
    return JpegSegment(0xE1, payload);
}

std::vector<uint8_t> TiffBlockOfSaved(const std::vector<uint8_t> &file)
{
    for (const JpegSegmentView &segment : SegmentsOf(file)) {
        if (segment.code == 0xE1 && std::memcmp(segment.payload.data(), "Exif", 4) == 0) {
            return std::vector<uint8_t>(segment.payload.begin() + 6, segment.payload.end());
        }
    }
    return {};
}

std::string TagText(CExifDoc *doc, uint32_t tag, int ifd)
{
    ExifTagValue value = {};
    if (zExifGetTag(doc, tag, &value, ifd) != 0) return "<none>";
    std::string text(static_cast<char *>(value.data), value.count);
    std::free(value.data);
    return text;
}

struct JpegSave : ::testing::Test {
    TempDir dir;
    std::string source = dir.Path("source.jpg");
    std::string target = dir.Path("target.jpg");

    // Loads the bytes, lets edit change the document, saves to the target.
    std::vector<uint8_t> Save(const std::vector<uint8_t> &bytes, const Edit &edit = nullptr)
    {
        dir.Write("source.jpg", bytes);
        DocPtr doc(zExifLoadFile(source.c_str()));
        EXPECT_TRUE(doc);
        if (!doc) return {};
        if (edit) edit(doc.get());
        EXPECT_EQ(0, zExifSaveFile(doc.get(), target.c_str()));
        return ReadFileBytes(target);
    }
};

// Nothing to rebuild: every byte comes back as it was, empty segments too.
TEST_F(JpegSave, JpegWithoutApp1IsCopiedByteForByte)
{
    std::vector<uint8_t> file =
        JpegFile({JpegSegment(0xE0, {'J', 'F', 'I', 'F', 0, 1, 1}), JpegSegment(0xDB, std::vector<uint8_t>(65, 3)),
                  JpegSegment(0xFE, {}), JpegSegment(0xE5, {}), JpegSegment(0xE2, IccPayload(300))});
    EXPECT_EQ(file, Save(file));
}

TEST_F(JpegSave, ExifSegmentIsRebuiltInPlace)
{
    std::vector<uint8_t> app0 = JpegSegment(0xE0, {'J', 'F', 'I', 'F', 0, 1, 1});
    std::vector<uint8_t> dqt = JpegSegment(0xDB, std::vector<uint8_t>(65, 3));
    std::vector<uint8_t> out = Save(JpegFile({app0, ExifSegment(), dqt}));
    std::vector<JpegSegmentView> segments = SegmentsOf(out);
    ASSERT_EQ(4u, segments.size());
    EXPECT_EQ(0xE0, segments[0].code);
    EXPECT_EQ(0xE1, segments[1].code);
    EXPECT_EQ(0xDB, segments[2].code);
    EXPECT_EQ(0xDA, segments[3].code);
    EXPECT_EQ(ScanDataOf(JpegFile({})), ScanDataOf(out));
    std::vector<uint8_t> block = TiffBlockOfSaved(out);
    EXPECT_EQ((std::vector<uint8_t>{'I', 'I', 42, 0, 8, 0, 0, 0}),
              std::vector<uint8_t>(block.begin(), block.begin() + 8));
}

TEST_F(JpegSave, BigEndianExifComesOutLittleEndianWithTheSameValues)
{
    ExifBlockDef def;
    def.bigEndian = true;
    std::vector<uint8_t> out = Save(JpegFile({ExifSegment(def)}));
    std::vector<uint8_t> block = TiffBlockOfSaved(out);
    ASSERT_GE(block.size(), 8u);
    EXPECT_EQ('I', block[0]);
    DocPtr back(zExifLoadFile(target.c_str()));
    ASSERT_TRUE(back);
    EXPECT_EQ(std::string("Cam\0", 4), TagText(back.get(), 271, 0));
    EXPECT_EQ(std::string(kBlockDate, 20), TagText(back.get(), 36867, 0));
}

// An Exif block of 1,000 bytes gives a length field of 1,008: the block, the
// six signature bytes and the field itself. The APP1 is a new one, with no
// payload of its own in the source.
TEST_F(JpegSave, LengthFieldCountsSignatureAndBlock)
{
    std::vector<uint8_t> out = Save(JpegFile({}), [](CExifDoc *doc) {
        std::vector<char> text(974, 'x');
        text.back() = 0;
        ExifTagValue value = {2, uint32_t(text.size()), text.data()};
        ASSERT_EQ(0, zExifSetTag(doc, 270, &value, 0));
    });
    ASSERT_GE(out.size(), 12u);
    EXPECT_EQ((std::vector<uint8_t>{0xFF, 0xD8, 0xFF, 0xE1, 0x03, 0xF0, 'E', 'x', 'i', 'f', 0, 0}),
              std::vector<uint8_t>(out.begin(), out.begin() + 12));
    EXPECT_EQ(1000u, TiffBlockOfSaved(out).size());
}

// Only the APP1 that holds an Exif block is rebuilt; an XMP packet in front
// of it stays as it was.
TEST_F(JpegSave, ForeignApp1InFrontStaysByteIdentical)
{
    std::vector<uint8_t> xmp = XmpSegment();
    std::vector<uint8_t> out = Save(JpegFile({xmp, ExifSegment()}), [](CExifDoc *doc) {
        char text[] = "edited";
        ExifTagValue value = {2, sizeof text, text};
        ASSERT_EQ(0, zExifSetTag(doc, 305, &value, 0));
    });
    std::vector<JpegSegmentView> segments = SegmentsOf(out);
    ASSERT_GE(segments.size(), 2u);
    EXPECT_EQ(JpegSegment(0xE1, segments[0].payload), xmp);
    DocPtr back(zExifLoadFile(target.c_str()));
    ASSERT_TRUE(back);
    EXPECT_EQ(std::string("edited\0", 7), TagText(back.get(), 305, 0));
}

TEST_F(JpegSave, JpegThumbnailIsCarriedAndStillServedAfterTheSave)
{
    std::vector<uint8_t> thumb = ThumbnailJpeg(600);
    ExifBlockDef def;
    def.thumbnail = thumb;
    dir.Write("source.jpg", JpegFile({ExifSegment(def)}));
    DocPtr doc(zExifLoadFile(source.c_str()));
    ASSERT_TRUE(doc);
    ASSERT_EQ(0, zExifSaveFile(doc.get(), target.c_str()));
    ExifBuffer served = {};
    ASSERT_EQ(0, zExifGetThumbnailData(doc.get(), &served));
    EXPECT_EQ(thumb, std::vector<uint8_t>(served.data, served.data + served.size));
    std::free(served.data);

    DocPtr back(zExifLoadFile(target.c_str()));
    ASSERT_TRUE(back);
    ExifBuffer reread = {};
    ASSERT_EQ(0, zExifGetThumbnailData(back.get(), &reread));
    EXPECT_EQ(thumb, std::vector<uint8_t>(reread.data, reread.data + reread.size));
    std::free(reread.data);
}

// A thumbnail whose offset lies outside its segment isn't there to carry; its
// two tags are left out instead of naming bytes of the new block.
TEST_F(JpegSave, ThumbnailOutsideItsSegmentIsLeftOut)
{
    ExifBlockDef def;
    def.thumbnail = ThumbnailJpeg(100);
    def.thumbOffset = 60000;
    Save(JpegFile({ExifSegment(def)}));
    DocPtr back(zExifLoadFile(target.c_str()));
    ASSERT_TRUE(back);
    EXPECT_EQ(0, zExifIsThumbnailExist(back.get()));
    EXPECT_EQ(nullptr, FindNode(back->FindIfd(1), 514));
    EXPECT_NE(nullptr, FindNode(back->FindIfd(1), 259));
}

// An uncompressed thumbnail stored as a strip goes along whichever IFD holds
// it, IFD 0 included.
TEST_F(JpegSave, StripThumbnailIsCarriedInTheIfdThatHoldsIt)
{
    ByteBuilder block;
    block.TiffHeader(8).U16(3).Entry(256, 3, 1, 4).Entry(273, 4, 1, 50).Entry(279, 4, 1, 12).U32(0);
    block.Text("RGBRGBRGBRGB");
    std::vector<uint8_t> out = Save(JpegFile({JpegSegment(0xE1, ExifPayload(block.m_bytes))}));
    std::vector<uint8_t> saved = TiffBlockOfSaved(out);
    ASSERT_EQ(8u + 2 + 36 + 4 + 12, saved.size());
    EXPECT_EQ("RGBRGBRGBRGB", std::string(saved.end() - 12, saved.end()));
    uint32_t offset = 0;
    std::memcpy(&offset, saved.data() + 8 + 2 + 12 + 8, 4);
    EXPECT_EQ(50u, offset);
}

// Both Exif blocks of a file are rebuilt, so that an edit lands in the file
// whichever block took it.
TEST_F(JpegSave, EveryExifBlockKeepsItsEdits)
{
    Save(JpegFile({ExifSegment(), ExifSegment()}), [](CExifDoc *doc) {
        char date[] = "2030:01:01 00:00:00";
        ExifTagValue value = {2, sizeof date, date};
        ASSERT_EQ(0, zExifSetTag(doc, 36867, &value, 0));
        char make[] = "Make";
        ExifTagValue makeValue = {2, sizeof make, make};
        ASSERT_EQ(0, zExifSetTag(doc, 271, &makeValue, 0));
    });
    DocPtr back(zExifLoadFile(target.c_str()));
    ASSERT_TRUE(back);
    EXPECT_EQ(std::string("2030:01:01 00:00:00\0", 20), TagText(back.get(), 36867, 0));
    EXPECT_EQ(std::string("Make\0", 5), TagText(back.get(), 271, 0));
}

// An APP2 of the source that the audio scan left on file is read from the
// source, not from the audio file: only planned nodes come from there.
TEST_F(JpegSave, SourceApp2BehindOldAudioComesFromTheSource)
{
    std::vector<uint8_t> file = {0xFF, 0xD8};
    file = Concat({file, ExifSegment()});
    for (const auto &payload : FpxrPayloads(RiffWave(3000, 7), 4, {1000})) {
        file = Concat({file, JpegSegment(0xE2, payload)});
    }
    std::vector<uint8_t> icc = JpegSegment(0xE2, IccPayload(400));
    file = Concat({file, icc, JpegSegment(0xDA, {1, 1, 0, 0, 63, 0}), {0x12, 0x34, 0xFF, 0xD9}});
    std::vector<uint8_t> audio = RiffWave(2000, 5);
    std::string audioPath = dir.Write("voice.wav", audio);
    std::vector<uint8_t> out =
        Save(file, [&](CExifDoc *doc) { ASSERT_EQ(0, zExifSetAudioFile(doc, audioPath.c_str())); });
    std::vector<JpegSegmentView> segments = SegmentsOf(out);
    ASSERT_EQ(4u, segments.size());
    EXPECT_EQ(0xE2, segments[1].code);
    EXPECT_EQ(audio, std::vector<uint8_t>(segments[1].payload.begin() + 41, segments[1].payload.end()));
    EXPECT_EQ(icc, JpegSegment(0xE2, segments[2].payload));
}

TEST_F(JpegSave, EmptyAudioFileGetsAHeadSegmentOfNoData)
{
    std::string audioPath = dir.Write("empty.wav", {});
    std::vector<uint8_t> out = Save(JpegFile({ExifSegment()}),
                                    [&](CExifDoc *doc) { ASSERT_EQ(0, zExifSetAudioFile(doc, audioPath.c_str())); });
    std::vector<JpegSegmentView> segments = SegmentsOf(out);
    ASSERT_EQ(3u, segments.size());
    EXPECT_EQ(0xE2, segments[1].code);
    EXPECT_EQ(41u, segments[1].payload.size());
}

// Everything the first save read stays in memory: a second save needs no
// source and writes the same file.
TEST_F(JpegSave, SecondSaveOfAJpegWritesTheSameFile)
{
    ExifBlockDef def;
    def.thumbnail = ThumbnailJpeg(300);
    dir.Write("source.jpg", JpegFile({ExifSegment(def), JpegSegment(0xE2, IccPayload(100))}));
    DocPtr doc(zExifLoadFile(source.c_str()));
    ASSERT_TRUE(doc);
    ASSERT_EQ(0, zExifSaveFile(doc.get(), target.c_str()));
    std::string second = dir.Path("second.jpg");
    ASSERT_EQ(0, zExifSaveFile(doc.get(), second.c_str()));
    EXPECT_EQ(ReadFileBytes(target), ReadFileBytes(second));
}

TEST_F(JpegSave, SaveOverTheSourceLeavesNoTemporaryFile)
{
    dir.Write("source.jpg", JpegFile({ExifSegment()}));
    DocPtr doc(zExifLoadFile(source.c_str()));
    ASSERT_TRUE(doc);
    char text[] = "over";
    ExifTagValue value = {2, sizeof text, text};
    ASSERT_EQ(0, zExifSetTag(doc.get(), 305, &value, 0));
    ASSERT_EQ(0, zExifSaveFile(doc.get(), source.c_str()));
    EXPECT_EQ((std::vector<std::string>{"source.jpg"}), ListFiles(dir.m_path));
    DocPtr back(zExifLoadFile(source.c_str()));
    ASSERT_TRUE(back);
    EXPECT_EQ(std::string("over\0", 5), TagText(back.get(), 305, 0));
}

// The temporary name of a target ending in "$#$" would be the target itself.
TEST_F(JpegSave, TargetWithTheTemporaryExtension)
{
    target = dir.Path("odd.$#$");
    std::vector<uint8_t> file = JpegFile({JpegSegment(0xFE, {'h', 'i'})});
    EXPECT_EQ(file, Save(file));
    EXPECT_EQ(2u, ListFiles(dir.m_path).size());
}

}  // namespace
