#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "edit/marker_chain.h"
#include "tree/document.h"
#include "tools/zexif/arguments.h"
#include "tools/zexif/command.h"
#include "tools/zexif/edit_session.h"
#include "tools/zexif/open_reader.h"
#include "zexif.h"

namespace {

void FreeTagList(TifTagList *list)
{
    for (int32_t i = 0; i < list->count; ++i) {
        std::free(list->items[i]->data);
        std::free(list->items[i]);
    }
    std::free(list->items);
    std::free(list);
}

// The Exif APP1 segments that stand beside the document's own block.
void RemoveOlderExifSegments(CExifDoc *doc)
{
    for (CNode *node = doc->m_root; node != nullptr;) {
        CNode *next = node->m_next;
        bool exif = node->m_id == MARKER_APP1 && node->m_sig != nullptr && std::memcmp(node->m_sig, "Exif", 4) == 0;
        if (exif && node != doc->m_exifMarker) RemoveTopLevelNode(doc, node);
        node = next;
    }
}

// The copy goes in front of the target's own Exif APP1 segments, which then
// go; other APP1 segments (XMP) stay as they are.
bool CopyJpegExif(CExifReader *reader, CExifDoc *doc)
{
    ExifBuffer marker{};
    if (zRExifGetExifMarker(reader, &marker) != 0) return false;
    if (zExifInsertExifMarker(doc, &marker) != 0) {
        delete[] marker.data;
        return false;
    }
    RemoveOlderExifSegments(doc);
    return true;
}

// An Exif IFD without entries comes as no list: there is nothing to copy.
bool CopyTiffExif(CExifReader *reader, CExifDoc *doc)
{
    TifTagList *list = nullptr;
    if (zRExifGetTIFExifData(reader, &list) != 0 || list == nullptr) return false;
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
