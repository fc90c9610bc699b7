#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <utime.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "support/files.h"
#include "support/tree_records.h"

namespace {

struct ToolRun {
    int status;
    std::string out;
    std::string err;
};

std::string Quoted(const std::string &text)
{
    std::string quoted = "'";
    for (char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

std::string Text(const std::string &path)
{
    Bytes bytes = ReadFile(path);
    return std::string(bytes.begin(), bytes.end());
}

// Runs the tool with its output caught; a death by signal gives -1.
ToolRun Tool(const std::vector<std::string> &arguments)
{
    TempDir dir;
    std::string line = Quoted(ZEXIF_TOOL_PATH);
    for (const std::string &argument : arguments) line += " " + Quoted(argument);
    line += " >" + Quoted(dir.Path("out")) + " 2>" + Quoted(dir.Path("err")) + " </dev/null";
    int wait = std::system(line.c_str());
    return {WIFEXITED(wait) ? WEXITSTATUS(wait) : -1, Text(dir.Path("out")), Text(dir.Path("err"))};
}

std::string Golden(const std::string &name)
{
    return Text(std::string(ZEXIF_GOLDEN_DIR) + "/" + name);
}

std::string Replaced(std::string text, const std::string &from, const std::string &to)
{
    for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
    return text;
}

// Values of every kind, as a camera and an editor leave them.
Bytes ValueKinds()
{
    Block block;
    block.chain = {{Ascii(270, "Caf\xc3\xa9 \"quoted\"\n"), Ascii(271, "Maker"), Short(274, 6), Rational(282, 300, 1),
                    Short(296, 2), Ascii(315, "Ann, \"A\""), Typed(700, 1, 6, {1, 2, 3, 4, 5, 6}), Ascii(33432, "(c) Ann"), Typed(33550, 12, 1, {0, 0, 0, 0, 0, 0, 0xF8, 0x3F}),
                    PointerTo(34665, 0), PointerTo(34853, 1)}};
    block.subs = {{Rational(33434, 1, 250), Rational(33437, 28, 10), Short(34855, 400), Ascii(36867, "2024:02:29 23:59:59"),
                   Typed(37377, 10, 1, {0xFD, 0xFF, 0xFF, 0xFF, 3, 0, 0, 0}), Rational(37386, 50, 1), Typed(37500, 7, 5, {'N', 'i', 0, 0xFF, 7}),
                   Typed(37510, 7, 12, {'A', 'S', 'C', 'I', 'I', 0, 0, 0, 'H', 'e', 'y', '!'}),
                   Long(40962, 4000), Long(40963, 3000), Typed(41728, 7, 1, {3}), Short(41989, 75), Ascii(42036, "Lens 50"), Typed(50000, 11, 1, {0, 0, 0xC0, 0x3F})},
                  {Typed(0, 1, 4, {2, 3, 0, 0}), Ascii(1, "N"),
                   Typed(2, 5, 3, {48, 0, 0, 0, 1, 0, 0, 0, 51, 0, 0, 0, 1, 0, 0, 0, 30, 0, 0, 0, 1, 0, 0, 0}),
                   Ascii(3, "W"), Typed(4, 5, 3, {2, 0, 0, 0, 1, 0, 0, 0, 20, 0, 0, 0, 1, 0, 0, 0, 15, 0, 0, 0, 2, 0, 0, 0}),
                   Typed(5, 1, 1, {1}), Rational(6, 7, 2)}};
    return Layout(block);
}

// The dump of the bundled sample and of values of every kind, in text and
// JSON, read as a person and a program would want them.
TEST(Tool, DumpsAsTheGoldenFilesShow)
{
    ToolRun sample = Tool({});
    EXPECT_EQ(0, sample.status);
    EXPECT_EQ(Golden("sample.txt"), sample.out);
    TempDir dir;
    std::string path = dir.Write("kinds.tif", ValueKinds());
    EXPECT_EQ(Golden("kinds.txt"), Replaced(Tool({"dump", path}).out, path, "FILE"));
    EXPECT_EQ(Golden("kinds.json"), Replaced(Tool({"dump", path, "--json"}).out, path, "FILE"));
    std::string info = Replaced(Tool({"info", path, ZEXIF_SAMPLE_JPEG}).out, path, "FILE");
    EXPECT_EQ(Golden("info.txt"), Replaced(info, ZEXIF_SAMPLE_JPEG, "SAMPLE"));
}

std::string Tag(const std::string &path, uint32_t tag)
{
    ReaderPtr reader(zRExifBeginRead(path.c_str()));
    return ReaderValue(reader.get(), tag);
}

// A tag's bytes as the reader gives them, "-" for none; with marker, the
// file's APPn and comment segments ("E0 FE") instead.
const int MARKERS = -1;
std::string At(const std::string &path, int ifd, uint32_t tag)
{
    if (ifd == MARKERS) {
        std::string codes;
        for (int code : MarkerCodes(*DocPtr(zExifLoadFile(path.c_str())))) {
            if (code >= 0xE0) codes += (codes.empty() ? "" : " ") + std::string(1, "0123456789ABCDEF"[code >> 4]) + "0123456789ABCDEF"[code & 15];
        }
        return codes;
    }
    ReaderPtr reader(zRExifBeginRead(path.c_str()));
    ExifTagValue value = {};
    if (zRExifGetTagAt(reader.get(), ifd, tag, &value) != 0) return "-";
    Bytes bytes = ValueBytes(value);
    return std::string(bytes.begin(), bytes.end());
}

// Each command on a copy of the sample does what it says, as the library
// reads the file afterwards.
TEST(Tool, CommandsChangeWhatTheySay)
{
    TempDir dir;
    std::string photo = dir.Write("photo.jpg", ReadFile(ZEXIF_SAMPLE_JPEG));
    EXPECT_EQ("zExifLib\n", Tool({"get", photo, "Make"}).out);
    const struct utimbuf past = {1000000000, 1000000000};
    utime(photo.c_str(), &past);
    ToolRun streamed = Tool({"set", photo, "Model", "ascii", "Second", "-o", "-"});
    EXPECT_EQ(0, Tool({"set", photo, "Model", "ascii", "Second", "--preserve-time"}).status);
    EXPECT_EQ(std::string("Second", 7), Tag(photo, 272));
    EXPECT_EQ(Text(photo), streamed.out);
    struct stat info;
    stat(photo.c_str(), &info);
    EXPECT_EQ(1000000000, info.st_mtime);
    dir.Write("new.jpg", ThumbnailBytes(900));
    EXPECT_EQ(0, Tool({"thumbnail", "set", photo, dir.Path("new.jpg"), "-o", dir.Path("out.jpg")}).status);
    EXPECT_EQ(ThumbnailBytes(900), ReadRaw(ReadFile(dir.Path("out.jpg"))).thumbnail);

    Bytes wave = {'R', 'I', 'F', 'F', 8, 0, 0, 0, 'W', 'A', 'V', 'E', 1, 2, 3, 4};
    EXPECT_EQ(0, Tool({"audio", "set", photo, dir.Write("in.wav", wave)}).status);
    EXPECT_EQ(0, Tool({"audio", "extract", photo, dir.Path("out.wav")}).status);
    EXPECT_EQ(wave, ReadFile(dir.Path("out.wav")));
    EXPECT_EQ(0, Tool({"audio", "remove", photo}).status);
    EXPECT_EQ(1, Tool({"audio", "extract", photo, dir.Path("none.wav")}).status);

    Bytes xmp = {'h', 't', 't', 'p', ':', '/', '/', 'n', 's', '.', 'a', 'd', 'o', 'b', 'e', 0, '<', 'x', '/', '>'};
    std::string plain = dir.Write("plain.jpg", Jpeg({{0xE1, ExifPayload(Layout({false, {{Short(274, 3)}}, {}, {}}))},
                                                     {0xE1, xmp}, {0xDB, Bytes(65, 1)}}, {}));
    EXPECT_EQ(0, Tool({"copy-exif", photo, plain}).status);
    EXPECT_EQ(std::string("Second", 7), Tag(plain, 272));
    EXPECT_NE(std::string::npos, Text(plain).find(std::string(xmp.begin(), xmp.end()))) << "XMP stays";
    EXPECT_EQ("E1 E1", At(plain, MARKERS, 0));
    EXPECT_EQ(0, Tool({"strip", photo}).status);
    EXPECT_EQ("-", Tag(photo, 272));
    EXPECT_EQ(0, Tool({"remove-marker", plain, "0xE1"}).status);
    EXPECT_EQ("-", Tag(plain, 272));
}

std::string Rationals(std::vector<uint32_t> numbers)
{
    return std::string(reinterpret_cast<const char *>(numbers.data()), numbers.size() * 4);
}

// Each job on a copy of the sample (F, with a comment and an XMP packet), of
// the value kinds (T) or of a file with a bad date (B), checked through the
// library in the last file; a dry run, a refused value or nothing to do leaves
// the file byte for byte.
TEST(Tool, EverydayJobsChangeWhatTheySay)
{
    const std::string same = "=";
    struct Job {
        std::vector<std::string> arguments;
        int status, ifd;
        uint32_t tag;
        std::string expected;
    } jobs[] = {
        {{"set", "-t", "Artist=Jane Doe", "--tag=FNumber=4", "F"}, 0, IFD_EXIF, 33437, Rationals({4, 1})},
        {{"set", "-t", "0xC000:short=7", "-t", "ExposureBiasValue=-0.5", "F"}, 0, 0, 0xC000, std::string("\7\0", 2)},
        {{"set", "-t", "DateTime=2023:02:29 10:00:00", "F"}, 2, 0, 0, same},
        {{"set", "-t", "Artist=X", "-t", "FNumber=f4", "F"}, 2, 0, 0, same},
        {{"set", "-t", "GPSLatitude=1 2", "F"}, 2, 0, 0, same},
        {{"set", "-t", "Unknown=1", "F"}, 2, 0, 0, same},
        {{"set", "-n", "-t", "Artist=X", "F"}, 0, 0, 0, same},
        {{"delete", "-t", "Artist", "F"}, 0, 0, 0, same},
        {{"delete", "-t", "Artist", "-t", "Make", "F"}, 0, 0, 271, "-"},
        {{"gps", "set", "--lat=-33.5", "--lon", "151.25", "--alt=-2", "F"}, 0, IFD_GPS, 2, Rationals({33, 1, 30, 1, 0, 1000})},
        {{"gps", "set", "--lat=91", "--lon=0", "F"}, 2, 0, 0, same},
        {{"gps", "remove", "T"}, 0, 0, 34853, "-"},
        {{"shift-dates", "--by=+97 18:00", "F"}, 0, IFD_EXIF, 36867, std::string("2027:03:01 00:00:00", 20)},
        {{"shift-dates", "--by", "-1000 00:00:00", "F"}, 0, 0, 306, std::string("2024:02:27 06:00:00", 20)},
        {{"shift-dates", "--by=1:00", "T"}, 0, IFD_EXIF, 36867, std::string("2024:03:01 00:59:59", 20)},
        {{"shift-dates", "--by=1:00", "B"}, 1, 0, 0, same},
        {{"shift-dates", "-n", "--by=1:00", "F"}, 0, 0, 0, same},
        {{"comment", "set", "Hi", "F"}, 0, MARKERS, 0, "E0 E1 E1 FE"},
        {{"comment", "remove", "F"}, 0, MARKERS, 0, "E0 E1 E1"},
        {{"strip", "--all", "--keep-orientation", "T"}, 0, 0, 274, std::string("\6\0", 2)},
        {{"strip", "--all", "F"}, 0, MARKERS, 0, "E0"},
        {{"thumbnail", "remove", "F"}, 0, 1, 259, "-"},
        {{"copy-exif", "F", "T"}, 0, IFD_EXIF, 33434, Rationals({1, 250})},
        {{"copy-exif", "T", "F"}, 0, IFD_GPS, 3, std::string("W\0", 2)},
    };
    Bytes xmp = {'h', 't', 't', 'p', ':', '/', '/', 'n', 's', '.', 'a', 'd', 'o', 'b', 'e', '.', 'c', 'o', 'm', '/', 'x', 'a', 'p',
                 '/', '1', '.', '0', '/', 0, '<', 'x', '/', '>'};
    DocPtr sample(zExifLoadFile(ZEXIF_SAMPLE_JPEG));
    const ExifBuffer packet = {xmp.data(), uint32_t(xmp.size())}, comment = {xmp.data(), 4};
    zExifInsertSegment(sample.get(), 0xE1, &packet);
    zExifInsertSegment(sample.get(), 0xFE, &comment);
    ExifBuffer saved = {};
    zExifSaveMemory(sample.get(), &saved);
    const Bytes rich(saved.data, saved.data + saved.size);
    zExifFreeBuffer(&saved);
    for (const Job &job : jobs) {
        TempDir dir;
        const std::string photo = dir.Write("photo.jpg", rich), tiff = dir.Write("kinds.tif", ValueKinds());
        const std::string bad = dir.Write("bad.jpg", JpegOf({{Ascii(306, "2024:13:01 00:00:00")}}));
        std::vector<std::string> arguments = job.arguments;
        for (std::string &word : arguments) word = word == "F" ? photo : word == "T" ? tiff : word == "B" ? bad : word;
        const Bytes before = ReadFile(arguments.back());
        ToolRun run = Tool(arguments);
        EXPECT_EQ(job.status, run.status) << arguments[0] << " " << arguments[1] << run.err;
        if (job.expected == same) EXPECT_EQ(before, ReadFile(arguments.back())) << arguments[0] << " " << arguments[1];
        if (job.expected != same) EXPECT_EQ(job.expected, At(arguments.back(), job.ifd, job.tag)) << arguments[0] << " " << arguments[1];
    }
}

// Many files on two threads come out in the order given, a failed one told
// and counted, as CSV quoted where a field needs it and JSON that parses;
// -r finds images by their bytes; rename never takes a name twice.
TEST(Tool, ManyFilesComeOutInOrder)
{
    TempDir dir;
    std::string photo = dir.Write("photo.jpg", ReadFile(ZEXIF_SAMPLE_JPEG)), tiff = dir.Write("kinds.tif", ValueKinds());
    ToolRun csv = Tool({"info", "-j", "2", "--csv", tiff, dir.Path("missing.jpg"), photo});
    EXPECT_EQ(1, csv.status);
    EXPECT_EQ("file,format,exif,thumbnail,audio,camera,lens,date,exposure,fNumber,iso,focalLength,imageSize,orientation,gps,artist,"
              "copyright\n" + tiff + ",TIFF,yes,no,no,Maker,Lens 50,2024:02:29 23:59:59,1/250 s,f/2.8,400,50.0 mm (35 mm equivalent: "
              "75 mm),4000x3000,Rotate 90 CW,\"48.858333, -2.335417, -3.5 m\",\"Ann, \"\"A\"\"\",(c) Ann\n" + photo +
                  ",JPEG,yes,yes,no,zExifLib make_sample,,2026:11:23 06:00:00,1/250 s,f/2.8,100,,,,,,\n", csv.out);
    ToolRun json = Tool({"get", "--json", "-t", "GPSPosition", "-t", "Artist", tiff, photo});
    FILE *jq = popen(("jq -c '[.[].tags[] | .value // .missing]' >" + dir.Path("jq.out")).c_str(), "w");
    fputs(json.out.c_str(), jq);
    if (pclose(jq) == 0) EXPECT_EQ("[[48.858333333333334,-2.3354166666666667],\"Ann, \\\"A\\\"\",true,true]\n", Text(dir.Path("jq.out")));
    EXPECT_EQ(1, json.status);

    TempDir in;
    for (const char *name : {"a.dat", "b.dat", "c.jpg"}) in.Write(name, ReadFile(name[0] == 'c' ? tiff : photo));
    in.Write("text.jpg", {'h', 'i'});
    EXPECT_EQ(in.Path("a.dat") + ": zExifLib\n" + in.Path("b.dat") + ": zExifLib\n" + in.Path("c.jpg") + ": Maker\n",
              Tool({"get", "-r", "-t", "Make", in.m_path}).out);
    EXPECT_EQ(0, Tool({"rename", "--format=%Y-%m-%d", "-n", "-r", in.m_path}).status);
    EXPECT_EQ((std::vector<std::string>{"a.dat", "b.dat", "c.jpg", "text.jpg"}), in.List());
    EXPECT_EQ(0, Tool({"rename", "--format=%Y-%m-%d", "-r", in.m_path}).status);
    EXPECT_EQ((std::vector<std::string>{"2024-02-29.jpg", "2026-11-23-1.dat", "2026-11-23.dat", "text.jpg"}), in.List());
    EXPECT_EQ(0, Tool({"thumbnail", "extract", "-o", in.m_path, photo}).status);
    EXPECT_EQ(645u, ReadFile(in.Path("photo-thumb.jpg")).size());
}

// Misuse gets a pointer to the help and 2, a file that can't be handled or
// saved one line on standard error, with the reason, and 1.
TEST(Tool, FailuresAreToldAndCounted)
{
    for (const std::vector<std::string> &arguments : std::vector<std::vector<std::string>>{
             {"frobnicate"}, {"get"}, {"set", "x.jpg", "Make"}, {"thumbnail", "eat", "x"}, {"thumbnail"}, {"audio"},
             {"info", "--bogus", "x.jpg"}, {"get", "-t"}, {"info", "-j", "0", "x.jpg"}, {"rename", "x.jpg"}}) {
        ToolRun run = Tool(arguments);
        EXPECT_EQ(2, run.status) << arguments[0];
        EXPECT_NE(std::string::npos, run.err.find("--help")) << arguments[0];
    }
    TempDir dir;
    for (const std::string &path : {dir.Path("missing.jpg"), dir.Write("text.jpg", {'h', 'i'})}) {
        ToolRun run = Tool({"dump", path});
        EXPECT_EQ(1, run.status) << path;
        EXPECT_EQ(1, std::count(run.err.begin(), run.err.end(), '\n')) << run.err;
    }
    std::string photo = dir.Write("photo.jpg", ReadFile(ZEXIF_SAMPLE_JPEG));
    mkfifo(dir.Path("pipe").c_str(), 0644);
    struct rlimit old;
    getrlimit(RLIMIT_FSIZE, &old);
    const struct rlimit limited = {1024, old.rlim_max};
    const std::pair<std::string, std::string> refusals[] = {
        {dir.Path("pipe"), "not a regular file"}, {dir.m_path, "it is a directory"},
        {"/dev/null", "not a regular file"},      {photo, "File too large"}};
    for (const auto &[out, reason] : refusals) {
        if (out == photo) setrlimit(RLIMIT_FSIZE, &limited);
        ToolRun run = Tool({"set", photo, "Make", "ascii", "X", "-o", out});
        setrlimit(RLIMIT_FSIZE, &old);
        EXPECT_EQ(1, run.status) << out;
        EXPECT_EQ(0u, run.err.find("zexif: cannot save " + out + ": " + reason)) << run.err;
        EXPECT_EQ(1, std::count(run.err.begin(), run.err.end(), '\n')) << run.err;
    }
    EXPECT_EQ(ReadFile(ZEXIF_SAMPLE_JPEG), ReadFile(photo));
    // An Exif IFD of no entries, a block that isn't one, a thumbnail of no
    // bytes: each told, none a crash.
    std::string tiff = dir.Write("empty.tif", Layout({false, {{Short(274, 1), PointerTo(34665, 0)}}, std::vector<Ifd>(1), {}}));
    std::string broken = dir.Write("broken.jpg", Jpeg({{0xE1, {'E', 'x', 'i', 'f', 0, 0, 'I', 'I'}}}, {}));
    std::string empty = dir.Write("empty.jpg", JpegOf({{Short(274, 1)}, {Long(513, 8), Long(514, 0)}}));
    for (const std::vector<std::string> &arguments : std::vector<std::vector<std::string>>{
             {"copy-exif", tiff, dir.Write("into.tif", Layout({false, {{Short(274, 1)}}, {}, {}}))},
             {"copy-exif", broken, dir.Write("into.jpg", JpegOf({}))},
             {"thumbnail", "extract", empty, dir.Path("thumb.jpg")}}) {
        ToolRun run = Tool(arguments);
        EXPECT_EQ(1, run.status) << arguments[0] << " " << arguments[1];
        EXPECT_EQ(1, std::count(run.err.begin(), run.err.end(), '\n')) << run.err;
    }
    EXPECT_FALSE(std::filesystem::exists(dir.Path("thumb.jpg")));
}

}  // namespace
