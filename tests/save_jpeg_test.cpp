#include <gtest/gtest.h>

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
#include "support/tag_records.h"
#include "support/tag_steps.h"
#include "support/temp_dir.h"
#include "tree/walk.h"

namespace {

std::vector<uint8_t> ExifSegment(const ExifBlockDef &def = {})
{
    return JpegSegment(0xE1, ExifPayload(ExifBlock(def)));
}

struct JpegSave : ::testing::Test {
    TempDir dir;
    std::string source = dir.Path("source.jpg");
    std::string target = dir.Path("target.jpg");

    // Loads the bytes, runs the steps on the document, saves it to the target
    // and loads that.
    DocPtr Save(const std::vector<uint8_t> &bytes, const std::vector<TagStep> &steps = {})
    {
        dir.Write("source.jpg", bytes);
        DocPtr doc(zExifLoadFile(source.c_str()));
        EXPECT_TRUE(doc);
        if (!doc) return nullptr;
        EXPECT_EQ("", RunSteps(*doc, steps));
        EXPECT_EQ(0, zExifSaveFile(doc.get(), target.c_str()));
        return DocPtr(zExifLoadFile(target.c_str()));
    }
};

// Nothing to rebuild: every byte comes back as it was, empty segments too.
TEST_F(JpegSave, JpegWithoutApp1IsCopiedByteForByte)
{
    std::vector<uint8_t> file =
        JpegFile({JpegSegment(0xE0, {'J', 'F', 'I', 'F', 0, 1, 1}), JpegSegment(0xDB, std::vector<uint8_t>(65, 3)),
                  JpegSegment(0xFE, {}), JpegSegment(0xE5, {}), JpegSegment(0xE2, IccPayload(300))});
    Save(file);
    EXPECT_EQ(file, ReadFileBytes(target));
}

// An Exif block of 1,000 bytes gives a length field of 1,008: the block, the
// six signature bytes and the field itself. The APP1 is a new one, with no
// payload of its own in the source.
TEST_F(JpegSave, LengthFieldCountsSignatureAndBlock)
{
    std::string text(973, 'x');
    ASSERT_TRUE(Save(JpegFile({}), {Set(Ascii(270, text), 0)}));
    std::vector<uint8_t> out = ReadFileBytes(target);
    ASSERT_GE(out.size(), 12u);
    EXPECT_EQ((std::vector<uint8_t>{0xFF, 0xD8, 0xFF, 0xE1, 0x03, 0xF0, 'E', 'x', 'i', 'f', 0, 0}),
              std::vector<uint8_t>(out.begin(), out.begin() + 12));
    EXPECT_EQ(1000u, TiffBlockOf(out).size());
}

// Only the APP1 that holds an Exif block is rebuilt; an XMP packet in front
// of it stays as it was. Both Exif blocks of a file are rebuilt, so that an
// edit lands in the file whichever block took it.
TEST_F(JpegSave, OnlyExifBlocksAreRebuiltAndAllOfThem)
{
    std::vector<uint8_t> xmp = JpegSegment(0xE1, {'h', 't', 't', 'p', ':', '/', '/', 'n', 's', 0, '<', 'x', '/', '>'});
    std::vector<TagStep> edits = {Set(Ascii(305, "edited"), 0), Set(Ascii(36867, "2030:01:01 00:00:00"), 0)};
    DocPtr back = Save(JpegFile({xmp, ExifSegment(), ExifSegment()}), edits);
    ASSERT_TRUE(back);
    EXPECT_EQ(xmp, JpegSegment(0xE1, SegmentsOf(ReadFileBytes(target))[0].payload));
    EXPECT_EQ("", RunSteps(*back, {Get(Ascii(305, "edited"), 0), Get(Ascii(36867, "2030:01:01 00:00:00"), 0)}));
}

// A thumbnail whose offset lies outside its segment isn't there to carry; its
// two tags are left out instead of naming bytes of the new block.
TEST_F(JpegSave, ThumbnailOutsideItsSegmentIsLeftOut)
{
    DocPtr back = Save(JpegFile({ExifSegment({false, ThumbnailJpeg(100), 60000})}));
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
    Save(JpegFile({JpegSegment(0xE1, ExifPayload(block.m_bytes))}));
    ByteBuilder expected;
    expected.TiffHeader(8).U16(3).Entry(256, 3, 1, 4).Entry(273, 4, 1, 50).Entry(279, 4, 1, 12).U32(0);
    EXPECT_EQ(expected.Text("RGBRGBRGBRGB").m_bytes, TiffBlockOf(ReadFileBytes(target)));
}

}  // namespace
