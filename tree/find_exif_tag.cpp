#include "tree/document.h"
#include "tree/walk.h"

// Exif blocks are parsed into the tree when they are loaded or inserted, and
// never again: the tree is what edits and deletions changed. A block that
// got no tree is too short to hold an Exif IFD.
CTag *CExifDoc::FindExifTag(uint32_t tag)
{
    if (m_exifIfdTag == nullptr) return nullptr;
    return AsTag(FindNode(m_exifIfdTag, static_cast<int32_t>(tag)));
}
