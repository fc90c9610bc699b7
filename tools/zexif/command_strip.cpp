#include <cstdio>
#include <cstdlib>

#include "zexif/command.h"
#include "zexif/edit_session.h"
#include "zexif/output.h"
#include "zexif/segment_edit.h"
#include "zexif/tag_edit.h"
#include "zexif.h"

namespace {

constexpr uint32_t TAG_ORIENTATION = 274;
constexpr uint32_t TAG_EXIF_IFD = 34665;
constexpr uint32_t TAG_GPS_IFD = 34853;
// What a TIFF keeps beside its image description in IFD 0: XMP, IPTC and
// Photoshop's resources.
const uint32_t TIFF_METADATA_TAGS[] = {700, 33723, 34377};

// A TIFF keeps its image description in IFD 0, so only the pointers to the
// Exif and GPS IFDs go, and with all the other metadata tags.
bool StripTiff(CExifDoc *doc, bool all)
{
    bool changed = zExifDelTag(doc, TAG_EXIF_IFD, 0) == 0;
    changed = zExifDelTag(doc, TAG_GPS_IFD, 0) == 0 || changed;
    for (uint32_t tag : TIFF_METADATA_TAGS) changed = (all && zExifDelTagAt(doc, 0, tag) == 0) || changed;
    return changed;
}

// Every APP1 goes; with all, also APP13, comments and the FPXR segments of
// the voice annotation. APP0, the ICC profile in APP2 and APP14 describe
// how to show the image and stay.
bool StripJpeg(CExifDoc *doc, bool all)
{
    bool changed = zExifRemoveMarker(doc, MARKER_APP1, 0) == 0;
    if (!all) return changed;
    const int removed = RemoveSegments(doc, [](int32_t marker, const std::string &payload) {
        return marker == MARKER_APP13 || marker == MARKER_COM ||
               (marker == MARKER_APP2 && payload.compare(0, 4, "FPXR") == 0);
    });
    return changed || removed > 0;
}

// A TIFF's orientation stays in IFD 0, which the strip leaves alone; a
// JPEG's goes with its APP1 and is put back into a new one, in IFD 0 where
// cameras keep it, alone.
EditResult Strip(CExifDoc *doc, const std::string &path, bool all, bool keepOrientation)
{
    if (zExifGetFileFormat(doc) == FORMAT_TIFF) return StripTiff(doc, all) ? EDIT_DONE : EDIT_UNCHANGED;
    TagAddress orientation;
    orientation.number = TAG_ORIENTATION;
    ExifTagValue saved{};
    const bool restore = keepOrientation && zExifGetTagAt(doc, IfdId(orientation), TAG_ORIENTATION, &saved) == 0;
    const bool changed = StripJpeg(doc, all);
    std::string error;
    const bool done = !restore || SetAddressedTag(doc, orientation, saved, &error);
    std::free(saved.data);
    if (!done) std::fprintf(Err(), "zexif: %s: cannot put the orientation back: %s\n", path.c_str(), error.c_str());
    return !done ? EDIT_FAILED : changed ? EDIT_DONE : EDIT_UNCHANGED;
}

}  // namespace

int RunStrip(const ParsedArguments &parsed)
{
    if (parsed.positional.empty()) return EXIT_USAGE;
    const bool all = parsed.Has("all"), keep = parsed.Has("keep-orientation");
    return EditEach(parsed, parsed.positional,
                    [&](CExifDoc *doc, const std::string &path) { return Strip(doc, path, all, keep); });
}
