#include "zexif/tag_reading.h"

#include "zexif/field_types.h"
#include "zexif.h"

namespace {

bool ReadValue(CExifReader *reader, int ifd, uint32_t number, ValueView *view)
{
    ExifTagValue value{};
    if (zRExifGetTagAt(reader, ifd, number, &value) != 0) return false;
    *view = ViewOfValue(value.type, value.count, value.data);
    return true;
}

}  // namespace

ValueView ViewOfValue(uint32_t type, uint32_t count, const void *data)
{
    const size_t size = data != nullptr ? static_cast<size_t>(EntryDataSize(type, count)) : 0;
    return {type, count, static_cast<const unsigned char *>(data), TiffTypeSize(type) != 0 ? size : 0};
}

bool ReadTag(CExifReader *reader, const TagAddress &address, TagView *view)
{
    const int ifd = IfdId(address);
    view->group = address.group;
    view->number = address.number;
    if (!ReadValue(reader, ifd, address.number, &view->value)) return false;
    const uint32_t reference = ReferenceTagOf(address.group, address.number);
    if (reference != 0) ReadValue(reader, ifd, reference, &view->reference);
    return true;
}
