#include "tools/zexif/tag_edit.h"

#include "edit/exif_ifd_tags.h"
#include "edit/ifd_chain.h"
#include "edit/marker_chain.h"
#include "edit/tag_lookup.h"
#include "edit/tag_structures.h"
#include "tools/zexif/tag_argument.h"
#include "tree/document.h"
#include "tree/walk.h"

namespace {

bool Fail(const std::string &reason, std::string *error)
{
    *error = reason;
    return false;
}

// The entry and, while that would leave a sub-IFD empty, the pointer to it.
// false when an IFD itself would be emptied.
bool RemoveEntry(CExifDoc *doc, CTag *tag)
{
    CNode *owner = tag->m_parent;
    while (CountEntries(owner) == 1) {
        CTag *pointer = AsTag(owner);
        if (pointer == nullptr) return false;
        tag = pointer;
        owner = pointer->m_parent;
    }
    CNode **link = &owner->m_child;
    while (*link != tag) link = &(*link)->m_next;
    *link = tag->m_next;
    tag->m_next = nullptr;
    DestroyDetached(doc, tag);
    SyncEntryCount(owner);
    return true;
}

// The library makes the segment and IFDs a first tag needs, but puts a tag
// of its Exif IFD list there whatever IFD is named; such a tag then moves to
// the IFD addressed.
bool SetThroughLibrary(CExifDoc *doc, const TagAddress &address, const ExifTagValue &value)
{
    if (zExifSetTag(doc, address.number, &value, static_cast<int>(address.ifd)) != 0) return false;
    if (FindAddressedTag(doc, address) != nullptr) return true;
    CNode *owner = FindIfdOwner(doc, address.group, address.ifd);
    CNode *exif = FindIfdOwner(doc, GROUP_EXIF, 0);
    CTag *misplaced = exif != nullptr ? FindEntryIn(exif, address.number) : nullptr;
    return owner != nullptr && misplaced != nullptr && AddEntry(doc, owner, address.number, &value) == 0 &&
           RemoveEntry(doc, misplaced);
}

}  // namespace

bool SetAddressedTag(CExifDoc *doc, const TagAddress &address, const ExifTagValue &value, std::string *error)
{
    const std::string where = DescribeAddress(address);
    if (CTag *found = FindAddressedTag(doc, address)) {
        return found->SetValue(&value) ? true : Fail("cannot store " + where, error);
    }
    if (CNode *owner = FindIfdOwner(doc, address.group, address.ifd)) {
        return AddEntry(doc, owner, address.number, &value) == 0 ? true : Fail("cannot add " + where, error);
    }
    const bool libraryMakesIfd = address.group == GROUP_TIFF || (address.group == GROUP_EXIF && IsExifIfdTag(address.number));
    if (!libraryMakesIfd) return Fail("cannot add " + where + ": the file has no such IFD yet", error);
    return SetThroughLibrary(doc, address, value) ? true : Fail("cannot add " + where, error);
}

// The library removes empty IFDs and segments and forgets a thumbnail whose
// tag goes; it is asked whenever its own lookup finds the same entry.
bool DeleteAddressedTag(CExifDoc *doc, const TagAddress &address, std::string *error)
{
    const std::string where = DescribeAddress(address);
    CTag *tag = FindAddressedTag(doc, address);
    if (tag == nullptr) return Fail("no " + where, error);
    const int ifd = static_cast<int>(address.ifd);
    if (FindTagFor(doc, address.number, ifd) == tag) {
        return zExifDelTag(doc, address.number, ifd) == 0 ? true : Fail("cannot delete " + where, error);
    }
    return RemoveEntry(doc, tag) ? true : Fail("cannot delete " + where + ", the last tag of its IFD", error);
}
