#include "zexif/document_walk.h"

#include <cstdlib>
#include <cstring>
#include <vector>

#include "zexif/field_types.h"
#include "zexif/load_document.h"
#include "zexif/tag_argument.h"
#include "zexif/tag_reading.h"
#include "zexif/tiff_bytes.h"
#include "zexif.h"

namespace {

constexpr int32_t MARKER_SOI = 0xD8;
constexpr int32_t MARKER_EOI = 0xD9;
constexpr int32_t MARKER_APP0 = 0xE0;
constexpr int32_t MARKER_APP1 = 0xE1;
constexpr int32_t MARKER_APP15 = 0xEF;
constexpr uint32_t TIFF_IFD = 13;
constexpr uint32_t TAG_EXIF_IFD = 34665;
constexpr uint32_t TAG_GPS_IFD = 34853;
constexpr uint32_t TAG_INTEROP_IFD = 40965;
// "Exif" and two bytes, then at least a TIFF header of 8 bytes.
constexpr uint32_t EXIF_PREFIX = 6;
constexpr uint32_t SMALLEST_EXIF_PAYLOAD = 14;

// One TIFF block on its way through the visitor.
struct Block {
    CExifReader *reader;
    const TiffBytes &bytes;
    DocumentVisitor &visitor;
};

// The sub-IFD that a tag of that IFD leads to, as the library finds them; -1
// for a tag that leads to none.
int SubIfdOf(int ifd, uint32_t tag)
{
    if (ifd == 0 && tag == TAG_EXIF_IFD) return IFD_EXIF;
    if (ifd == 0 && tag == TAG_GPS_IFD) return IFD_GPS;
    return ifd == IFD_EXIF && tag == TAG_INTEROP_IFD ? IFD_INTEROP : -1;
}

bool IsPointerForm(const TifTagItem &item)
{
    return (item.type == TIFF_LONG || item.type == TIFF_IFD) && item.count == 1 && item.data != nullptr;
}

// Of several tags of a pointer's number, the first of a pointer's form leads
// to the sub-IFD.
bool IsFirstPointer(const TifTagList &list, int32_t index)
{
    if (!IsPointerForm(*list.items[index])) return false;
    for (int32_t i = 0; i < index; ++i) {
        if (list.items[i]->tag == list.items[index]->tag && IsPointerForm(*list.items[i])) return false;
    }
    return true;
}

std::string IfdName(int ifd)
{
    switch (ifd) {
    case IFD_EXIF: return "Exif IFD";
    case IFD_GPS: return "GPS IFD";
    case IFD_INTEROP: return "Interoperability IFD";
    default: return "IFD " + std::to_string(ifd);
    }
}

// A tag with the value of the Ref tag of a GPS coordinate from the same IFD.
TagView ViewOfItem(const TifTagList &list, int32_t index, int ifd)
{
    const TifTagItem &item = *list.items[index];
    TagView view;
    view.group = GroupOfIfd(ifd);
    view.number = item.tag;
    view.value = ViewOfValue(item.type, item.count, item.data);
    const uint32_t reference = ReferenceTagOf(view.group, item.tag);
    for (int32_t i = 0; reference != 0 && i < list.count; ++i) {
        const TifTagItem &other = *list.items[i];
        if (other.tag == reference) {
            view.reference = ViewOfValue(other.type, other.count, other.data);
            break;
        }
    }
    return view;
}

bool WalkIfd(const Block &block, int ifd, uint32_t offset);

void WalkTag(const Block &block, const TifTagList &list, int32_t index, int ifd)
{
    const TifTagItem &item = *list.items[index];
    block.visitor.BeginTag(ViewOfItem(list, index, ifd));
    const int sub = SubIfdOf(ifd, item.tag);
    if (sub >= 0 && IsFirstPointer(list, index)) WalkIfd(block, sub, *static_cast<const uint32_t *>(item.data));
    block.visitor.EndTag();
}

// false when the reader has no such IFD.
bool WalkIfd(const Block &block, int ifd, uint32_t offset)
{
    TifTagList *list = nullptr;
    if (zRExifGetTagList(block.reader, ifd, &list) != 0) return false;
    IfdInfo info;
    info.name = IfdName(ifd);
    info.label = IfdLabel(GroupOfIfd(ifd), static_cast<uint32_t>(ifd));
    info.entries = list->count;
    info.next = block.bytes.LinkBehind(offset);
    block.visitor.BeginIfd(info);
    for (int32_t i = 0; i < list->count; ++i) WalkTag(block, *list, i, ifd);
    block.visitor.EndIfd();
    zExifFreeTagList(list);
    return true;
}

// The header, then IFD 0, IFD 1 and so on.
void WalkBlock(const Block &block)
{
    block.visitor.TiffHeader(block.bytes.BigEndian());
    uint32_t offset = block.bytes.FirstIfd();
    for (int index = 0; WalkIfd(block, index, offset); ++index) offset = block.bytes.LinkBehind(offset);
}

bool IsExifPayload(int32_t marker, const ExifBuffer &data)
{
    return marker == MARKER_APP1 && data.size >= SMALLEST_EXIF_PAYLOAD && std::memcmp(data.data, "Exif", 4) == 0;
}

void WalkExifBlock(const ExifBuffer &data, DocumentVisitor &visitor)
{
    CExifReader *reader = zRExifBeginReadMemory(data.data + EXIF_PREFIX, data.size - EXIF_PREFIX);
    if (reader == nullptr) return;
    const TiffBytes bytes(std::vector<unsigned char>(data.data + EXIF_PREFIX, data.data + data.size));
    WalkBlock({reader, bytes, visitor});
    zRExifEndRead(reader);
}

MarkerInfo DescribeSegment(const ExifSegment &segment, const ExifBuffer &data, bool app)
{
    MarkerInfo info;
    info.code = segment.marker == MARKER_SCAN_DATA ? 0 : segment.marker;
    info.hasPayload = segment.marker != MARKER_SOI && segment.marker != MARKER_EOI;
    info.offset = static_cast<int32_t>(segment.offset);
    info.size = static_cast<int32_t>(segment.size);
    info.hasSignature = app;
    if (app) info.signature.assign(reinterpret_cast<const char *>(data.data), data.size < 4 ? data.size : 4);
    return info;
}

void WalkSegments(CExifDoc *doc, DocumentVisitor &visitor)
{
    ExifSegment *segments = nullptr;
    int32_t count = 0;
    if (zExifGetSegmentList(doc, &segments, &count) != 0) return;
    for (int32_t i = 0; i < count; ++i) {
        const bool app = segments[i].marker >= MARKER_APP0 && segments[i].marker <= MARKER_APP15;
        ExifBuffer data{};
        if (app) zExifGetSegmentData(doc, i, &data);
        visitor.BeginMarker(DescribeSegment(segments[i], data, app));
        if (IsExifPayload(segments[i].marker, data)) WalkExifBlock(data, visitor);
        visitor.EndMarker();
        zExifFreeBuffer(&data);
    }
    std::free(segments);
}

}  // namespace

