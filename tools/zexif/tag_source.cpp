#include "tools/zexif/tag_source.h"

#include "edit/exif_ifd_tags.h"
#include "load/tiff_types.h"
#include "tools/zexif/load_document.h"
#include "tools/zexif/open_reader.h"
#include "zexif.h"

namespace {

bool IsKeptIfd0Tag(uint32_t number)
{
    return number == 270 || number == 271 || number == 272 || number == 274 || number == 306;
}

}  // namespace

TagSource::TagSource(const std::string &path, std::string *message)
    : m_path(path), m_reader(TryBeginRead(path, message))
{
}

TagSource::~TagSource()
{
    zExifDestroy(m_doc);
    zRExifEndRead(m_reader);
}

bool TagSource::Find(const TagAddress &address, TagView *view, std::string *message)
{
    if (ReaderAnswersFor(address)) return FindInReader(address, view);
    if (m_doc == nullptr && (m_doc = TryLoadDocument(m_path, message)) == nullptr) return false;
    const CTag *tag = FindAddressedTag(m_doc, address);
    return tag != nullptr && ViewOfTag(*tag, address.group, view);
}

bool TagSource::ReaderAnswersFor(const TagAddress &address) const
{
    if (address.group == GROUP_EXIF) return IsExifIfdTag(address.number) && address.number != 274;
    return address.group == GROUP_TIFF && address.ifd == 0 && IsKeptIfd0Tag(address.number) &&
           zRExifGetFileFormat(m_reader) == FORMAT_JPEG && zRExifIsThumbnailExist(m_reader) == 0;
}

bool TagSource::FindInReader(const TagAddress &address, TagView *view) const
{
    ExifTagValue value = {};
    if (zRExifGetTag(m_reader, address.number, &value) != 0) return false;
    view->group = address.group;
    view->number = address.number;
    const size_t size = static_cast<size_t>(value.count) * static_cast<size_t>(TiffTypeSize(value.type));
    view->value = {value.type, value.count, static_cast<const unsigned char *>(value.data), size};
    return true;
}
