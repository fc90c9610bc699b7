#include "edit/tag_lookup.h"

#include "edit/exif_ifd_tags.h"
#include "load/tiff_types.h"
#include "tree/document.h"
#include "tree/walk.h"

namespace {

constexpr uint32_t MAX_TAG_NUMBER = 0xFFFF;

}  // namespace

int64_t ValueDataSize(const ExifTagValue &value)
{
    return EntryDataSize(value.type, value.count);
}

int IsSettableTag(uint32_t number, const ExifTagValue *value)
{
    if (value == nullptr || number > MAX_TAG_NUMBER || value->type == 0) return 0;
    return value->data != nullptr || TiffTypeSize(value->type) == 0 || value->count == 0;
}

// The walk of FindNode, with the match limited to entries.
CTag *FindEntry(CNode *start, uint32_t number)
{
    if (start == nullptr) return nullptr;
    const int32_t id = static_cast<int32_t>(number);
    for (CNode *node = start; node != nullptr; node = NextInWalk(node, start->m_parent)) {
        if (node->m_id != id) continue;
        if (CTag *tag = AsTag(node)) return tag;
    }
    return nullptr;
}

CTag *FindExifEntry(CExifDoc *doc, uint32_t number)
{
    CTag *found = doc->FindExifTag(number);
    if (found != nullptr || doc->m_exifIfdTag == nullptr) return found;
    return FindEntry(doc->m_exifIfdTag, number);
}

CTag *FindTagFor(CExifDoc *doc, uint32_t number, int ifd)
{
    if (IsExifIfdTag(number)) return FindExifEntry(doc, number);
    return FindEntry(doc->FindIfd(static_cast<uint32_t>(ifd)), number);
}