DumpedFile::~DumpedFile()
{
    zExifDestroy(m_doc);
    zRExifEndRead(m_reader);
}

// A JPEG's segments are listed by the read-write family only.
bool DumpedFile::Open(const std::string &path, std::string *message)
{
    m_path = path;
    m_reader = zRExifBeginRead(path.c_str());
    if (m_reader == nullptr) {
        *message = "cannot load " + path + ": " + LoadFailureReason(path);
        return false;
    }
    if (Format() != FORMAT_JPEG) return true;
    m_doc = TryLoadDocument(path, message);
    return m_doc != nullptr;
}

bool DumpedFile::OpenMemory(const std::string &name, const unsigned char *data, uint32_t size)
{
    m_path = name;
    m_reader = zRExifBeginReadMemory(data, size);
    if (m_reader == nullptr || Format() != FORMAT_JPEG) return m_reader != nullptr;
    m_doc = zExifLoadMemory(data, size);
    return m_doc != nullptr;
}

int DumpedFile::Format() const
{
    return zRExifGetFileFormat(m_reader);
}

void DumpedFile::Walk(DocumentVisitor &visitor) const
{
    if (m_doc != nullptr) {
        WalkSegments(m_doc, visitor);
        return;
    }
    const TiffBytes bytes(m_path);
    WalkBlock({m_reader, bytes, visitor});
}

const char *FormatName(int32_t format)
{
    switch (format) {
    case FORMAT_JPEG: return "JPEG";
    case FORMAT_TIFF: return "TIFF";
    default: return "unknown format";
    }
}
