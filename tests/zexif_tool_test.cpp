#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "support/byte_builder.h"
#include "support/samples.h"
#include "support/temp_dir.h"
#include "tools/zexif/value_format.h"

namespace {

struct ToolRun {
    int status;
    std::string out;
    std::string err;
};

std::string ShellQuoted(const std::string &text)
{
    std::string quoted = "'";
    for (char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

std::string TextOf(const std::string &path)
{
    std::vector<uint8_t> bytes = ReadFileBytes(path);
    return std::string(bytes.begin(), bytes.end());
}

// Runs a program with its output caught in files; a death by signal gives a
// status of -1.
ToolRun RunProgram(const std::string &program, const std::vector<std::string> &arguments)
{
    TempDir dir;
    std::string command = ShellQuoted(program);
    for (const std::string &argument : arguments) command += " " + ShellQuoted(argument);
    command += " >" + ShellQuoted(dir.Path("out")) + " 2>" + ShellQuoted(dir.Path("err")) + " </dev/null";
    const int wait = std::system(command.c_str());
    const int status = WIFEXITED(wait) ? WEXITSTATUS(wait) : -1;
    return {status, TextOf(dir.Path("out")), TextOf(dir.Path("err"))};
}

ToolRun RunTool(const std::vector<std::string> &arguments)
{
    return RunProgram(ZEXIF_TOOL_PATH, arguments);
}

int LineCount(const std::string &text)
{
    int lines = 0;
    for (char c : text) lines += c == '\n';
    return lines;
}

bool HasDjpeg()
{
    return std::system("command -v djpeg >/dev/null 2>&1") == 0;
}

TEST(ZexifTool, WithoutArgumentsDumpsTheBundledSample)
{
    ToolRun run = RunTool({});
    ASSERT_EQ(0, run.status) << run.err;
    EXPECT_EQ("", run.err);
    EXPECT_EQ(std::string(ZEXIF_SAMPLE_JPEG) + ": JPEG\n", run.out.substr(0, run.out.find('\n') + 1));
    for (const char *expected : {"FFD8  SOI", "FFE0  APP0", "\"JFIF\"", "FFDB  DQT", "FFC0  SOF0", "FFC4  DHT",
                                 "FFDA  SOS", "scan data", "FFD9  EOI"}) {
        EXPECT_NE(std::string::npos, run.out.find(expected)) << expected << " missing from\n" << run.out;
    }
}

// The decoded image must be the gradient that was drawn: 32x16, blue at the
// top left, yellow at the bottom right. A wrong table or a swapped chroma
// channel decodes too, but not to these colours.
TEST(ZexifTool, BundledSampleDecodesToTheDrawnGradient)
{
    if (!HasDjpeg()) GTEST_SKIP() << "djpeg is not installed";
    ToolRun run = RunProgram("djpeg", {"-pnm", ZEXIF_SAMPLE_JPEG});
    ASSERT_EQ(0, run.status) << run.err;
    EXPECT_EQ("", run.err);
    const std::string header = "P6\n32 16\n255\n";
    ASSERT_EQ(header.size() + 32 * 16 * 3, run.out.size());
    ASSERT_EQ(header, run.out.substr(0, header.size()));
    auto pixel = [&](int x, int y, int channel) {
        return static_cast<unsigned char>(run.out[header.size() + (y * 32 + x) * 3 + channel]);
    };
    EXPECT_LT(pixel(0, 0, 0), 40);
    EXPECT_GT(pixel(0, 0, 2), 215);
    EXPECT_GT(pixel(31, 15, 0), 215);
    EXPECT_GT(pixel(31, 15, 1), 215);
    EXPECT_LT(pixel(31, 15, 2), 40);
}

struct SampleExpectation {
    const char *relative;
    const char *format;
    std::vector<const char *> lines;
};

class ToolOnSample : public ::testing::TestWithParam<SampleExpectation> {};

TEST_P(ToolOnSample, ShowsItsIfdsAndTags)
{
    TempDir dir;
    const std::string copy = dir.Copy(Sample(GetParam().relative), "copy");
    ToolRun run = RunTool({"dump", copy});
    ASSERT_EQ(0, run.status) << run.err;
    EXPECT_EQ(copy + ": " + GetParam().format + "\n", run.out.substr(0, run.out.find('\n') + 1));
    for (const char *expected : GetParam().lines) {
        EXPECT_NE(std::string::npos, run.out.find(expected)) << expected << " missing from\n" << run.out;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Samples, ToolOnSample,
    ::testing::Values(
        SampleExpectation{"jpg/Canon_40D.jpg", "JPEG",
                          {"FFE1  APP1", "\"Exif\"", "IFD 0: ", "  271 ASCII          6  \"Canon\"",
                           "34665 LONG           1", "Exif IFD: ", "IFD 1: "}},
        SampleExpectation{"jpg/gps/DSCN0010.jpg", "JPEG", {"34853 LONG           1", "GPS IFD: ", "    1 ASCII"}},
        SampleExpectation{"tiff/Arbitro.tiff", "TIFF", {"TIFF header", "IFD 0: ", "  256 "}}));

// GPS tags 1, 2 and 3 share their numbers with structural nodes; the dump
// must show them as tags under their pointer, with their values.
TEST(ZexifTool, GpsTagsWithStructuralNumbersShowAsTags)
{
    ByteBuilder tiff(true);
    tiff.TiffHeader(8);
    tiff.U16(2).EntryRaw(271, 2, 4, {'Z', 'x', '!', 0}).Entry(34853, 4, 1, 38).U32(0);
    tiff.U16(3).EntryRaw(1, 2, 2, {'N', 0, 0, 0}).Entry(2, 5, 3, 80).EntryRaw(3, 2, 2, {'E', 0, 0, 0}).U32(0);
    tiff.U32(35).U32(1).U32(40).U32(1).U32(1234).U32(100);
    TempDir dir;
    ToolRun run = RunTool({"dump", dir.Write("gps.tif", tiff.Data())});
    ASSERT_EQ(0, run.status) << run.err;
    for (const char *expected : {"TIFF header, big-endian (MM)", "IFD 0: 2 entries", "  271 ASCII          4  \"Zx!\"",
                                 "GPS IFD: 3 entries", "    1 ASCII          2  \"N\"",
                                 "    2 RATIONAL       3  35/1 40/1 1234/100", "    3 ASCII          2  \"E\""}) {
        EXPECT_NE(std::string::npos, run.out.find(expected)) << expected << " missing from\n" << run.out;
    }
}

// Whatever a real file holds, the dump ends normally or with one line of
// complaint, never with a crash.
TEST(ZexifTool, EverySampleDumpsOrFailsCleanly)
{
    TempDir dir;
    for (const std::string &sample : AllSamples()) {
        const std::string copy = dir.Copy(sample, "copy" + sample.substr(sample.rfind('.')));
        ToolRun run = RunTool({"dump", copy});
        EXPECT_TRUE(run.status == 0 || (run.status == 1 && LineCount(run.err) == 1)) << sample << "\n" << run.err;
    }
}

struct FailingFile {
    const char *name;     // "folder" is made as a directory
    const char *content;  // null: the file doesn't exist
    const char *reason;
};

class ToolOnBadFile : public ::testing::TestWithParam<FailingFile> {};

TEST_P(ToolOnBadFile, FailsWithOneLine)
{
    TempDir dir;
    const std::string path = dir.Path(GetParam().name);
    if (std::strcmp(GetParam().name, "folder") == 0) {
        std::filesystem::create_directory(path);
    } else if (GetParam().content != nullptr) {
        dir.Write(GetParam().name, std::vector<uint8_t>(GetParam().content,
                                                        GetParam().content + std::strlen(GetParam().content)));
    }
    ToolRun run = RunTool({"dump", path});
    EXPECT_EQ(1, run.status);
    EXPECT_EQ("", run.out);
    EXPECT_EQ(1, LineCount(run.err)) << run.err;
    EXPECT_EQ("zexif: cannot load " + path + ": " + GetParam().reason + "\n", run.err);
}

INSTANTIATE_TEST_SUITE_P(
    Files, ToolOnBadFile,
    ::testing::Values(FailingFile{"missing.jpg", nullptr, "No such file or directory"},
                      FailingFile{"notes.txt", "just some text\n", "not a JPEG or TIFF file, or damaged"},
                      FailingFile{"folder", nullptr, "Is a directory"},
                      FailingFile{"empty.jpg", "", "not a JPEG or TIFF file, or damaged"}));

class ToolMisused : public ::testing::TestWithParam<std::vector<std::string>> {};

TEST_P(ToolMisused, ExitsWithUsage)
{
    ToolRun run = RunTool(GetParam());
    EXPECT_EQ(2, run.status);
    EXPECT_EQ("", run.out);
    EXPECT_EQ(1, LineCount(run.err)) << run.err;
    EXPECT_NE(std::string::npos, run.err.find("usage: zexif")) << run.err;
}

INSTANTIATE_TEST_SUITE_P(Arguments, ToolMisused,
                         ::testing::Values(std::vector<std::string>{"dump"},
                                           std::vector<std::string>{"dump", "a.jpg", "b.jpg"},
                                           std::vector<std::string>{"photo.jpg"},
                                           std::vector<std::string>{"--frobnicate", "x"},
                                           std::vector<std::string>{"get", "a.jpg"},
                                           std::vector<std::string>{"get", "a.jpg", "Make"},
                                           std::vector<std::string>{"get", "a.jpg", "271", "--ifd"},
                                           std::vector<std::string>{"set", "a.jpg", "271", "text", "x"},
                                           std::vector<std::string>{"thumbnail", "show", "a.jpg", "b.jpg"},
                                           std::vector<std::string>{"audio", "remove", "a.jpg", "b.wav"},
                                           std::vector<std::string>{"remove-marker", "a.jpg", "0xE2"},
                                           std::vector<std::string>{"strip", "a.jpg", "b.jpg"}));

TEST(ZexifTool, HelpListsTheCommands)
{
    ToolRun run = RunTool({"--help"});
    EXPECT_EQ(0, run.status);
    EXPECT_EQ(0u, run.out.find("usage: zexif"));
    EXPECT_NE(std::string::npos, run.out.find("  dump FILE"));
}

// The JPEG segments before the scan, as code and payload.
std::vector<std::pair<int, std::string>> Segments(const std::vector<uint8_t> &bytes)
{
    std::vector<std::pair<int, std::string>> segments;
    for (size_t at = 2; at + 4 <= bytes.size() && bytes[at] == 0xff && bytes[at + 1] != 0xda;) {
        const size_t length = bytes[at + 2] << 8 | bytes[at + 3];
        segments.emplace_back(bytes[at + 1], std::string(bytes.begin() + at + 4, bytes.begin() + at + 2 + length));
        at += 2 + length;
    }
    return segments;
}

bool HasExifApp1(const std::string &path)
{
    for (const auto &segment : Segments(ReadFileBytes(path))) {
        if (segment.first == 0xe1 && segment.second.compare(0, 6, std::string("Exif\0\0", 6)) == 0) return true;
    }
    return false;
}

class ToolCommands : public ::testing::Test {
protected:
    TempDir m_dir;
    const std::string m_photo = m_dir.Copy(Sample("jpg/Canon_40D.jpg"), "photo.jpg");

    std::string Get(const std::string &path, const std::string &tag)
    {
        ToolRun run = RunTool({"get", path, tag});
        EXPECT_EQ(0, run.status) << run.err;
        return run.out;
    }
};

TEST_F(ToolCommands, GetPrintsTextAndRationals)
{
    EXPECT_EQ("Canon\n", Get(m_photo, "271"));
    EXPECT_EQ("Canon\n", Get(m_photo, "0x10f"));
    EXPECT_EQ("1/160\n", Get(m_photo, "33434"));
}

TEST_F(ToolCommands, GetOfAMissingTagFailsWithOneLine)
{
    ToolRun run = RunTool({"get", m_photo, "999"});
    EXPECT_EQ(1, run.status);
    EXPECT_EQ("", run.out);
    EXPECT_EQ(1, LineCount(run.err)) << run.err;
}

TEST_F(ToolCommands, SetInPlaceIsReadBack)
{
    ASSERT_EQ(0, RunTool({"set", m_photo, "271", "ascii", "Zed Optics"}).status);
    EXPECT_EQ("Zed Optics\n", Get(m_photo, "271"));
    ASSERT_EQ(0, RunTool({"set", m_photo, "41486", "rational", "4000/3", "--ifd", "0"}).status);
    EXPECT_EQ("4000/3\n", Get(m_photo, "41486"));
}

TEST_F(ToolCommands, SetToAnotherFileLeavesTheSource)
{
    const std::vector<uint8_t> before = ReadFileBytes(m_photo);
    const std::string out = m_dir.Path("out.jpg");
    ToolRun run = RunTool({"set", m_photo, "0x8827", "short", "800", "-o", out});
    ASSERT_EQ(0, run.status) << run.err;
    EXPECT_EQ("800\n", Get(out, "34855"));
    EXPECT_EQ(before, ReadFileBytes(m_photo));
}

TEST_F(ToolCommands, DeletedTagIsGone)
{
    ASSERT_EQ(0, RunTool({"delete", m_photo, "272"}).status);
    EXPECT_EQ(1, RunTool({"get", m_photo, "272"}).status);
    EXPECT_EQ("Canon\n", Get(m_photo, "271"));
}

TEST_F(ToolCommands, InfoGoesOnPastAMissingFile)
{
    const std::string plain = m_dir.Copy(ZEXIF_SAMPLE_JPEG, "plain.jpg");
    ToolRun run = RunTool({"info", m_photo, m_dir.Path("missing.jpg"), plain});
    EXPECT_EQ(1, run.status);
    EXPECT_EQ(1, LineCount(run.err)) << run.err;
    EXPECT_NE(std::string::npos, run.err.find("missing.jpg"));
    for (const std::string &expected : {m_photo + ": JPEG\n  Exif: yes\n  thumbnail: yes\n  audio: no\n  Make: Canon\n",
                                       std::string("  Orientation: 1\n"), plain + ": JPEG\n  Exif: no\n"}) {
        EXPECT_NE(std::string::npos, run.out.find(expected)) << expected << " missing from\n" << run.out;
    }
}

TEST_F(ToolCommands, ThumbnailExtractWritesAJpeg)
{
    const std::string thumbnail = m_dir.Path("thumb.jpg");
    ASSERT_EQ(0, RunTool({"thumbnail", "extract", m_photo, thumbnail}).status);
    const std::vector<uint8_t> bytes = ReadFileBytes(thumbnail);
    ASSERT_GT(bytes.size(), 2u);
    EXPECT_EQ(0xff, bytes[0]);
    EXPECT_EQ(0xd8, bytes[1]);
}

TEST_F(ToolCommands, ThumbnailSetIsExtractedAgain)
{
    const std::string thumbnail = m_dir.Path("thumb.jpg"), again = m_dir.Path("again.jpg");
    const std::string plain = m_dir.Copy(ZEXIF_SAMPLE_JPEG, "plain.jpg"), out = m_dir.Path("out.jpg");
    ASSERT_EQ(0, RunTool({"thumbnail", "extract", m_photo, thumbnail}).status);
    ASSERT_EQ(0, RunTool({"thumbnail", "set", plain, thumbnail, "-o", out}).status);
    ASSERT_EQ(0, RunTool({"thumbnail", "extract", out, again}).status);
    EXPECT_EQ(ReadFileBytes(thumbnail), ReadFileBytes(again));
    EXPECT_EQ(1, RunTool({"thumbnail", "set", plain, m_photo + ".missing"}).status);
}

TEST_F(ToolCommands, AudioSetThenExtractGivesTheSameWave)
{
    const std::vector<uint8_t> wave = {'R', 'I', 'F', 'F', 40, 0, 0, 0, 'W', 'A', 'V', 'E', 'f', 'm', 't', ' ',
                                       16, 0, 0, 0, 1, 0, 1, 0, 0x40, 0x1f, 0, 0, 0x40, 0x1f, 0, 0,
                                       1, 0, 8, 0, 'd', 'a', 't', 'a', 4, 0, 0, 0, 1, 2, 3, 4};
    const std::string in = m_dir.Write("in.wav", wave), out = m_dir.Path("out.wav");
    ASSERT_EQ(0, RunTool({"audio", "set", m_photo, in}).status);
    ASSERT_EQ(0, RunTool({"audio", "extract", m_photo, out}).status);
    EXPECT_EQ(ReadFileBytes(in), ReadFileBytes(out));
    ASSERT_EQ(0, RunTool({"audio", "remove", m_photo}).status);
    EXPECT_EQ(1, RunTool({"audio", "extract", m_photo, out}).status);
}

TEST_F(ToolCommands, StripRemovesTheExifSegment)
{
    ASSERT_TRUE(HasExifApp1(m_photo));
    const std::string out = m_dir.Path("stripped.jpg");
    ASSERT_EQ(0, RunTool({"strip", m_photo, "-o", out}).status);
    EXPECT_FALSE(HasExifApp1(out));
    EXPECT_EQ(1, RunTool({"get", out, "274"}).status);
}

TEST_F(ToolCommands, StripCanKeepTheOrientation)
{
    const std::string turned = m_dir.Copy(Sample("jpg/orientation/landscape_6.jpg"), "turned.jpg");
    ASSERT_EQ(0, RunTool({"strip", turned, "--keep-orientation"}).status);
    EXPECT_EQ("6\n", Get(turned, "274"));
    EXPECT_EQ(1, RunTool({"get", turned, "271"}).status);
}

TEST_F(ToolCommands, CopyExifGivesThePlainSampleTheMake)
{
    const std::string plain = m_dir.Copy(ZEXIF_SAMPLE_JPEG, "plain.jpg");
    ToolRun run = RunTool({"copy-exif", m_photo, plain});
    ASSERT_EQ(0, run.status) << run.err;
    EXPECT_EQ("Canon\n", Get(plain, "271"));
    EXPECT_TRUE(HasExifApp1(plain));
}

TEST_F(ToolCommands, CopyExifRefusesMixedFormats)
{
    const std::string tiff = m_dir.Copy(Sample("tiff/Arbitro.tiff"), "image.tiff");
    ToolRun run = RunTool({"copy-exif", m_photo, tiff});
    EXPECT_EQ(1, run.status);
    EXPECT_EQ(1, LineCount(run.err)) << run.err;
}

struct FormatCase {
    const char *name;
    uint32_t type;
    uint32_t count;
    std::vector<uint8_t> bytes;
    std::string expected;
};

template <typename T>
std::vector<uint8_t> BytesOf(std::initializer_list<T> values)
{
    std::vector<uint8_t> bytes(values.size() * sizeof(T));
    std::memcpy(bytes.data(), values.begin(), bytes.size());
    return bytes;
}

std::vector<uint8_t> TextBytes(const std::string &text)
{
    return std::vector<uint8_t>(text.begin(), text.end());
}

class ValueFormat : public ::testing::TestWithParam<FormatCase> {};

TEST_P(ValueFormat, ReadsAsExpected)
{
    const FormatCase &c = GetParam();
    EXPECT_EQ(c.expected, FormatValue(c.type, c.count, c.bytes.data(), c.bytes.size()));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ValueFormat,
    ::testing::Values(
        FormatCase{"AsciiStopsAtNul", 2, 8, TextBytes(std::string("Nikon\0\0\0", 8)), "\"Nikon\""},
        FormatCase{"AsciiEscapes", 2, 9, TextBytes(std::string("a\"b\\c\nd\0", 9)), "\"a\\\"b\\\\c\\x0ad\""},
        FormatCase{"LongAsciiIsShortened", 2, 100, TextBytes(std::string(100, 'x')),
                   "\"" + std::string(60, 'x') + "\"…(100 bytes)"},
        FormatCase{"Shorts", 3, 3, BytesOf<uint16_t>({1, 65535, 300}), "1 65535 300"},
        FormatCase{"SignedLongs", 9, 2, BytesOf<int32_t>({-5, 7}), "-5 7"},
        FormatCase{"Rationals", 5, 2, BytesOf<uint32_t>({72, 1, 4294967295u, 3}), "72/1 4294967295/3"},
        FormatCase{"SignedRationalWithZeroDenominator", 10, 1, BytesOf<int32_t>({-1, 0}), "-1/0"},
        FormatCase{"Doubles", 12, 1, BytesOf<double>({0.5}), "0.5"},
        FormatCase{"ManyLongsAreShortened", 4, 10, BytesOf<uint32_t>({1, 2, 3, 4, 5, 6, 7, 8, 9, 10}),
                   "1 2 3 4 5 6 7 8…(40 bytes)"},
        FormatCase{"PrintableUndefinedIsText", 7, 4, TextBytes("0230"), "\"0230\""},
        FormatCase{"BinaryUndefinedIsHex", 7, 3, std::vector<uint8_t>{1, 0xab, 0}, "01 ab 00"},
        FormatCase{"LongUndefinedIsShortened", 7, 5000, std::vector<uint8_t>(5000, 0),
                   "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00…(5000 bytes)"},
        FormatCase{"FewerBytesThanTheCountShowWhatIsThere", 3, 4, BytesOf<uint16_t>({9, 8}), "9 8…(8 bytes)"},
        FormatCase{"HalfARationalShowsNone", 5, 1, BytesOf<uint32_t>({7}), "…(8 bytes)"},
        FormatCase{"NoBytes", 4, 0, std::vector<uint8_t>{}, "(empty)"},
        FormatCase{"UnknownType", 13, 1, BytesOf<uint32_t>({1}), "(unknown type)"}),
    [](const ::testing::TestParamInfo<FormatCase> &param) { return std::string(param.param.name); });

TEST(ValueFormat, TypeNames)
{
    EXPECT_EQ("BYTE", TypeName(1));
    EXPECT_EQ("DOUBLE", TypeName(12));
    EXPECT_EQ("type 0", TypeName(0));
    EXPECT_EQ("type 13", TypeName(13));
}

}  // namespace
