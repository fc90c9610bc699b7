// Opens the input with the read-only family and asks every question it
// answers; pointers the reader handed out are read again after later calls,
// since they must stay valid until the reader ends.
#include <cstring>
#include <vector>

#include "fuzz/fuzz_files.h"
#include "fuzz/probe_tags.h"
#include "zexif.h"

namespace {

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

void ReleaseTagList(TifTagList *list)
{
    for (int32_t i = 0; i < list->count; i++) {
        std::free(list->items[i]->data);
        std::free(list->items[i]);
    }
    std::free(list->items);
    std::free(list);
}

unsigned ProbeTagValues(CExifReader *reader, const uint8_t *data, size_t size)
{
    std::vector<ExifTagValue> seen;
    for (uint32_t tag : ProbeTags(data, size)) {
        ExifTagValue value = {0, 0, nullptr};
        if (zRExifGetTag(reader, tag, &value) == 0) seen.push_back(value);
    }
    unsigned sum = 0;
    for (const ExifTagValue &value : seen) {
        if (value.data != nullptr) sum += Touch(value.data, ValueSize(value));
    }
    return sum;
}

unsigned ProbeBlocks(CExifReader *reader)
{
    unsigned sum = 0;
    ExifBuffer thumb = {nullptr, 0};
    int hasThumb = zRExifIsThumbnailExist(reader) == 1 && zRExifGetThumbnailData(reader, &thumb) == 0;
    ExifBuffer marker = {nullptr, 0};
    if (zRExifGetExifMarker(reader, &marker) == 0) {
        sum += Touch(marker.data, marker.size);
        delete[] marker.data;
    }
    TifTagList *list = nullptr;
    if (zRExifGetTIFExifData(reader, &list) == 0 && list != nullptr) ReleaseTagList(list);
    if (hasThumb) sum += Touch(thumb.data, thumb.size);
    return sum;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    std::string path = WriteFuzzFile("input", data, size);
    CExifReader *reader = zRExifBeginRead(path.c_str());
    if (reader == nullptr) return 0;
    zRExifGetFileFormat(reader);
    zRExifIsExifExist(reader);
    volatile unsigned sum = ProbeTagValues(reader, data, size) + ProbeBlocks(reader);
    (void)sum;
    if (zRExifIsAudioExist(reader) == 1) {
        std::string out = FuzzDirectory() + "/audio.wav";
        zRExifGetAudioFile(reader, out.c_str());
    }
    zRExifEndRead(reader);
    return 0;
}
