#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "support/byte_builder.h"
#include "support/samples.h"
#include "support/temp_dir.h"
#include "tools/zexif/command.h"
#include "tools/zexif/json_writer.h"
#include "tools/zexif/tag_names.h"
#include "tools/zexif/value_format.h"
#include "tools/zexif/value_meaning.h"
#include "zexif.h"

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

// Runs a shell command line with its output caught in files; a death by
// signal gives a status of -1.
ToolRun RunShell(const std::string &line)
{
    TempDir dir;
    const std::string command =
        "(" + line + ") >" + ShellQuoted(dir.Path("out")) + " 2>" + ShellQuoted(dir.Path("err")) + " </dev/null";
    const int wait = std::system(command.c_str());
    const int status = WIFEXITED(wait) ? WEXITSTATUS(wait) : -1;
    return {status, TextOf(dir.Path("out")), TextOf(dir.Path("err"))};
}

std::string CommandLine(const std::string &program, const std::vector<std::string> &arguments)
{
    std::string line = ShellQuoted(program);
    for (const std::string &argument : arguments) line += " " + ShellQuoted(argument);
    return line;
}

ToolRun RunProgram(const std::string &program, const std::vector<std::string> &arguments)
{
    return RunShell(CommandLine(program, arguments));
}

ToolRun RunTool(const std::vector<std::string> &arguments)
{
    return RunProgram(ZEXIF_TOOL_PATH, arguments);
}

// The tool's output through jq with a filter; the status is jq's, so a text
// that is no JSON fails.
ToolRun RunToolThroughJq(const std::vector<std::string> &arguments, const std::string &filter)
{
    return RunShell(CommandLine(ZEXIF_TOOL_PATH, arguments) + " | jq -r " + ShellQuoted(filter));
}

int LineCount(const std::string &text)
{
    int lines = 0;
    for (char c : text) lines += c == '\n';
    return lines;
}

bool Has(const std::string &program)
{
    return std::system(("command -v " + program + " >/dev/null 2>&1").c_str()) == 0;
}

void ExpectLines(const std::string &text, std::initializer_list<std::string> lines)
{
    for (const std::string &line : lines) {
        EXPECT_NE(std::string::npos, text.find(line)) << line << " missing from\n" << text;
    }
}

TEST(ZexifTool, WithoutArgumentsDumpsTheBundledSample)
{
    ToolRun run = RunTool({});
    ASSERT_EQ(0, run.status) << run.err;
    EXPECT_EQ("", run.err);
    EXPECT_EQ(std::string(ZEXIF_SAMPLE_JPEG) + ": JPEG\n", run.out.substr(0, run.out.find('\n') + 1));
    for (const char *expected : {"FFD8  SOI", "FFE0  APP0", "\"JFIF\"", "FFE1  APP1", "\"zExifLib\"", "Exif IFD: 4",
                                 "1/250", "IFD 1: 6 entries", "FFDB  DQT", "FFC0  SOF0", "FFC4  DHT", "FFDA  SOS",
                                 "scan data", "FFD9  EOI"}) {
        EXPECT_NE(std::string::npos, run.out.find(expected)) << expected << " missing from\n" << run.out;
    }
}

// The decoded image must be the gradient that was drawn: 32x16, blue at the
// top left, yellow at the bottom right. A wrong table or a swapped chroma
// channel decodes too, but not to these colours.
TEST(ZexifTool, BundledSampleDecodesToTheDrawnGradient)
{
    if (!Has("djpeg")) GTEST_SKIP() << "djpeg is not installed";
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
    for (const char *expected : GetParam().lines) ExpectLines(run.out, {expected});
}

