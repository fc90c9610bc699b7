#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>

#include "support/files.h"
#include "support/raw.h"

namespace {

int Shell(const std::string &line)
{
    return std::system((line + " >/dev/null 2>&1").c_str());
}

// What a reader prints for each file, line by line; a line that names a file
// ("======== path" from ExifTool, or the path in front of exiv2's lines)
// starts that file's part.
std::map<std::string, std::vector<std::string>> Readings(const std::string &command,
                                                         const std::vector<std::string> &paths)
{
    std::string line = command;
    for (const std::string &path : paths) line += " '" + path + "'";
    std::map<std::string, std::vector<std::string>> readings;
    FILE *pipe = popen((line + " 2>/dev/null").c_str(), "r");
    char *buffer = nullptr;
    size_t capacity = 0;
    std::string current;
    while (pipe != nullptr && getline(&buffer, &capacity, pipe) > 0) {
        std::string text = buffer;
        if (text.compare(0, 9, "======== ") == 0) {
            current = text.substr(9, text.size() - 10);
            continue;
        }
        for (const std::string &path : paths) {
            if (text.compare(0, path.size(), path) == 0) current = path, text = text.substr(path.size());
        }
        if (text.find(" files read") == std::string::npos) readings[current].push_back(text);
    }
    std::free(buffer);
    if (pipe != nullptr) pclose(pipe);
    return readings;
}

// Where a block, an IFD or a strip stands, and where and in which byte order
// a reader found the maker note, change with the layout; an Olympus preview
// is found at a file offset.
const std::vector<std::string> kLayout = {
    "ThumbnailOffset",      "StripOffsets",     "TileOffsets",           "ExifTag",
    "InteroperabilityTag",  "GPSTag",           "JPEGInterchangeFormat", "Exif.MakerNote.",
    "Exif.Photo.MakerNote", "PreviewImageStart"};

// The lines that name no word of the layout or of changed.
std::vector<std::string> Kept(const std::vector<std::string> &lines, std::vector<std::string> changed)
{
    changed.insert(changed.end(), kLayout.begin(), kLayout.end());
    std::vector<std::string> kept;
    for (const std::string &line : lines) {
        if (std::none_of(changed.begin(), changed.end(),
                         [&](const std::string &w) { return line.find(w) != std::string::npos; })) {
            kept.push_back(line);
        }
    }
    return kept;
}

// The first line where two readings part, cut short; empty where they agree.
std::string FirstDifference(const std::vector<std::string> &a, const std::vector<std::string> &b)
{
    auto at = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
    if (at.first == a.end() && at.second == b.end()) return "";
    return "was " + (at.first == a.end() ? "(nothing)" : at.first->substr(0, 160)) + "\nis  " +
           (at.second == b.end() ? "(nothing)" : at.second->substr(0, 160));
}

// ExifTool and exiv2 read every tag of every IFD, the Interop IFD and the
// maker note as in the source after each kind of edit of another tag; a block
// copied into another camera's file reads there as in its source, and the
// target's XMP stays. libtiff takes every TIFF it took before the edit.
TEST(OutsideReaders, ReadEveryUneditedTagAsBefore)
{
    SKIP_WITHOUT_SAMPLES();
    if (Shell("command -v exiftool") != 0 || Shell("command -v exiv2") != 0) GTEST_SKIP() << "exiftool or exiv2 is missing";
    TempDir dir;
    const std::string tool = std::string("'") + ZEXIF_TOOL_PATH + "' ";
    const std::string thumbnail = dir.Write("thumbnail.jpg", ThumbnailBytes(3000));
    const struct {
        std::string command;
        std::vector<std::string> changed;  // words of the lines it changes
    } edits[] = {{"set %s Artist ascii Jane", {"Artist"}},
                 {"set %s UserComment undefined 0 0 0 0 0 0 0 0 120", {"UserComment"}},
                 {"delete %s DateTime", {"ModifyDate", "Image.DateTime "}},
                 {"thumbnail set %s " + thumbnail, {"[IFD1]", "Exif.Thumbnail."}}};
    std::vector<std::string> files, jpegs, all;
    struct Made {
        std::string path, like;
        std::vector<std::string> changed;
    };
    std::vector<Made> made, xmp;
    for (const std::string &path : Samples()) {
        RawFile raw = ReadRaw(ReadFile(path));
        if (raw.tags.empty()) continue;
        std::string source =
            dir.Write(std::to_string(files.size()) + (raw.format == 1 ? ".jpg" : ".tif"), ReadFile(path));
        files.push_back(source);
        if (raw.format == 1) jpegs.push_back(source);
        for (const auto &edit : edits) {
            std::string out = dir.Path(std::to_string(made.size()) + "-" + ShortName(source)), command = edit.command;
            command.replace(command.find("%s"), 2, "'" + source + "'");
            if (Shell(tool + command + " -o '" + out + "'") != 0) continue;
            made.push_back({out, source, edit.changed});
            if (raw.format == 2 && Shell("command -v tiffinfo") == 0) {
                EXPECT_EQ(Shell("tiffinfo '" + source + "'"), Shell("tiffinfo '" + out + "'")) << out;
            }
        }
    }
    for (size_t i = 0; i < jpegs.size(); i++) {
        const std::string &into = jpegs[(i + 1) % jpegs.size()], out = dir.Path("copied-" + ShortName(jpegs[i]));
        ASSERT_EQ(0, Shell(tool + "copy-exif '" + jpegs[i] + "' '" + into + "' -o '" + out + "'")) << jpegs[i];
        made.push_back({out, jpegs[i], {}});
        xmp.push_back({out, into, {}});
    }
    all = files;
    for (const Made &m : made) all.push_back(m.path);
    for (const char *reader :
         {"exiftool -m -G1 -a -u -n -s -EXIF:all -MakerNotes:all", "exiv2 -q -PEkv", "exiv2 -q -PXkv"}) {
        std::map<std::string, std::vector<std::string>> readings = Readings(reader, all);
        const bool xmpReader = std::string(reader).find("PX") != std::string::npos;
        if (!xmpReader) EXPECT_FALSE(readings[files.front()].empty()) << reader;
        for (const Made &m : xmpReader ? xmp : made) {
            EXPECT_EQ("", FirstDifference(Kept(readings[m.like], m.changed), Kept(readings[m.path], m.changed)))
                << reader << ": " << m.path;
        }
    }
}

}  // namespace
