#include "extensions/ifd_ids.h"

#include "zexif.h"

namespace {

constexpr uint32_t TAG_EXIF_IFD = 34665;
constexpr uint32_t TAG_GPS_IFD = 34853;
constexpr uint32_t TAG_INTEROP_IFD = 40965;

}  // namespace

int IsChainIfd(int ifd)
{
    return ifd >= 0 && ifd < IFD_EXIF;
}

int IsIfdId(int ifd)
{
    return IsChainIfd(ifd) || ifd == IFD_EXIF || ifd == IFD_GPS || ifd == IFD_INTEROP;
}

int SubIfdPath(int ifd, uint32_t path[2])
{
    switch (ifd) {
    case IFD_EXIF: path[0] = TAG_EXIF_IFD; return 1;
    case IFD_GPS: path[0] = TAG_GPS_IFD; return 1;
    case IFD_INTEROP: path[0] = TAG_EXIF_IFD; path[1] = TAG_INTEROP_IFD; return 2;
    default: return 0;
    }
}

int IfdBelowPointer(uint32_t pointer)
{
    switch (pointer) {
    case TAG_EXIF_IFD: return IFD_EXIF;
    case TAG_GPS_IFD: return IFD_GPS;
    case TAG_INTEROP_IFD: return IFD_INTEROP;
    default: return -1;
    }
}
