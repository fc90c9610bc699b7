#include "tools/zexif/document_tags.h"

#include "load/tiff_types.h"
#include "tree/document.h"
#include "tree/walk.h"

namespace {

constexpr uint32_t TAG_EXIF_IFD = 34665;
constexpr uint32_t TAG_GPS_IFD = 34853;
constexpr uint32_t TAG_INTEROP_IFD = 40965;

CTag *PointerIn(CNode *owner, uint32_t pointer)
{
    return owner != nullptr ? FindEntryIn(owner, pointer) : nullptr;
}

ValueView ValueOf(const CTag &tag)
{
    const uint32_t count = tag.m_count > 0 ? static_cast<uint32_t>(tag.m_count) : 0;
    if (ValueFitsEntry(tag.m_type, count)) {
        const size_t size = static_cast<size_t>(EntryDataSize(tag.m_type, count));
        return {tag.m_type, count, reinterpret_cast<const unsigned char *>(&tag.m_value), size};
    }
    const size_t size = tag.m_data != nullptr && tag.m_size > 0 ? static_cast<size_t>(tag.m_size) : 0;
    return {tag.m_type, count, tag.m_data, size};
}

}  // namespace

CNode *FindIfdOwner(CExifDoc *doc, TagGroup group, uint32_t ifd)
{
    if (group == GROUP_TIFF) return doc->FindIfd(ifd);
    CNode *ifd0 = doc->FindIfd(0);
    if (group == GROUP_GPS) return PointerIn(ifd0, TAG_GPS_IFD);
    CNode *exif = PointerIn(ifd0, TAG_EXIF_IFD);
    return group == GROUP_EXIF ? exif : PointerIn(exif, TAG_INTEROP_IFD);
}

CTag *FindEntryIn(const CNode *owner, uint32_t number)
{
    for (CNode *node = owner->m_child; node != nullptr; node = node->m_next) {
        CTag *tag = AsTag(node);
        if (tag != nullptr && static_cast<uint32_t>(tag->m_id) == number) return tag;
    }
    return nullptr;
}

CTag *FindAddressedTag(CExifDoc *doc, const TagAddress &address)
{
    CNode *owner = FindIfdOwner(doc, address.group, address.ifd);
    return owner != nullptr ? FindEntryIn(owner, address.number) : nullptr;
}

bool ViewOfTag(const CTag &tag, TagGroup group, TagView *view)
{
    view->group = group;
    view->number = static_cast<uint32_t>(tag.m_id);
    view->value = ValueOf(tag);
    const uint32_t reference = ReferenceTagOf(group, view->number);
    const CTag *referenceTag = reference != 0 && tag.m_parent != nullptr ? FindEntryIn(tag.m_parent, reference) : nullptr;
    if (referenceTag != nullptr) view->reference = ValueOf(*referenceTag);
    return TiffTypeSize(tag.m_type) == 0 || view->value.size > 0 || view->value.count == 0;
}
