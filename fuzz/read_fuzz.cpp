// Loads the input as a file and asks every question of the read-write
// family, then opens it with the read-only family and asks every question
// there; pointers the reader handed out are read again after later calls,
// since they must stay valid until the reader ends.
#include <cstdlib>
#include <vector>

#include "fuzz/fuzz_files.h"
#include "fuzz/probe_tags.h"
#include "reader/tif_tag_list.h"
#include "zexif.h"

namespace {

// Tags are looked up in IFD 0 and 1 and in the IFDs behind them (the Exif
// and GPS IFDs answer any ifd), and in IFD 2 of a TIFF with more pages.
constexpr int PROBED_IFDS = 3;

// Touches every byte, so that AddressSanitizer sees a pointer that went
// stale or a size that overstates its block.
unsigned Touch(const void *data, size_t size)
{
    unsigned sum = 0;
    const unsigned char *bytes = static_cast<const unsigned char *>(data);
    for (size_t i = 0; i < size; i++) sum += bytes[i];
    return sum;
}

size_t ValueSize(const ExifTagValue &value)
{
    static const size_t TYPE_SIZES[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8};
    return value.type < 13 ? TYPE_SIZES[value.type] * value.count : 0;
}

void AskDocument(const std::string &path, const std::vector<uint32_t> &tags)
{
    CExifDoc *doc = zExifLoadFile(path.c_str());
    if (doc == nullptr) return;
    zExifGetFileFormat(doc);
    zExifIsExifExist(doc);
    for (uint32_t tag : tags) {
        for (int ifd = 0; ifd < PROBED_IFDS; ifd++) {
            ExifTagValue value = {0, 0, nullptr};
            if (zExifGetTag(doc, tag, &value, ifd) == 0) std::free(value.data);
        }
    }
    ExifBuffer thumb = {nullptr, 0}, typed = {nullptr, 0};
    if (zExifIsThumbnailExist(doc) == 1 && zExifGetThumbnailData(doc, &thumb) == 0) std::free(thumb.data);
    if (zExifGetThumbDataEx(doc, &typed, zExifGetThumbType(doc)) == 0) std::free(typed.data);
    if (zExifIsAudioExist(doc) == 1) zExifGetAudioFile(doc, (FuzzDirectory() + "/audio.wav").c_str());
    zExifDestroy(doc);
}

unsigned AskReader(const std::string &path, const std::vector<uint32_t> &tags)
{
    CExifReader *reader = zRExifBeginRead(path.c_str());
    if (reader == nullptr) return 0;
    zRExifGetFileFormat(reader);
    zRExifIsExifExist(reader);
    std::vector<ExifTagValue> seen;
    for (uint32_t tag : tags) {
        ExifTagValue value = {0, 0, nullptr};
        if (zRExifGetTag(reader, tag, &value) == 0) seen.push_back(value);
    }
    ExifBuffer thumb = {nullptr, 0};
    int hasThumb = zRExifIsThumbnailExist(reader) == 1 && zRExifGetThumbnailData(reader, &thumb) == 0;
    unsigned sum = 0;
    ExifBuffer marker = {nullptr, 0};
    if (zRExifGetExifMarker(reader, &marker) == 0) {
        sum += Touch(marker.data, marker.size);
        delete[] marker.data;
    }
    TifTagList *list = nullptr;
    if (zRExifGetTIFExifData(reader, &list) == 0) FreeTifTagList(list);
    if (zRExifIsAudioExist(reader) == 1) zRExifGetAudioFile(reader, (FuzzDirectory() + "/audio.wav").c_str());
    for (const ExifTagValue &value : seen) {
        if (value.data != nullptr) sum += Touch(value.data, ValueSize(value));
    }
    if (hasThumb) sum += Touch(thumb.data, thumb.size);
    zRExifEndRead(reader);
    return sum;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    std::string path = WriteFuzzFile("input", data, size);
    std::vector<uint32_t> tags = ProbeTags(data, size);
    AskDocument(path, tags);
    volatile unsigned sum = AskReader(path, tags);
    (void)sum;
    return 0;
}
