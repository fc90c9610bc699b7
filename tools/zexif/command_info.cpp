#include <cstdio>

#include "load/tiff_types.h"
#include "tools/zexif/command.h"
#include "tools/zexif/open_reader.h"
#include "tools/zexif/value_format.h"
#include "zexif.h"

namespace {

struct NamedTag {
    const char *name;
    uint32_t tag;
};

const NamedTag SUMMARY_TAGS[] = {{"Make", 271}, {"Model", 272}, {"DateTime", 306}, {"Orientation", 274}};

const char *YesNo(int answer)
{
    return answer == 1 ? "yes" : "no";
}

const char *FormatName(int format)
{
    switch (format) {
    case FORMAT_JPEG: return "JPEG";
    case FORMAT_TIFF: return "TIFF";
    default: return "unknown format";
    }
}

std::string TagText(CExifReader *reader, uint32_t tag)
{
    ExifTagValue value{};
    if (zRExifGetTag(reader, tag, &value) != 0) return "-";
    const int64_t size = EntryDataSize(value.type, value.count);
    return FormatWholeValue(value.type, value.count, static_cast<const unsigned char *>(value.data),
                            static_cast<size_t>(size));
}

bool PrintInfo(const std::string &path)
{
    CExifReader *reader = OpenReader(path);
    if (reader == nullptr) return false;
    std::printf("%s: %s\n", path.c_str(), FormatName(zRExifGetFileFormat(reader)));
    std::printf("  Exif: %s\n  thumbnail: %s\n  audio: %s\n", YesNo(zRExifIsExifExist(reader)),
                YesNo(zRExifIsThumbnailExist(reader)), YesNo(zRExifIsAudioExist(reader)));
    for (const NamedTag &named : SUMMARY_TAGS) {
        std::printf("  %s: %s\n", named.name, TagText(reader, named.tag).c_str());
    }
    zRExifEndRead(reader);
    return true;
}

}  // namespace

// A file that can't be read doesn't stop the others; it only sets the status.
int RunInfo(const std::vector<std::string> &arguments)
{
    int status = EXIT_OK;
    for (const std::string &path : arguments) {
        if (!PrintInfo(path)) status = EXIT_FAILED;
    }
    return status;
}
