#include <cstdio>
#include <filesystem>

#include "zexif/command.h"
#include "zexif/edit_session.h"
#include "zexif/file_bytes.h"
#include "zexif/file_runner.h"
#include "zexif/open_reader.h"
#include "zexif/output.h"
#include "zexif.h"

namespace {

constexpr uint32_t TAG_THUMB_OFFSET = 513, TAG_THUMB_LENGTH = 514;
constexpr int IFD_THUMBNAIL = 1;

int Extract(const std::string &path, const std::string &out)
{
    CExifReader *reader = OpenReader(path);
    if (reader == nullptr) return EXIT_FAILED;
    ExifBuffer thumbnail{};
    bool done = zRExifGetThumbnailData(reader, &thumbnail) == 0 && thumbnail.size > 0;
    if (!done) std::fprintf(Err(), "zexif: %s has no thumbnail\n", path.c_str());
    done = done && WriteFileBytes(out, thumbnail.data, thumbnail.size);
    zRExifEndRead(reader);
    return done ? EXIT_OK : EXIT_FAILED;
}

// photo.jpg's thumbnail goes to DIR/photo-thumb.jpg.
std::string ThumbnailPath(const std::string &folder, const std::string &path)
{
    return (std::filesystem::path(folder) / (std::filesystem::path(path).stem().string() + "-thumb.jpg")).string();
}

// The library takes any bytes as a thumbnail; readers of the file expect a
// JPEG stream there.
bool StartsAsJpeg(const std::vector<unsigned char> &bytes)
{
    return bytes.size() > 2 && bytes[0] == 0xff && bytes[1] == 0xd8;
}

int Replace(const std::string &path, const std::string &jpeg, const SaveOptions &options)
{
    std::vector<unsigned char> bytes;
    if (!ReadFileBytes(jpeg, &bytes)) return EXIT_FAILED;
    if (!StartsAsJpeg(bytes)) {
        std::fprintf(Err(), "zexif: %s is not a JPEG file\n", jpeg.c_str());
        return EXIT_FAILED;
    }
    return EditAndSave(path, options, [&](CExifDoc *doc) {
        ExifBuffer buffer{bytes.data(), static_cast<uint32_t>(bytes.size())};
        if (bytes.size() <= UINT32_MAX && zExifSetThumbnailData(doc, &buffer) == 0) return EDIT_DONE;
        std::fprintf(Err(), "zexif: cannot put %s into %s as its thumbnail\n", jpeg.c_str(), path.c_str());
        return EDIT_FAILED;
    });
}

// The offset and length go together. In a JPEG, IFD 1 describes nothing
// but the thumbnail, so its other tags go too, and the IFD with them; in a
// TIFF it may describe an image of its own and keeps them.
EditResult Remove(CExifDoc *doc, const std::string &path)
{
    const bool had = zExifDelTagAt(doc, IFD_THUMBNAIL, TAG_THUMB_OFFSET) == 0;
    const bool hadLength = zExifDelTagAt(doc, IFD_THUMBNAIL, TAG_THUMB_LENGTH) == 0;
    if (!had && !hadLength) {
        std::fprintf(Err(), "zexif: note: %s has no thumbnail\n", path.c_str());
        return EDIT_UNCHANGED;
    }
    TifTagList *rest = nullptr;
    if (zExifGetFileFormat(doc) == FORMAT_JPEG && zExifGetTagList(doc, IFD_THUMBNAIL, &rest) == 0) {
        for (int32_t i = 0; i < rest->count; ++i) zExifDelTagAt(doc, IFD_THUMBNAIL, rest->items[i]->tag);
    }
    zExifFreeTagList(rest);
    return EDIT_DONE;
}

int ExtractEach(const ParsedArguments &parsed, const std::vector<std::string> &files)
{
    const std::string folder = parsed.Value("out", ".");
    return RunForEachFile(parsed, files, {}, [&](const std::string &path) { return Extract(path, ThumbnailPath(folder, path)); });
}

}  // namespace

int RunThumbnail(const ParsedArguments &parsed)
{
    if (parsed.positional.size() < 2) return EXIT_USAGE;
    const std::string &action = parsed.positional[0];
    const std::vector<std::string> files(parsed.positional.begin() + 1, parsed.positional.end());
    if (action == "extract" && files.size() == 2 && !parsed.Has("out")) return Extract(files[0], files[1]);
    if (action == "extract") return ExtractEach(parsed, files);
    if (action == "set" && files.size() == 2) return Replace(files[0], files[1], SaveOptionsOf(parsed));
    if (action == "remove") return EditEach(parsed, files, Remove);
    return EXIT_USAGE;
}
