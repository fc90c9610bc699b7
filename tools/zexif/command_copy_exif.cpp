#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "zexif/arguments.h"
#include "zexif/command.h"
#include "zexif/edit_session.h"
#include "zexif/open_reader.h"
#include "zexif.h"

namespace {

constexpr int32_t MARKER_APP1 = 0xE1;

bool IsExifSegment(CExifDoc *doc, const ExifSegment &segment, int32_t index)
{
    ExifBuffer data{};
    const bool exif = segment.marker == MARKER_APP1 && zExifGetSegmentData(doc, index, &data) == 0 &&
                      data.size >= 4 && std::memcmp(data.data, "Exif", 4) == 0;
    zExifFreeBuffer(&data);
    return exif;
}

// The Exif APP1 segments beside the document's own, which the segment calls
// keep: the one just inserted.
void RemoveOtherExifSegments(CExifDoc *doc)
{
    ExifSegment *segments = nullptr;
    int32_t count = 0;
    if (zExifGetSegmentList(doc, &segments, &count) != 0) return;
    for (int32_t i = count - 1; i >= 0; --i) {
        if (IsExifSegment(doc, segments[i], i)) zExifRemoveSegment(doc, i);
    }
    std::free(segments);
}

// The copy goes in front of the target's own Exif APP1 segments, which then
// go; other APP1 segments (XMP) stay as they are.
bool CopyJpegExif(CExifReader *reader, CExifDoc *doc)
{
    ExifBuffer marker{};
    if (zRExifGetExifMarker(reader, &marker) != 0) return false;
    if (zExifInsertExifMarker(doc, &marker) != 0) {
        zExifFreeBuffer(&marker);
        return false;
    }
    RemoveOtherExifSegments(doc);
    return true;
}

// The target's Interop IFD gives way to the source's, so that the tags that
// describe the Exif data come out as the source has them.
bool CopyInteropIfd(CExifReader *reader, CExifDoc *doc)
{
    TifTagList *old = nullptr;
    if (zExifGetTagList(doc, IFD_INTEROP, &old) == 0) {
        for (int32_t i = 0; i < old->count; ++i) zExifDelTagAt(doc, IFD_INTEROP, old->items[i]->tag);
        zExifFreeTagList(old);
    }
    TifTagList *list = nullptr;
    if (zRExifGetTagList(reader, IFD_INTEROP, &list) != 0) return true;
    bool copied = true;
    for (int32_t i = 0; i < list->count && copied; ++i) {
        const TifTagItem &item = *list->items[i];
        const ExifTagValue value{item.type, item.count, item.data};
        copied = zExifSetTagAt(doc, IFD_INTEROP, item.tag, &value) == 0;
    }
    zExifFreeTagList(list);
    return copied;
}

// An Exif IFD without entries comes as no list: there is nothing to copy.
bool CopyTiffExif(CExifReader *reader, CExifDoc *doc)
{
    TifTagList *list = nullptr;
    if (zRExifGetTIFExifData(reader, &list) != 0 || list == nullptr) return false;
    if (zExifSetTIFExifData(doc, list) != 0) {
        zExifFreeTagList(list);
        return false;
    }
    return CopyInteropIfd(reader, doc);
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
