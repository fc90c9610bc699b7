#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "platform/utf16.h"
#include "streams/stream.h"
#include "support/temp_dir.h"

namespace {

// A 16-bit string as a caller on another platform would hand it in.
std::vector<char16_t> Wide(const std::u16string &text)
{
    std::vector<char16_t> out(text.begin(), text.end());
    out.push_back(0);
    return out;
}

TEST(WidePath, OpensAFileGivenInSixteenBitCharacters)
{
    TempDir dir;
    std::string path = dir.Write("b\xC3\xA4r.jpg", {1, 2, 3});
    std::u16string wide;
    for (char c : dir.m_path) wide += char16_t(static_cast<unsigned char>(c));
    wide += u"/b\u00E4r.jpg";
    std::vector<char16_t> units = Wide(wide);

    CStreamIO *stream = nullptr;
    ASSERT_EQ(1, CreateFileStream(&stream, units.data(), STREAM_READ));
    uint8_t bytes[3] = {};
    EXPECT_EQ(3u, stream->Read(bytes, 3));
    EXPECT_EQ(3, bytes[2]);
    DeleteStream(stream);
}

TEST(WidePath, AMissingFileFailsUnderBothReadings)
{
    std::vector<char16_t> units = Wide(u"/nonexistent/zexif/missing.jpg");
    CStreamIO *stream = nullptr;
    EXPECT_EQ(0, CreateFileStream(&stream, units.data(), STREAM_READ));
    EXPECT_EQ(nullptr, stream);
}

TEST(WidePath, NarrowPathsAreNotReadAsSixteenBit)
{
    EXPECT_EQ(0, LooksLikeWidePath("/nonexistent/file.jpg"));
    EXPECT_EQ(0, LooksLikeWidePath("caf\xC3\xA9.jpg"));
    EXPECT_EQ(0, LooksLikeWidePath(""));
    EXPECT_EQ(1, LooksLikeWidePath("/"));
    EXPECT_EQ(1, LooksLikeWidePath("\x99\x51\x1F\x77."));
}

TEST(WidePath, ConversionHandlesSurrogatesAndRefusesBrokenOnes)
{
    std::string out;
    std::vector<char16_t> pair = Wide(u"\U0001F600.jpg");
    ASSERT_EQ(1, Utf16ToUtf8(pair.data(), out));
    EXPECT_EQ("\xF0\x9F\x98\x80.jpg", out);

    const char16_t lone[] = {0xD800, u'a', 0};
    EXPECT_EQ(0, Utf16ToUtf8(lone, out));
    const char16_t stray[] = {0xDC00, 0};
    EXPECT_EQ(0, Utf16ToUtf8(stray, out));

    std::vector<char16_t> endless(MAX_WIDE_PATH + 2, u'a');
    endless.back() = 0;
    EXPECT_EQ(0, Utf16ToUtf8(endless.data(), out));
}

}  // namespace
