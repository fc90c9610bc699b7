#ifndef ZEXIF_TOOL_TAG_ARGUMENT_H
#define ZEXIF_TOOL_TAG_ARGUMENT_H

#include <cstdint>
#include <string>

#include "zexif/tag_names.h"

// Where a command looks for a tag: a TIFF tag in the IFD of that index, any
// other in the sub-IFD of its group.
struct TagAddress {
    TagGroup group = GROUP_TIFF;
    uint32_t ifd = 0;
    uint32_t number = 0;
};

// The IFD id of the address, for the library's calls.
int IfdId(const TagAddress &address);

// A command's TAG and --ifd words as an address. TAG is a name of the table
// in any case, or a number in decimal or 0x hex. ifd is empty when --ifd was
// not given; it is an IFD index for TIFF tags, or exif, gps or interop. A
// name brings its own IFD; a number is looked for in the IFD that --ifd
// names, IFD 0 by default, except that a number the table knows as an Exif
// tag is always looked for in the Exif IFD. On failure, error says why.
bool ParseTagAddress(const std::string &tag, const std::string &ifd, TagAddress *address, std::string *error);

struct ParsedArguments;

// ParseTagAddress with the --ifd of parsed; a mistake is said on stderr.
bool AddressFromArguments(const std::string &tag, const ParsedArguments &parsed, TagAddress *address);

// "Make (271) in IFD 0", "tag 999 in the GPS IFD": for messages.
std::string DescribeAddress(const TagAddress &address);

// The IFD of an address as the JSON output names it: "0", "1", "exif",
// "gps", "interop".
std::string IfdLabel(TagGroup group, uint32_t ifd);

#endif
