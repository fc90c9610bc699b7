#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <memory>

#include "platform/utf16.h"
#include "reader/cached_file.h"
#include "streams/file_stream.h"
#include "streams/growing_stream.h"
#include "support/files.h"
#include "support/tree_records.h"
#include "zexif.h"

namespace {

struct StreamDeleter {
    void operator()(CStreamIO *stream) const { DeleteStream(stream); }
};
using StreamPtr = std::unique_ptr<CStreamIO, StreamDeleter>;

const uint32_t kReads[] = {1, 2, 4, 12, 100, 4096, 5000, 70000};

// The reader's file answers every read, seek and end-of-file question as the
// file stream does, inside its head, its window and beyond.
TEST(CachedFile, AnswersAsTheFileStreamDoes)
{
    TempDir dir;
    for (size_t size : {size_t(0), size_t(100), size_t(20000), size_t(65536), size_t(65537), size_t(200000)}) {
        Bytes content(size);
        std::mt19937 rng{uint32_t(size)};
        for (uint8_t &b : content) b = uint8_t(rng());
        std::string path = dir.Write("file", content);
        for (bool inMemory : {false, true}) {
            CStreamIO *raw = nullptr;
            ASSERT_EQ(1, CreateFileStream(&raw, path.c_str(), STREAM_READ));
            StreamPtr file(raw);
            CCachedFileObj cached;
            if (inMemory) cached.OpenMemory(content.data(), uint32_t(size));
            if (!inMemory) ASSERT_EQ(1, cached.Open(path.c_str()));
            if (!inMemory) EXPECT_EQ(0, cached.Open(path.c_str()));
            // The first steps read across the end of the file, then at the
            // last position 31 bits can name.
            for (int step = 0; step < 400; step++) {
                std::string what = "size " + std::to_string(size) + " step " + std::to_string(step);
                if (step == 0 || step == 2 || (step > 3 && rng() % 3 == 0)) {
                    int whence = step == 0 ? 2 : step == 2 ? 0 : int(rng() % 3);
                    int32_t offset = step == 0 ? -10 : step == 2 ? INT32_MAX : int32_t(rng() % (size + 200)) - (whence == 0 ? 50 : int32_t(size / 2 + 100));
                    ASSERT_EQ(file->Seek(whence, offset), cached.Seek(whence, offset)) << what;
                } else {
                    uint32_t n = step == 1 ? 100 : kReads[rng() % 8];
                    Bytes a(n), b(n);
                    uint32_t got = file->Read(a.data(), n);
                    ASSERT_EQ(got, cached.Read(b.data(), n)) << what;
                    ASSERT_EQ(Bytes(a.begin(), a.begin() + got), Bytes(b.begin(), b.begin() + got)) << what;
                }
                ASSERT_EQ(file->Tell(), cached.Tell()) << what;
                ASSERT_EQ(file->IsEof() != 0, cached.IsEof() != 0) << what;
            }
        }
    }
}

// The block a save writes into reads back what was written, with zeros where
// a seek passed the end before a write; seeks stay within 31 bits.
TEST(GrowingStream, ReadsBackWhatWasWrittenAndZerosWhereASeekPassed)
{
    CGrowingStreamObj stream;
    EXPECT_EQ(3u, stream.Write("abc", 3));
    EXPECT_EQ(1, stream.IsEof());
    EXPECT_EQ(0, stream.Seek(2, 2));
    EXPECT_EQ(1u, stream.Write("d", 1));
    EXPECT_EQ(0, stream.Seek(0, 0));
    EXPECT_EQ(0, stream.IsEof());
    char read[8] = {};
    EXPECT_EQ(1u, stream.Read(read, 1));
    EXPECT_EQ(5u, stream.Read(read, 8));
    EXPECT_EQ(std::string("bc\0\0d", 5), std::string(read, 5));
    EXPECT_EQ(0, stream.Seek(1, 4));
    EXPECT_EQ(0u, stream.Read(read, 8)) << "nothing lies behind the end";
    EXPECT_EQ(0, stream.Seek(0, INT32_MAX));
    for (int whence : {0, 1, 2, 3}) EXPECT_EQ(-1, stream.Seek(whence, whence == 0 ? -1 : INT32_MAX)) << whence;
}

// A path of 16-bit characters is read as one where the narrow reading can't
// be a path; surrogate pairs become one character, broken ones no path.
TEST(WidePath, OpensFilesNamedInSixteenBitCharacters)
{
    const struct {
        std::u16string wide;
        const char *utf8;
    } conversions[] = {{u"\U0001F600.jpg", "\xf0\x9f\x98\x80.jpg"},
                       {u"\U00010000\U0010FFFF", "\xf0\x90\x80\x80\xf4\x8f\xbf\xbf"},
                       {u"\u007f\u0080\u07ff\u0800\uffff", "\x7f\xc2\x80\xdf\xbf\xe0\xa0\x80\xef\xbf\xbf"}};
    for (const auto &c : conversions) {
        std::string out;
        ASSERT_EQ(1, Utf16ToUtf8(Utf16Of(c.wide).data(), out));
        EXPECT_EQ(c.utf8, out);
    }
    std::string out;
    for (std::u16string broken : {std::u16string(), std::u16string(1, char16_t(0xD800)), std::u16string(1, char16_t(0xDC00)),
                                  std::u16string(1, char16_t(0xDFFF)), std::u16string{char16_t(0xDBFF), u'x'},
                                  std::u16string{char16_t(0xD800), char16_t(0xE000)}}) {
        EXPECT_EQ(0, Utf16ToUtf8(Utf16Of(broken).data(), out));
    }
    EXPECT_EQ(0, Utf16ToUtf8(Utf16Of(std::u16string(MAX_WIDE_PATH + 1, u'a')).data(), out));
    EXPECT_EQ(1, Utf16ToUtf8(Utf16Of(std::u16string(MAX_WIDE_PATH, u'a')).data(), out));
    for (const char *wide : {"/", "\xff\xfe", "\x80\x80"}) EXPECT_EQ(1, LooksLikeWidePath(wide)) << wide;
    for (const char *narrow : {"/tmp", "\xc2\xa9t\xc3\xa9", "", "\xf4\x8f\xbf\xbf"}) EXPECT_EQ(0, LooksLikeWidePath(narrow)) << narrow;

    TempDir dir;
    Bytes jpeg = JpegOf({{Ascii(271, "Cam")}});
    std::string name = "\xf0\x9f\x98\x80 \xc3\xa9t\xc3\xa9.jpg";
    dir.Write(name, jpeg);
    Bytes path = dir.WidePath(u"\U0001F600 \u00e9t\u00e9.jpg");
    CExifDoc *doc = zExifLoadFile(path.data());
    EXPECT_NE(nullptr, doc);
    zExifDestroy(doc);
    CExifReader *reader = zRExifBeginRead(path.data());
    EXPECT_NE(nullptr, reader);
    zRExifEndRead(reader);
    EXPECT_EQ(nullptr, zExifLoadFile(dir.WidePath(u"missing.jpg").data()));
    EXPECT_EQ(nullptr, zExifLoadFile(nullptr));
}

// A process may run without standard input: a file then opens as
// descriptor 0, which is a file like any other, also where a narrow name
// of one byte could be the start of a 16-bit one.
TEST(WidePath, FilesOpenAsDescriptorZero)
{
    TempDir dir;
    dir.Write("a", JpegOf({{Ascii(271, "Cam")}}));
    char cwd[4096];
    ASSERT_NE(nullptr, getcwd(cwd, sizeof cwd));
    ASSERT_EQ(0, chdir(dir.m_path.c_str()));
    DocPtr doc(zExifLoadFile("a")), other(zExifLoadFile("a"));
    int saved = dup(0);
    close(0);
    EXPECT_NE(nullptr, DocPtr(zExifLoadFile("a")).get());
    {
        CCachedFileObj cached;
        EXPECT_EQ(1, cached.Open("a"));
        EXPECT_EQ(0, cached.Open("a"));
    }
    const char narrowOrWide[] = {'a', 0, 'b', 0, 0, 0};
    CExifReader *reader = zRExifBeginRead(narrowOrWide);
    EXPECT_NE(nullptr, reader);
    zRExifEndRead(reader);
    // The directory "/" that a 16-bit path's narrow reading opens, and the
    // one a save syncs, are closed again though they are descriptor 0.
    std::u16string wide;
    for (char c : dir.m_path + "/a") wide += char16_t(uint8_t(c));
    reader = zRExifBeginRead(Utf16Of(wide).data());
    EXPECT_NE(nullptr, reader);
    zRExifEndRead(reader);
    EXPECT_EQ(0, zExifSaveFile(other.get(), "new.jpg"));
    EXPECT_EQ(0, zExifSaveFile(doc.get(), "a"));
    EXPECT_EQ(-1, fcntl(0, F_GETFD));
    dup2(saved, 0);
    close(saved);
    ASSERT_EQ(0, chdir(cwd));
}

}  // namespace
