#include <cstdio>
#include <cstdlib>

#include "load/tiff_types.h"
#include "tools/zexif/arguments.h"
#include "tools/zexif/command.h"
#include "tools/zexif/load_document.h"
#include "tools/zexif/value_format.h"
#include "zexif.h"

namespace {

void PrintValue(const ExifTagValue &value)
{
    const int64_t size = EntryDataSize(value.type, value.count);
    std::printf("%s\n", FormatWholeValue(value.type, value.count, static_cast<const unsigned char *>(value.data),
                                         static_cast<size_t>(size))
                            .c_str());
}

// The reader only knows IFD 0 and the Exif IFD, so it is asked for IFD 0
// alone. Its value stays its own until the reader ends.
bool PrintFromReader(const std::string &path, uint32_t tag)
{
    CExifReader *reader = zRExifBeginRead(path.c_str());
    if (reader == nullptr) return false;
    ExifTagValue value{};
    const bool found = zRExifGetTag(reader, tag, &value) == 0;
    if (found) PrintValue(value);
    zRExifEndRead(reader);
    return found;
}

int PrintFromDocument(const std::string &path, uint32_t tag, int ifd)
{
    CExifDoc *doc = LoadDocument(path);
    if (doc == nullptr) return EXIT_FAILED;
    ExifTagValue value{};
    const bool found = zExifGetTag(doc, tag, &value, ifd) == 0;
    zExifDestroy(doc);
    if (!found) {
        std::fprintf(stderr, "zexif: %s has no tag %u in IFD %d\n", path.c_str(), tag, ifd);
        return EXIT_FAILED;
    }
    PrintValue(value);
    std::free(value.data);
    return EXIT_OK;
}

}  // namespace

int RunGet(const std::vector<std::string> &arguments)
{
    ParsedArguments parsed;
    uint32_t tag, ifd;
    if (!ParseArguments(arguments, {"--ifd"}, {}, &parsed) || parsed.positional.size() != 2 ||
        !ParseNumber(parsed.positional[1], &tag) || !ParseNumber(parsed.Value("--ifd", "0"), &ifd)) {
        return EXIT_USAGE;
    }
    const std::string &path = parsed.positional[0];
    if (ifd == 0 && PrintFromReader(path, tag)) return EXIT_OK;
    return PrintFromDocument(path, tag, static_cast<int>(ifd));
}
