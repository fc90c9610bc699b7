#include <cstdio>

#include "zexif/arguments.h"
#include "zexif/command.h"
#include "zexif/edit_session.h"
#include "zexif/file_bytes.h"
#include "zexif/open_reader.h"
#include "zexif.h"

namespace {

int Extract(const std::string &path, const std::string &out)
{
    CExifReader *reader = OpenReader(path);
    if (reader == nullptr) return EXIT_FAILED;
    ExifBuffer thumbnail{};
    bool done = zRExifGetThumbnailData(reader, &thumbnail) == 0 && thumbnail.size > 0;
    if (!done) std::fprintf(stderr, "zexif: %s has no thumbnail\n", path.c_str());
    done = done && WriteFileBytes(out, thumbnail.data, thumbnail.size);
    zRExifEndRead(reader);
    return done ? EXIT_OK : EXIT_FAILED;
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
        std::fprintf(stderr, "zexif: %s is not a JPEG file\n", jpeg.c_str());
        return EXIT_FAILED;
    }
    return EditAndSave(path, options, [&](CExifDoc *doc) {
        ExifBuffer buffer{bytes.data(), static_cast<uint32_t>(bytes.size())};
        if (bytes.size() <= UINT32_MAX && zExifSetThumbnailData(doc, &buffer) == 0) return true;
        std::fprintf(stderr, "zexif: cannot put %s into %s as its thumbnail\n", jpeg.c_str(), path.c_str());
        return false;
    });
}

}  // namespace

int RunThumbnail(const std::vector<std::string> &arguments)
{
    ParsedArguments parsed;
    if (arguments.empty() || !ParseArguments({arguments.begin() + 1, arguments.end()}, {"-o"}, SaveFlags(), &parsed) ||
        parsed.positional.size() != 2) {
        return EXIT_USAGE;
    }
    const std::string &path = parsed.positional[0], &other = parsed.positional[1];
    if (arguments[0] == "extract" && !parsed.Has("-o")) return Extract(path, other);
    if (arguments[0] == "set") return Replace(path, other, SaveOptionsOf(parsed));
    return EXIT_USAGE;
}
