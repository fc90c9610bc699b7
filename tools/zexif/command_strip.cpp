#include <cstdio>
#include <cstdlib>

#include "zexif/arguments.h"
#include "zexif/command.h"
#include "zexif/edit_session.h"
#include "zexif/tag_edit.h"
#include "zexif.h"

namespace {

constexpr int MARKER_APP1 = 0xE1;
constexpr uint32_t TAG_ORIENTATION = 274;
constexpr uint32_t TAG_EXIF_IFD = 34665;
constexpr uint32_t TAG_GPS_IFD = 34853;

// A TIFF keeps its image description in IFD 0, so only the pointers to the
// Exif and GPS IFDs go; a file without them is already stripped.
void StripTiff(CExifDoc *doc)
{
    zExifDelTag(doc, TAG_EXIF_IFD, 0);
    zExifDelTag(doc, TAG_GPS_IFD, 0);
}

// Every APP1 goes; a JPEG without one is already stripped.
void StripJpeg(CExifDoc *doc)
{
    zExifRemoveMarker(doc, MARKER_APP1, 0);
}

// A TIFF's orientation stays in IFD 0, which the strip leaves alone; a
// JPEG's goes with its APP1 and is put back into a new one, in IFD 0 where
// cameras keep it.
bool Strip(CExifDoc *doc, const std::string &path, bool keepOrientation)
{
    if (zExifGetFileFormat(doc) == FORMAT_TIFF) {
        StripTiff(doc);
        return true;
    }
    TagAddress orientation;
    orientation.number = TAG_ORIENTATION;
    ExifTagValue saved{};
    const bool restore = keepOrientation && zExifGetTagAt(doc, IfdId(orientation), TAG_ORIENTATION, &saved) == 0;
    StripJpeg(doc);
    std::string error;
    const bool done = !restore || SetAddressedTag(doc, orientation, saved, &error);
    std::free(saved.data);
    if (!done) std::fprintf(stderr, "zexif: %s: cannot put the orientation back: %s\n", path.c_str(), error.c_str());
    return done;
}

}  // namespace

int RunStrip(const std::vector<std::string> &arguments)
{
    ParsedArguments parsed;
    if (!ParseArguments(arguments, {"-o"}, SaveFlags({"--keep-orientation"}), &parsed) || parsed.positional.empty() ||
        !OutFitsFiles(parsed.Has("-o"), parsed.positional.size())) {
        return EXIT_USAGE;
    }
    const bool keep = parsed.Has("--keep-orientation");
    return EditEach(parsed.positional, SaveOptionsOf(parsed),
                    [&](CExifDoc *doc, const std::string &path) { return Strip(doc, path, keep); });
}
