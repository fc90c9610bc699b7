#include <cstdio>
#include <vector>

#include "tools/zexif/arguments.h"
#include "tools/zexif/command.h"
#include "tools/zexif/document_tags.h"
#include "tools/zexif/edit_session.h"
#include "tools/zexif/tag_edit.h"
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

// A tag's value with bytes of its own, to outlive the segment it came from.
struct SavedTag {
    ExifTagValue value{};
    std::vector<unsigned char> bytes;
};

bool SaveOrientation(CExifDoc *doc, const TagAddress &address, SavedTag *saved)
{
    const CTag *tag = FindAddressedTag(doc, address);
    TagView view;
    if (tag == nullptr || !ViewOfTag(*tag, address.group, &view)) return false;
    saved->bytes.assign(view.value.bytes, view.value.bytes + view.value.size);
    saved->value = {view.value.type, view.value.count, saved->bytes.data()};
    return true;
}

// A TIFF's orientation stays in IFD 0, which the strip leaves alone; a
// JPEG's goes with its APP1 and is put back into a new one.
bool Strip(CExifDoc *doc, const std::string &path, bool keepOrientation)
{
    if (zExifGetFileFormat(doc) == FORMAT_TIFF) {
        StripTiff(doc);
        return true;
    }
    TagAddress orientation;
    orientation.number = TAG_ORIENTATION;
    SavedTag saved;
    const bool restore = keepOrientation && SaveOrientation(doc, orientation, &saved);
    StripJpeg(doc);
    std::string error;
    if (!restore || SetAddressedTag(doc, orientation, saved.value, &error)) return true;
    std::fprintf(stderr, "zexif: %s: cannot put the orientation back: %s\n", path.c_str(), error.c_str());
    return false;
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
