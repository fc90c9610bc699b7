#include <cstdio>
#include <cstdlib>

#include "tools/zexif/arguments.h"
#include "tools/zexif/command.h"
#include "tools/zexif/edit_session.h"
#include "tools/zexif/open_reader.h"
#include "zexif.h"

namespace {

constexpr int MARKER_APP1 = 0xE1;

void FreeTagList(TifTagList *list)
{
    for (int32_t i = 0; i < list->count; ++i) {
        std::free(list->items[i]->data);
        std::free(list->items[i]);
    }
    std::free(list->items);
    std::free(list);
}

// The target's own APP1 segments go first, so that the copy replaces them
// rather than standing beside them.
bool CopyJpegExif(CExifReader *reader, CExifDoc *doc)
{
    ExifBuffer marker{};
    if (zRExifGetExifMarker(reader, &marker) != 0) return false;
    zExifRemoveMarker(doc, MARKER_APP1, 0);
    if (zExifInsertExifMarker(doc, &marker) == 0) return true;
    std::free(marker.data);
    return false;
}

bool CopyTiffExif(CExifReader *reader, CExifDoc *doc)
{
    TifTagList *list = nullptr;
    if (zRExifGetTIFExifData(reader, &list) != 0) return false;
    if (zExifSetTIFExifData(doc, list) == 0) return true;
    FreeTagList(list);
    return false;
}

bool CopyExif(CExifReader *reader, CExifDoc *doc, const std::string &source, const std::string &target)
{
    const int format = zRExifGetFileFormat(reader);
    if (format != zExifGetFileFormat(doc)) {
        std::fprintf(stderr, "zexif: %s and %s are not both JPEG or both TIFF\n", source.c_str(), target.c_str());
        return false;
    }
    const bool copied = format == FORMAT_JPEG ? CopyJpegExif(reader, doc) : CopyTiffExif(reader, doc);
    if (!copied) std::fprintf(stderr, "zexif: cannot copy the Exif data of %s\n", source.c_str());
    return copied;
}

}  // namespace

int RunCopyExif(const std::vector<std::string> &arguments)
{
    ParsedArguments parsed;
    if (!ParseArguments(arguments, {"-o"}, SaveFlags(), &parsed) || parsed.positional.size() != 2) return EXIT_USAGE;
    const std::string &source = parsed.positional[0], &target = parsed.positional[1];
    CExifReader *reader = OpenReader(source);
    if (reader == nullptr) return EXIT_FAILED;
    const int status = EditAndSave(target, SaveOptionsOf(parsed),
                                   [&](CExifDoc *doc) { return CopyExif(reader, doc, source, target); });
    zRExifEndRead(reader);
    return status;
}
