#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>

#include "zexif/command.h"
#include "zexif/edit_session.h"
#include "zexif/open_reader.h"
#include "zexif/output.h"
#include "zexif.h"

namespace {

constexpr int32_t MARKER_APP1 = 0xE1;
constexpr uint32_t TAG_PIXEL_X = 40962, TAG_PIXEL_Y = 40963, TAG_INTEROP_IFD = 40965;

// What describes the image data of the file itself, or points to other
// IFDs (which the calls that set tags make as needed): never copied between
// a JPEG and a TIFF. The Exif IFD's pixel dimensions are the image's too.
const uint32_t STRUCTURE_TAGS[] = {254, 255, 256, 257, 258, 259, 262, 263, 266, 273, 277, 278, 279, 280, 281, 284,
                                   317, 320, 322, 323, 324, 325, 330, 338, 339, 513, 514, 530, 34665, 34853};
const int COPIED_IFDS[] = {IFD_EXIF, IFD_GPS, IFD_INTEROP, 0};

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

void ClearIfd(CExifDoc *doc, int ifd)
{
    TifTagList *old = nullptr;
    if (zExifGetTagList(doc, ifd, &old) != 0) return;
    for (int32_t i = 0; i < old->count; ++i) zExifDelTagAt(doc, ifd, old->items[i]->tag);
    zExifFreeTagList(old);
}

// The target's Interop IFD gives way to the source's, so that the tags that
// describe the Exif data come out as the source has them.
bool CopyInteropIfd(CExifReader *reader, CExifDoc *doc)
{
    ClearIfd(doc, IFD_INTEROP);
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

bool IsCopied(int ifd, uint32_t tag)
{
    if (ifd == IFD_EXIF) return tag != TAG_INTEROP_IFD && tag != TAG_PIXEL_X && tag != TAG_PIXEL_Y;
    if (ifd != 0) return true;
    for (uint32_t structure : STRUCTURE_TAGS) {
        if (tag == structure) return false;
    }
    return true;
}

// Between formats the tags go one by one: the target's Exif and GPS IFDs
// give way to the source's, IFD 0's descriptive tags are set over its own.
bool CopyTags(CExifReader *reader, CExifDoc *doc)
{
    bool copied = true, any = false;
    for (int ifd : COPIED_IFDS) {
        if (ifd != 0) ClearIfd(doc, ifd);
        TifTagList *list = nullptr;
        if (zRExifGetTagList(reader, ifd, &list) != 0) continue;
        for (int32_t i = 0; i < list->count && copied; ++i) {
            const TifTagItem &item = *list->items[i];
            if (!IsCopied(ifd, item.tag) || item.data == nullptr) continue;
            const ExifTagValue value{item.type, item.count, item.data};
            copied = zExifSetTagAt(doc, ifd, item.tag, &value) == 0;
            any = true;
        }
        zExifFreeTagList(list);
    }
    return copied && any;
}

bool CopyExif(CExifReader *reader, CExifDoc *doc, const std::string &source)
{
    const int format = zRExifGetFileFormat(reader);
    const bool same = format == zExifGetFileFormat(doc);
    const bool copied = !same ? CopyTags(reader, doc) : format == FORMAT_JPEG ? CopyJpegExif(reader, doc) : CopyTiffExif(reader, doc);
    if (!copied) std::fprintf(Err(), "zexif: cannot copy the Exif data of %s\n", source.c_str());
    return copied;
}

}  // namespace

int RunCopyExif(const ParsedArguments &parsed)
{
    if (parsed.positional.size() < 2) return EXIT_USAGE;
    const std::string &source = parsed.positional[0];
    CExifReader *reader = OpenReader(source);
    if (reader == nullptr) return EXIT_FAILED;
    // The reader's answers are read from several threads: one at a time.
    std::mutex readerLock;
    const int status = EditEach(parsed, {parsed.positional.begin() + 1, parsed.positional.end()},
                                [&](CExifDoc *doc, const std::string &) {
                                    std::lock_guard<std::mutex> lock(readerLock);
                                    return CopyExif(reader, doc, source) ? EDIT_DONE : EDIT_FAILED;
                                });
    zRExifEndRead(reader);
    return status;
}
