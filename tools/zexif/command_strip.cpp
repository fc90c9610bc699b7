#include <cstdio>
#include <vector>

#include "load/tiff_types.h"
#include "tools/zexif/arguments.h"
#include "tools/zexif/command.h"
#include "tools/zexif/edit_session.h"
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

// A tag's value with bytes of its own, to outlive the reader it came from.
struct SavedTag {
    ExifTagValue value{};
    std::vector<unsigned char> bytes;
};

// Read with the reader: the document family looks for 274 in the Exif IFD
// alone, and cameras put it in IFD 0.
bool ReadOrientation(const std::string &path, SavedTag *saved)
{
    CExifReader *reader = zRExifBeginRead(path.c_str());
    if (reader == nullptr) return false;
    const bool found = zRExifGetTag(reader, TAG_ORIENTATION, &saved->value) == 0;
    if (found) {
        const auto *bytes = static_cast<const unsigned char *>(saved->value.data);
        saved->bytes.assign(bytes, bytes + EntryDataSize(saved->value.type, saved->value.count));
        saved->value.data = saved->bytes.data();
    }
    zRExifEndRead(reader);
    return found;
}

// A TIFF's orientation stays in IFD 0, which the strip leaves alone.
bool Strip(CExifDoc *doc, const SavedTag *orientation)
{
    if (zExifGetFileFormat(doc) == FORMAT_TIFF) {
        StripTiff(doc);
        return true;
    }
    StripJpeg(doc);
    if (orientation == nullptr || zExifSetTag(doc, TAG_ORIENTATION, &orientation->value, 0) == 0) return true;
    std::fprintf(stderr, "zexif: cannot put the orientation back\n");
    return false;
}

}  // namespace

int RunStrip(const std::vector<std::string> &arguments)
{
    ParsedArguments parsed;
    if (!ParseArguments(arguments, {"-o"}, {"--keep-orientation"}, &parsed) || parsed.positional.size() != 1) {
        return EXIT_USAGE;
    }
    const std::string &path = parsed.positional[0];
    SavedTag orientation;
    const bool keep = parsed.Has("--keep-orientation") && ReadOrientation(path, &orientation);
    return EditAndSave(path, parsed.Value("-o", ""),
                       [&](CExifDoc *doc) { return Strip(doc, keep ? &orientation : nullptr); });
}
