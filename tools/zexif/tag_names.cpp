#include "zexif/tag_names.h"

#include "zexif.h"

int IfdOfGroup(TagGroup group, uint32_t index)
{
    switch (group) {
    case GROUP_EXIF: return IFD_EXIF;
    case GROUP_GPS: return IFD_GPS;
    case GROUP_INTEROP: return IFD_INTEROP;
    default: return static_cast<int>(index);
    }
}

TagGroup GroupOfIfd(int ifd)
{
    switch (ifd) {
    case IFD_EXIF: return GROUP_EXIF;
    case IFD_GPS: return GROUP_GPS;
    case IFD_INTEROP: return GROUP_INTEROP;
    default: return GROUP_TIFF;
    }
}

const char *NameOfTag(TagGroup group, uint32_t number)
{
    return zExifGetTagName(IfdOfGroup(group, 0), number);
}