INSTANTIATE_TEST_SUITE_P(
    Samples, ToolOnSample,
    ::testing::Values(
        SampleExpectation{"jpg/Canon_40D.jpg", "JPEG",
                          {"FFE1  APP1", "\"Exif\"", "IFD 0: 11 entries, next IFD at 996",
                           "  271 Make                        ASCII          6  \"Canon\"",
                           "  274 Orientation                 SHORT          1  1 (Horizontal (normal))",
                           "34665 ExifIFDPointer              LONG           1", "Exif IFD: 30 entries",
                           "33434 ExposureTime                RATIONAL       1  1/160 (0.00625)", "IFD 1: "}},
        SampleExpectation{"jpg/gps/DSCN0010.jpg", "JPEG",
                          {"GPS IFD: ", "    1 GPSLatitudeRef              ASCII          2  \"N\"",
                           "    2 GPSLatitude                 RATIONAL       3  43\u00b0 28' 2.814\" N (43.467448)"}},
        SampleExpectation{"tiff/Arbitro.tiff", "TIFF", {"TIFF header", "IFD 0: ", "  256 ImageWidth"}}));

// GPS tags 1, 2 and 3 share their numbers with structural nodes; the dump
// must show them as tags under their pointer, with their values, and a
// southern latitude as negative degrees.
TEST(ZexifTool, GpsTagsWithStructuralNumbersShowAsTags)
{
    ByteBuilder tiff(true);
    tiff.TiffHeader(8);
    tiff.U16(2).EntryRaw(271, 2, 4, {'Z', 'x', '!', 0}).Entry(34853, 4, 1, 38).U32(0);
    tiff.U16(3).EntryRaw(1, 2, 2, {'S', 0, 0, 0}).Entry(2, 5, 3, 80).EntryRaw(3, 2, 2, {'E', 0, 0, 0}).U32(0);
    tiff.U32(35).U32(1).U32(40).U32(1).U32(1234).U32(100);
    TempDir dir;
    const std::string path = dir.Write("gps.tif", tiff.Data());
    ToolRun run = RunTool({"dump", path});
    ASSERT_EQ(0, run.status) << run.err;
    ExpectLines(run.out, {"TIFF header, big-endian (MM)", "IFD 0: 2 entries", "  271 Make", "GPS IFD: 3 entries",
                          "    1 GPSLatitudeRef              ASCII          2  \"S\"",
                          "    2 GPSLatitude                 RATIONAL       3  35\u00b0 40' 12.34\" S (-35.670094)",
                          "    3 GPSLongitudeRef"});
    EXPECT_EQ("S\n", RunTool({"get", path, "1", "--ifd", "gps"}).out);
    EXPECT_EQ(1, RunTool({"get", path, "1"}).status);
}

// Whatever a real file holds, one run over all of them dumps each or says in
// one line why not, as text and as one JSON document with an entry per file.
TEST(ZexifTool, EverySampleDumpsOrFailsCleanly)
{
    TempDir dir;
    std::vector<std::string> copies;
    for (const std::string &sample : AllSamples()) {
        copies.push_back(dir.Copy(sample, std::to_string(copies.size()) + sample.substr(sample.rfind('.'))));
    }
    std::vector<std::string> arguments = {"dump"};
    arguments.insert(arguments.end(), copies.begin(), copies.end());
    ToolRun text = RunTool(arguments);
    EXPECT_LE(text.status, 1) << text.err;
    const int failures = LineCount(text.err);
    EXPECT_EQ(text.status == 1, failures > 0) << text.err;
    int headings = 0;
    std::istringstream lines(text.out);
    for (std::string line; std::getline(lines, line);) headings += line.rfind(dir.m_path + "/", 0) == 0;
    EXPECT_EQ(static_cast<int>(copies.size()) - failures, headings);
    if (!Has("jq")) GTEST_SKIP() << "jq is not installed";
    arguments.push_back("--json");
    ToolRun json = RunToolThroughJq(arguments, "[length, ([.[] | select(.error)] | length)] | @tsv");
    ASSERT_EQ(0, json.status) << json.err;
    EXPECT_EQ(std::to_string(copies.size()) + "\t" + std::to_string(failures) + "\n", json.out);
}

