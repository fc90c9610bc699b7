#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>

#include "support/files.h"
#include "support/oracle.h"
#include "support/tree_records.h"

namespace {

bool Has(const std::string &program)
{
    return std::system(("command -v " + program + " >/dev/null 2>&1").c_str()) == 0;
}

// What a reader prints for each file, line by line; a line that names a file
// ("======== path" from ExifTool, or the path in front of exiv2's lines)
// starts or marks that file's part.
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
        if (text.find(" files read") != std::string::npos) continue;
        for (const std::string &path : paths) {
            if (text.compare(0, path.size(), path) == 0) current = path, text = text.substr(path.size());
        }
        readings[current].push_back(text);
    }
    std::free(buffer);
    if (pipe != nullptr) pclose(pipe);
    return readings;
}

// Where a block, an IFD or a strip stands, and what a reader says of the
// place and byte order it found the maker note in, change with the layout.
const char *const kLayoutWords[] = {"ThumbnailOffset", "StripOffsets", "TileOffsets", "ExifTag", "InteroperabilityTag",
                                    "GPSTag", "JPEGInterchangeFormat", "Exif.MakerNote.", "Exif.Photo.MakerNote",
                                    // An Olympus preview is found at a file offset.
                                    "PreviewImageStart"};

bool Names(const std::string &line, const std::vector<std::string> &words)
{
    for (const std::string &word : words) {
        if (line.find(word) != std::string::npos) return true;
    }
    return false;
}

std::vector<std::string> Kept(const std::vector<std::string> &lines, const std::vector<std::string> &changed)
{
    std::vector<std::string> words(std::begin(kLayoutWords), std::end(kLayoutWords));
    words.insert(words.end(), changed.begin(), changed.end());
    std::vector<std::string> kept;
    for (const std::string &line : lines) {
        if (!Names(line, words)) kept.push_back(line);
    }
    return kept;
}

// The first line where two readings part, cut short for the message; empty
// where they agree.
std::string FirstDifference(const std::vector<std::string> &a, const std::vector<std::string> &b)
{
    auto at = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
    if (at.first == a.end() && at.second == b.end()) return "";
    std::string was = at.first == a.end() ? "(nothing)" : at.first->substr(0, 160);
    std::string is = at.second == b.end() ? "(nothing)" : at.second->substr(0, 160);
    return "was " + was + "\nis  " + is;
}

// A file made from another, which it must read like except on the lines that
// name what was changed.
struct Job {
    std::string made;
    std::string like;
    std::vector<std::string> changed;
};

struct Edit {
    std::vector<std::string> changed;
    std::function<int(CExifDoc *)> apply;
};

std::vector<Edit> Edits(const Bytes &thumbnail)
{
    static const uint8_t artist[] = {'J', 'a', 'n', 'e', 0};
    static const uint8_t comment[] = {'A', 'S', 'C', 'I', 'I', 0, 0, 0, 'x'};
    return {{{"Artist"},
             [](CExifDoc *doc) {
                 ExifTagValue value = {2, 5, const_cast<uint8_t *>(artist)};
                 return zExifSetTag(doc, 315, &value, 0);
             }},
            {{"UserComment"},
             [](CExifDoc *doc) {
                 ExifTagValue value = {7, 9, const_cast<uint8_t *>(comment)};
                 return zExifSetTag(doc, 37510, &value, 0);
             }},
            {{"ModifyDate", "Image.DateTime "}, [](CExifDoc *doc) { return zExifDelTag(doc, 306, 0); }},
            {{"[IFD1]", "Exif.Thumbnail."}, [thumbnail](CExifDoc *doc) {
                 ExifBuffer buffer = {const_cast<uint8_t *>(thumbnail.data()), uint32_t(thumbnail.size())};
                 return zExifSetThumbnailData(doc, &buffer);
             }}};
}

bool LibtiffTakes(const std::string &path)
{
    return std::system(("tiffinfo '" + path + "' >/dev/null 2>&1").c_str()) == 0;
}

int CopyExif(const std::string &from, const std::string &into, const std::string &out)
{
    return std::system(
        ("'" + std::string(ZEXIF_TOOL_PATH) + "' copy-exif '" + from + "' '" + into + "' -o '" + out + "' 2>/dev/null")
            .c_str());
}

// ExifTool and exiv2 read every tag of every IFD, the Interop IFD and the
// maker note as in the source after each kind of edit of another tag; a block
// copied into another camera's file reads there as in its source, and the
// target's XMP stays. libtiff takes every TIFF it took before the edit.
TEST(OutsideReaders, ReadEveryUneditedTagAsBefore)
{
    SKIP_WITHOUT_SAMPLES();
    if (!Has("exiftool") || !Has("exiv2")) GTEST_SKIP() << "exiftool or exiv2 is not installed";
    TempDir dir;
    std::vector<std::string> files, jpegs;
    std::vector<Job> jobs, xmpJobs;
    std::vector<Edit> edits = Edits(ThumbnailBytes(3000));
    for (const std::string &path : Samples()) {
        Bytes bytes = ReadFile(path);
        RawFile raw = ReadRaw(bytes);
        if (raw.tags.empty()) continue;
        std::string source = dir.Write(std::to_string(files.size()) + (raw.format == 1 ? ".jpg" : ".tif"), bytes);
        files.push_back(source);
        if (raw.format == 1) jpegs.push_back(source);
        for (size_t kind = 0; kind < edits.size(); kind++) {
            std::string out = dir.Path(std::to_string(kind) + "-" + ShortName(source));
            DocPtr doc(zExifLoadFile(source.c_str()));
            if (edits[kind].apply(doc.get()) != 0) continue;
            ASSERT_EQ(0, zExifSaveFile(doc.get(), out.c_str())) << path << " edit " << kind;
            jobs.push_back({out, source, edits[kind].changed});
            if (raw.format == 2 && Has("tiffinfo")) EXPECT_EQ(LibtiffTakes(source), LibtiffTakes(out)) << out;
        }
    }
    for (size_t i = 0; i < jpegs.size(); i++) {
        const std::string &into = jpegs[(i + 1) % jpegs.size()], out = dir.Path("copied-" + ShortName(jpegs[i]));
        ASSERT_EQ(0, CopyExif(jpegs[i], into, out)) << jpegs[i] << " into " << into;
        jobs.push_back({out, jpegs[i], {}});
        xmpJobs.push_back({out, into, {}});
    }
    std::vector<std::string> all = files;
    for (const Job &job : jobs) all.push_back(job.made);
    for (const char *reader :
         {"exiftool -m -G1 -a -u -n -s -EXIF:all -MakerNotes:all", "exiv2 -q -PEkv", "exiv2 -q -PXkv"}) {
        std::map<std::string, std::vector<std::string>> readings = Readings(reader, all);
        const bool xmp = std::string(reader).find("PX") != std::string::npos;
        if (!xmp) EXPECT_FALSE(readings[files.front()].empty()) << reader;
        for (const Job &job : xmp ? xmpJobs : jobs) {
            EXPECT_EQ("", FirstDifference(Kept(readings[job.like], job.changed), Kept(readings[job.made], job.changed)))
                << reader << ": " << job.made << " from " << job.like;
        }
    }
}

}  // namespace
