#include "zexif/tag_argument.h"

#include <strings.h>

#include <cstdio>

#include "zexif/arguments.h"
#include "zexif.h"

namespace {

constexpr uint32_t MAX_TAG_NUMBER = 0xFFFF;

const char *const GROUP_WORDS[] = {nullptr, "exif", "gps", "interop"};

bool ParseGroupWord(const std::string &word, TagGroup *group)
{
    for (int candidate = GROUP_EXIF; candidate <= GROUP_INTEROP; ++candidate) {
        if (strcasecmp(word.c_str(), GROUP_WORDS[candidate]) == 0) {
            *group = static_cast<TagGroup>(candidate);
            return true;
        }
    }
    return false;
}

// --ifd as a group, or as the index of a TIFF IFD.
bool ParseIfdWord(const std::string &word, TagGroup *group, uint32_t *index, std::string *error)
{
    *index = 0;
    if (word.empty() || ParseGroupWord(word, group)) return true;
    *group = GROUP_TIFF;
    if (ParseNumber(word, index)) return true;
    *error = "--ifd takes an IFD number, exif, gps or interop, not '" + word + "'";
    return false;
}

bool AddressOfName(int nameIfd, uint32_t number, const std::string &ifd, TagAddress *address, std::string *error)
{
    TagGroup group;
    if (!ParseIfdWord(ifd, &group, &address->ifd, error)) return false;
    address->group = GroupOfIfd(nameIfd);
    address->number = number;
    if (ifd.empty() || group == address->group) return true;
    const std::string name = NameOfTag(address->group, number);
    *error = name + " is no tag of " + (group == GROUP_TIFF ? "IFD " + ifd : "the " + ifd + " IFD");
    return false;
}

bool AddressOfNumber(uint32_t number, const std::string &ifd, TagAddress *address, std::string *error)
{
    if (number > MAX_TAG_NUMBER) {
        *error = "a tag number is at most 65535";
        return false;
    }
    if (!ParseIfdWord(ifd, &address->group, &address->ifd, error)) return false;
    address->number = number;
    if (address->group == GROUP_TIFF && NameOfTag(GROUP_EXIF, number) != nullptr) address->group = GROUP_EXIF;
    return true;
}

}  // namespace

bool ParseTagAddress(const std::string &tag, const std::string &ifd, TagAddress *address, std::string *error)
{
    int nameIfd;
    uint32_t number, type;
    if (zExifFindTag(tag.c_str(), &nameIfd, &number, &type) == 0) return AddressOfName(nameIfd, number, ifd, address, error);
    if (ParseNumber(tag, &number)) return AddressOfNumber(number, ifd, address, error);
    *error = "unknown tag '" + tag + "': give a name such as Make or DateTimeOriginal, or a number";
    return false;
}

bool AddressFromArguments(const std::string &tag, const ParsedArguments &parsed, TagAddress *address)
{
    std::string error;
    if (ParseTagAddress(tag, parsed.Value("ifd", ""), address, &error)) return true;
    std::fprintf(stderr, "zexif: %s\n", error.c_str());
    return false;
}

int IfdId(const TagAddress &address)
{
    return IfdOfGroup(address.group, address.ifd);
}

std::string IfdLabel(TagGroup group, uint32_t ifd)
{
    return group == GROUP_TIFF ? std::to_string(ifd) : GROUP_WORDS[group];
}

std::string DescribeAddress(const TagAddress &address)
{
    const char *name = NameOfTag(address.group, address.number);
    const std::string number = std::to_string(address.number);
    const std::string tag = name != nullptr ? std::string(name) + " (" + number + ")" : "tag " + number;
    static const char *const ifdNames[] = {nullptr, "the Exif IFD", "the GPS IFD", "the Interoperability IFD"};
    const std::string ifd = address.group == GROUP_TIFF ? "IFD " + std::to_string(address.ifd) : ifdNames[address.group];
    return tag + " in " + ifd;
}