// info reads most files through the read-only family and dump through the
// tree: every tag info shows must be the one dump shows in the same IFD.
TEST(ZexifTool, InfoShowsWhatDumpShowsOnEverySample)
{
    if (!Has("jq")) GTEST_SKIP() << "jq is not installed";
    TempDir dir;
    std::vector<std::string> copies;
    for (const std::string &sample : AllSamples()) {
        copies.push_back(dir.Copy(sample, std::to_string(copies.size()) + sample.substr(sample.rfind('.'))));
    }
    auto tagLines = [&](const char *command, const std::string &tags) {
        std::vector<std::string> arguments = {command, "--json"};
        arguments.insert(arguments.end(), copies.begin(), copies.end());
        ToolRun run = RunToolThroughJq(arguments, "to_entries[] | .key as $i | .value | " + tags +
                                                      " | [$i, .ifd, .tag, .text] | @tsv");
        EXPECT_EQ(0, run.status) << run.err;
        std::set<std::string> lines;
        std::istringstream stream(run.out);
        for (std::string line; std::getline(stream, line);) lines.insert(line);
        return lines;
    };
    const std::set<std::string> shown = tagLines("info", "(.tags // [])[]");
    const std::set<std::string> dumped = tagLines("dump", ".. | objects | select(has(\"tag\") and has(\"text\"))");
    EXPECT_GT(shown.size(), copies.size());
    for (const std::string &line : shown) EXPECT_EQ(1u, dumped.count(line)) << line;
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
    EXPECT_EQ("zexif: cannot load " + path + ": " + GetParam().reason + "\n", run.err);
}

INSTANTIATE_TEST_SUITE_P(
    Files, ToolOnBadFile,
    ::testing::Values(FailingFile{"missing.jpg", nullptr, "No such file or directory"},
                      FailingFile{"notes.txt", "just some text\n", "not a JPEG or TIFF file, or damaged"},
                      FailingFile{"folder", nullptr, "Is a directory"},
                      FailingFile{"empty.jpg", "", "not a JPEG or TIFF file, or damaged"}));

class ToolMisused : public ::testing::TestWithParam<std::vector<std::string>> {};

// Wrong arguments end in the command's usage line, after at most one line
// that says what was wrong, and touch no file.
TEST_P(ToolMisused, ExitsWithUsage)
{
    ToolRun run = RunTool(GetParam());
    EXPECT_EQ(2, run.status);
    EXPECT_EQ("", run.out);
    EXPECT_LE(LineCount(run.err), 2) << run.err;
    EXPECT_NE(std::string::npos, run.err.find(GetParam().size() > 1 ? "usage: zexif " + GetParam()[0] : "zexif"))
        << run.err;
}

INSTANTIATE_TEST_SUITE_P(Arguments, ToolMisused,
                         ::testing::Values(std::vector<std::string>{"dump"},
                                           std::vector<std::string>{"photo.jpg"},
                                           std::vector<std::string>{"get", "a.jpg"},
                                           std::vector<std::string>{"get", "a.jpg", "NoSuchTag"},
                                           std::vector<std::string>{"get", "a.jpg", "70000"},
                                           std::vector<std::string>{"get", "a.jpg", "GPSLatitude", "--ifd", "1"},
                                           std::vector<std::string>{"get", "a.jpg", "271", "--ifd", "thumb"},
                                           std::vector<std::string>{"set", "a.jpg", "Make", "text", "x"},
                                           std::vector<std::string>{"set", "a.jpg", "Make", "short", "x"},
                                           std::vector<std::string>{"delete", "a.jpg", "b.jpg", "Make", "-o", "c"},
                                           std::vector<std::string>{"strip", "a.jpg", "b.jpg", "-o", "c.jpg"},
                                           std::vector<std::string>{"thumbnail", "show", "a.jpg", "b.jpg"},
                                           std::vector<std::string>{"audio", "remove", "a.jpg", "b.wav"},
                                           std::vector<std::string>{"remove-marker", "a.jpg", "0xE2"}));

