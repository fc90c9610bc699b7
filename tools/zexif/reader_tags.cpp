#include "tools/zexif/reader_tags.h"

#include "edit/exif_ifd_tags.h"
#include "load/tiff_types.h"
#include "zexif.h"

namespace {

bool IsKeptIfd0Tag(uint32_t number)
{
    return number == 270 || number == 271 || number == 272 || number == 274 || number == 306;
}

}  // namespace

bool ReaderAnswersFor(CExifReader *reader, const TagAddress &address)
{
    if (address.group == GROUP_EXIF) return IsExifIfdTag(address.number) && address.number != 274;
    return address.group == GROUP_TIFF && address.ifd == 0 && IsKeptIfd0Tag(address.number) &&
           zRExifGetFileFormat(reader) == FORMAT_JPEG && zRExifIsThumbnailExist(reader) == 0;
}

bool ReaderViewOfTag(CExifReader *reader, const TagAddress &address, TagView *view)
{
    ExifTagValue value = {};
    if (zRExifGetTag(reader, address.number, &value) != 0) return false;
    view->group = address.group;
    view->number = address.number;
    const size_t size = static_cast<size_t>(value.count) * static_cast<size_t>(TiffTypeSize(value.type));
    view->value = {value.type, value.count, static_cast<const unsigned char *>(value.data), size};
    return true;
}
