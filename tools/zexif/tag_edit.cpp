#include "zexif/tag_edit.h"

namespace {

std::string Reason()
{
    return zExifGetErrorText(zExifGetLastError());
}

}  // namespace

bool SetAddressedTag(CExifDoc *doc, const TagAddress &address, const ExifTagValue &value, std::string *error)
{
    if (zExifSetTagAt(doc, IfdId(address), address.number, &value) == 0) return true;
    *error = "cannot set " + DescribeAddress(address) + ": " + Reason();
    return false;
}

bool DeleteAddressedTag(CExifDoc *doc, const TagAddress &address, std::string *error)
{
    if (zExifDelTagAt(doc, IfdId(address), address.number) == 0) return true;
    const std::string where = DescribeAddress(address);
    *error = zExifGetLastError() == ZEXIF_ERROR_NOT_FOUND ? "no " + where : "cannot delete " + where + ": " + Reason();
    return false;
}
