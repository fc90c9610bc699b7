#ifndef ZEXIF_EXTENSIONS_IFD_IDS_H
#define ZEXIF_EXTENSIONS_IFD_IDS_H

#include <cstdint>

// The IFD ids of the extension calls: 0, 1, 2... name the chain's IFDs by
// index, IFD_EXIF, IFD_GPS and IFD_INTEROP the sub-IFDs.
int IsIfdId(int ifd);
int IsChainIfd(int ifd);

// The pointer tags that lead from IFD 0 down to a sub-IFD, outermost first.
// Returns how many: 0 for an IFD of the chain.
int SubIfdPath(int ifd, uint32_t path[2]);

// The sub-IFD that a pointer tag of that number leads to, or -1 for a tag
// that points to none.
int IfdBelowPointer(uint32_t pointer);

#endif