TEST(ZexifTool, HelpCoversEveryCommand)
{
    ToolRun run = RunTool({"--help"});
    EXPECT_EQ(0, run.status);
    EXPECT_EQ(0u, run.out.find("usage: zexif"));
    size_t count;
    const Command *commands = CommandTable(&count);
    for (size_t i = 0; i < count; ++i) {
        const std::string name = commands[i].name;
        ExpectLines(run.out, {"  " + name + " "});
        ToolRun help = RunTool({name, "--help"});
        EXPECT_EQ(0, help.status) << name;
        EXPECT_EQ(0u, help.out.find("usage: zexif " + name + " ")) << help.out;
    }
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

// "PATH: VALUE" lines of get over several files, by path.
std::map<std::string, std::string> ValuesByFile(const std::string &out)
{
    std::map<std::string, std::string> values;
    std::istringstream lines(out);
    for (std::string line; std::getline(lines, line);) {
        const size_t colon = line.find(": ");
        values[line.substr(0, colon)] = line.substr(colon + 2);
    }
    return values;
}

// What the read-only family gives for a tag, in the form get starts its
// line with: ASCII as text, a rational as n/d, a short in decimal.
std::string LibraryValue(const std::string &path, uint32_t tag)
{
    CExifReader *reader = zRExifBeginRead(path.c_str());
    ExifTagValue value{};
    std::string text = "-";
    if (reader != nullptr && zRExifGetTag(reader, tag, &value) == 0 && value.count > 0) {
        const auto *bytes = static_cast<const unsigned char *>(value.data);
        if (value.type == 2) text = std::string(reinterpret_cast<const char *>(bytes), strnlen(reinterpret_cast<const char *>(bytes), value.count));
        if (value.type == 3) text = std::to_string(*static_cast<const uint16_t *>(value.data));
        if (value.type == 5) {
            const auto *parts = static_cast<const uint32_t *>(value.data);
            text = std::to_string(parts[0]) + "/" + std::to_string(parts[1]);
        }
    }
    zRExifEndRead(reader);
    return text;
}

// One get over every JPEG sample per tag; each line must start with what
// the library reads, and each file the library finds no tag in must be one
// line on stderr.
TEST(ZexifTool, GetAgreesWithTheLibraryOnEveryJpegSample)
{
    TempDir dir;
    std::vector<std::string> copies;
    for (const std::string &sample : JpegSamples()) {
        copies.push_back(dir.Copy(sample, std::to_string(copies.size()) + ".jpg"));
    }
    struct Asked {
        const char *name;
        uint32_t number;
        bool text;
    };
    for (const Asked &tag : {Asked{"Make", 271, true}, Asked{"ExposureTime", 33434, false},
                             Asked{"isospeedratings", 34855, false}}) {
        std::vector<std::string> arguments = {"get"};
        arguments.insert(arguments.end(), copies.begin(), copies.end());
        arguments.push_back(tag.name);
        ToolRun run = RunTool(arguments);
        const std::map<std::string, std::string> values = ValuesByFile(run.out);
        int missing = 0;
        for (const std::string &copy : copies) {
            const std::string expected = LibraryValue(copy, tag.number);
            missing += expected == "-";
            auto found = values.find(copy);
            const std::string shown = found == values.end() ? "-" : found->second;
            EXPECT_EQ(expected, tag.text ? shown : shown.substr(0, shown.find(" ("))) << tag.name << " of " << copy;
        }
        EXPECT_EQ(missing, LineCount(run.err)) << run.err;
        EXPECT_EQ(missing > 0 ? 1 : 0, run.status);
    }
}

// Text with quotes, control characters, bytes that are no UTF-8 and some
// that are must come out of --json as a string jq reads back, the stray
// bytes as the characters of their codes; UNDEFINED bytes come as hex.
TEST(ZexifTool, JsonKeepsAnyBytesReadable)
{
    if (!Has("jq")) GTEST_SKIP() << "jq is not installed";
    const std::string description = "a\"b\\c\n\x01\xff\xc3\xa9";
    ByteBuilder tiff;
    tiff.TiffHeader(8);
    tiff.U16(2).Entry(270, 2, static_cast<uint32_t>(description.size() + 1), 38).EntryRaw(33432, 7, 3, {0, 0xab, 7});
    tiff.U32(0).Text(description).U8(0);
    TempDir dir;
    const std::string path = dir.Write("odd.tif", tiff.Data());
    ToolRun text = RunToolThroughJq({"get", path, "ImageDescription", "--json"}, ".[0].value");
    ASSERT_EQ(0, text.status) << text.err;
    EXPECT_EQ("a\"b\\c\n\x01\xc3\xbf\xc3\xa9\n", text.out);
    ToolRun bytes = RunToolThroughJq({"get", path, "Copyright", "--json"}, ".[0] | [.type, .value] | @tsv");
    EXPECT_EQ("UNDEFINED\t00ab07\n", bytes.out);
    ToolRun dump = RunToolThroughJq({"dump", path, "--json"}, ".[0].tiff.ifds[0].tags[0].name");
    EXPECT_EQ("ImageDescription\n", dump.out);
}

class ToolCommands : public ::testing::Test {
protected:
    TempDir m_dir;
    const std::string m_photo = m_dir.Copy(Sample("jpg/Canon_40D.jpg"), "photo.jpg");
    const std::string m_plain = m_dir.Copy(ZEXIF_SAMPLE_JPEG, "plain.jpg");

    // A JPEG as an editor without metadata writes it.
    void SetUp() override { ASSERT_EQ(0, RunTool({"strip", m_plain}).status); }

    std::string Get(const std::string &path, const std::string &tag, const std::string &ifd = "")
    {
        std::vector<std::string> arguments = {"get", path, tag};
        if (!ifd.empty()) arguments.insert(arguments.end(), {"--ifd", ifd});
        ToolRun run = RunTool(arguments);
        EXPECT_EQ(0, run.status) << run.err;
        return run.out;
    }
};

TEST_F(ToolCommands, GetTakesNamesAndNumbers)
{
    EXPECT_EQ("Canon\n", Get(m_photo, "Make"));
    EXPECT_EQ("Canon\n", Get(m_photo, "271"));
    EXPECT_EQ("Canon\n", Get(m_photo, "0x10F"));
    EXPECT_EQ("1/160 (0.00625)\n", Get(m_photo, "exposuretime"));
    EXPECT_EQ("1/160 (0.00625)\n", Get(m_photo, "33434", "1"));
    EXPECT_EQ("6 (JPEG (old-style))\n", Get(m_photo, "Compression", "1"));
    EXPECT_EQ(1, RunTool({"get", m_photo, "Compression"}).status);
    ToolRun missing = RunTool({"get", m_photo, "999"});
    EXPECT_EQ(1, missing.status);
    EXPECT_EQ("zexif: " + m_photo + " has no tag 999 in IFD 0\n", missing.err);
}

TEST_F(ToolCommands, SetAndDeleteReadBack)
{
    ASSERT_EQ(0, RunTool({"set", m_photo, "Make", "ascii", "Zed Optics"}).status);
    EXPECT_EQ("Zed Optics\n", Get(m_photo, "271"));
    ASSERT_EQ(0, RunTool({"set", m_photo, "41486", "rational", "4000/3"}).status);
    EXPECT_EQ("4000/3 (1333.33)\n", Get(m_photo, "FocalPlaneXResolution"));
    ASSERT_EQ(0, RunTool({"set", m_photo, "Orientation", "short", "6"}).status);
    EXPECT_EQ("6 (Rotate 90 CW)\n", Get(m_photo, "Orientation"));
    ASSERT_EQ(0, RunTool({"set", m_photo, "GPSLatitude", "rational", "52/1", "30/1", "1234/100"}).status);
    EXPECT_EQ("52\u00b0 30' 12.34\" (52.503428)\n", Get(m_photo, "GPSLatitude"));
    const std::string other = m_dir.Copy(m_photo, "other.jpg");
    ASSERT_EQ(0, RunTool({"delete", m_photo, other, "Model"}).status);
    ASSERT_EQ(0, RunTool({"delete", m_photo, "GPSInfoIFDPointer"}).status);
    for (const std::string &path : {m_photo, other}) EXPECT_EQ(1, RunTool({"get", path, "Model"}).status);
    EXPECT_EQ(1, RunTool({"get", m_photo, "GPSLatitude"}).status);
    EXPECT_EQ("Zed Optics\n", Get(other, "Make"));
}

TEST_F(ToolCommands, SetGivesThePlainSampleExifInItsIfds)
{
    const std::string out = m_dir.Path("out.jpg");
    const std::vector<uint8_t> before = ReadFileBytes(m_plain);
    ASSERT_EQ(0, RunTool({"set", m_plain, "Artist", "ascii", "Jane", "-o", out}).status);
    EXPECT_EQ(before, ReadFileBytes(m_plain));
    ASSERT_EQ(0, RunTool({"set", out, "Orientation", "short", "8"}).status);
    ASSERT_EQ(0, RunTool({"set", out, "DateTimeOriginal", "ascii", "2024:01:02 03:04:05"}).status);
    ToolRun dump = RunTool({"dump", out});
    ExpectLines(dump.out, {"IFD 0: 3 entries", "  274 Orientation", "  315 Artist", "Exif IFD: 1 entry",
                           "36867 DateTimeOriginal"});
    ToolRun refused = RunTool({"set", out, "GPSAltitude", "rational", "1/1"});
    EXPECT_EQ(1, refused.status);
    EXPECT_EQ(1, LineCount(refused.err)) << refused.err;
}

TEST_F(ToolCommands, InfoGoesOnPastAMissingFile)
{
    ToolRun run = RunTool({"info", m_photo, m_dir.Path("missing.jpg"), m_plain});
    EXPECT_EQ(1, run.status);
    EXPECT_EQ(1, LineCount(run.err)) << run.err;
    ExpectLines(run.out, {m_photo + ": JPEG\n  Exif: yes\n  thumbnail: yes\n  audio: no\n  Make: Canon\n",
                          "  Orientation: 1 (Horizontal (normal))\n", "  ExposureTime: 1/160 (0.00625)\n",
                          "\n" + m_plain + ": JPEG\n  Exif: no\n"});
    if (!Has("jq")) GTEST_SKIP() << "jq is not installed";
    ToolRun json = RunToolThroughJq({"info", m_photo, m_dir.Path("missing.jpg"), "--json"},
                                    ".[] | [.file, .error // .format, (.tags // [] | length)] | @tsv");
    EXPECT_EQ(m_photo + "\tJPEG\t9\n" + m_dir.Path("missing.jpg") + "\tcannot read " + m_dir.Path("missing.jpg") +
                  ": No such file or directory\t0\n",
              json.out);
}

TEST_F(ToolCommands, ThumbnailGoesOutAndIn)
{
    const std::string thumbnail = m_dir.Path("thumb.jpg"), again = m_dir.Path("again.jpg"), out = m_dir.Path("out.jpg");
    ASSERT_EQ(0, RunTool({"thumbnail", "extract", m_photo, thumbnail}).status);
    const std::vector<uint8_t> bytes = ReadFileBytes(thumbnail);
    ASSERT_GT(bytes.size(), 2u);
    EXPECT_EQ(0xd8, bytes[1]);
    ASSERT_EQ(0, RunTool({"thumbnail", "set", m_plain, thumbnail, "-o", out}).status);
    ASSERT_EQ(0, RunTool({"thumbnail", "extract", out, again}).status);
    EXPECT_EQ(bytes, ReadFileBytes(again));
    EXPECT_EQ(1, RunTool({"thumbnail", "set", m_plain, m_photo + ".missing"}).status);
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

// The kept orientation goes back into IFD 0 of a new APP1, where viewers
// look for it, and nothing else comes back.
TEST_F(ToolCommands, StripRemovesTheExifOfEveryFile)
{
    const std::string turned = m_dir.Copy(Sample("jpg/orientation/landscape_6.jpg"), "turned.jpg");
    ASSERT_EQ(0, RunTool({"strip", m_photo, m_plain}).status);
    EXPECT_FALSE(HasExifApp1(m_photo));
    ASSERT_EQ(0, RunTool({"strip", turned, "--keep-orientation"}).status);
    EXPECT_EQ("6 (Rotate 90 CW)\n", Get(turned, "Orientation"));
    EXPECT_EQ(1, RunTool({"get", turned, "Make"}).status);
    ExpectLines(RunTool({"dump", turned}).out, {"IFD 0: 1 entry\n          274 Orientation"});
}

TEST_F(ToolCommands, CopyExifGivesThePlainSampleTheMake)
{
    ToolRun run = RunTool({"copy-exif", m_photo, m_plain});
    ASSERT_EQ(0, run.status) << run.err;
    EXPECT_EQ("Canon\n", Get(m_plain, "Make"));
    const std::string tiff = m_dir.Copy(Sample("tiff/Arbitro.tiff"), "image.tiff");
    ToolRun mixed = RunTool({"copy-exif", m_photo, tiff});
    EXPECT_EQ(1, mixed.status);
    EXPECT_EQ(1, LineCount(mixed.err)) << mixed.err;
}

TEST(ToolTagNames, AreUniqueAndFoundInAnyCase)
{
    size_t count;
    const TagName *names = AllTagNames(&count);
    for (size_t i = 0; i < count; ++i) {
        std::string lower = names[i].name;
        for (char &c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        EXPECT_EQ(&names[i], FindTagByName(lower)) << names[i].name;
        EXPECT_STREQ(names[i].name, NameOfTag(names[i].group, names[i].number));
    }
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
        FormatCase{"SignedLongs", 9, 2, BytesOf<int32_t>({-5, 7}), "-5 7"},
        FormatCase{"Rationals", 5, 2, BytesOf<uint32_t>({72, 1, 4294967295u, 3}), "72/1 4294967295/3"},
        FormatCase{"SignedRationalWithZeroDenominator", 10, 1, BytesOf<int32_t>({-1, 0}), "-1/0"},
        FormatCase{"Doubles", 12, 1, BytesOf<double>({0.5}), "0.5"},
        FormatCase{"ManyLongsAreShortened", 4, 10, BytesOf<uint32_t>({1, 2, 3, 4, 5, 6, 7, 8, 9, 10}),
                   "1 2 3 4 5 6 7 8…(40 bytes)"},
        FormatCase{"PrintableUndefinedIsText", 7, 4, TextBytes("0230"), "\"0230\""},
        FormatCase{"LongUndefinedIsShortened", 7, 5000, std::vector<uint8_t>(5000, 0),
                   "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00…(5000 bytes)"},
        FormatCase{"FewerBytesThanTheCountShowWhatIsThere", 3, 4, BytesOf<uint16_t>({9, 8}), "9 8…(8 bytes)"},
        FormatCase{"HalfARationalShowsNone", 5, 1, BytesOf<uint32_t>({7}), "…(8 bytes)"},
        FormatCase{"NoBytes", 4, 0, std::vector<uint8_t>{}, "(empty)"},
        FormatCase{"UnknownType", 13, 1, BytesOf<uint32_t>({1}), "(unknown type)"}),
    [](const ::testing::TestParamInfo<FormatCase> &param) { return std::string(param.param.name); });

struct MeaningCase {
    const char *name;
    TagGroup group;
    uint32_t number;
    uint32_t type;
    uint32_t count;
    std::vector<uint8_t> bytes;
    std::string expected;
};

class ValueMeaning : public ::testing::TestWithParam<MeaningCase> {};

TEST_P(ValueMeaning, ReadsAsExpected)
{
    const MeaningCase &c = GetParam();
    TagView tag;
    tag.group = c.group;
    tag.number = c.number;
    tag.value = {c.type, c.count, c.bytes.data(), c.bytes.size()};
    EXPECT_EQ(c.expected, ReadableValue(tag, true));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ValueMeaning,
    ::testing::Values(
        MeaningCase{"RationalInDecimal", GROUP_EXIF, 33434, 5, 1, BytesOf<uint32_t>({1, 250}), "1/250 (0.004)"},
        MeaningCase{"ZeroDenominator", GROUP_EXIF, 37380, 10, 2, BytesOf<int32_t>({-1, 3, 1, 0}), "-1/3 1/0 (-0.333333 -)"},
        MeaningCase{"Orientation", GROUP_TIFF, 274, 3, 1, BytesOf<uint16_t>({8}), "8 (Rotate 270 CW)"},
        MeaningCase{"OrientationOutOfRange", GROUP_TIFF, 274, 3, 1, BytesOf<uint16_t>({9}), "9"},
        MeaningCase{"SameNumberOtherGroup", GROUP_GPS, 274, 3, 1, BytesOf<uint16_t>({6}), "6"},
        MeaningCase{"FlashFiredAutoRedEye", GROUP_EXIF, 37385, 3, 1, BytesOf<uint16_t>({0x59}),
                    "89 (Fired, auto, red-eye reduction)"},
        MeaningCase{"CoordinateWithoutRef", GROUP_GPS, 4, 5, 3, BytesOf<uint32_t>({11, 1, 5330, 100, 0, 1}),
                    "11\u00b0 53.3' 0\" (11.888333)"},
        MeaningCase{"CoordinateOfOtherShape", GROUP_GPS, 2, 5, 2, BytesOf<uint32_t>({11, 1, 5, 1}), "11/1 5/1 (11 5)"},
        MeaningCase{"UndefinedText", GROUP_EXIF, 36864, 7, 4, TextBytes("0221"), "30 32 32 31 (0221)"},
        MeaningCase{"AsciiUserComment", GROUP_EXIF, 37510, 7, 12, TextBytes(std::string("ASCII\0\0\0Hi! ", 12)),
                    "41 53 43 49 49 00 00 00 48 69 21 20 (Hi!)"}),
    [](const ::testing::TestParamInfo<MeaningCase> &param) { return std::string(param.param.name); });

TEST(ToolJson, QuotesAnyBytesAsValidJson)
{
    const std::string bytes = "\"\\\t\x7f\xc3\xa9\xe0\x80\x80\xed\xa0\x80\xf4\x90\x80\x80\xf0\x9f\x98\x80";
    EXPECT_EQ("\"\\\"\\\\\\t\\u007f\xc3\xa9\\u00e0\\u0080\\u0080\\u00ed\\u00a0\\u0080\\u00f4\\u0090\\u0080\\u0080"
              "\xf0\x9f\x98\x80\"",
              JsonQuoted(reinterpret_cast<const unsigned char *>(bytes.data()), bytes.size()));
    JsonWriter json;
    json.BeginObject().Key("a").BeginArray().Integer(-1).Real(0.1).Real(1.0 / 0.0).EndArray().Key("b").Bool(true);
    EXPECT_EQ("{\"a\":[-1,0.1,null],\"b\":true}", json.EndObject().Text());
}

}  // namespace
