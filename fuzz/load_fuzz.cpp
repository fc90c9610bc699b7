// Loads the input as a file and asks the document every question of the
// read-write family.
#include <cstdlib>

#include "fuzz/fuzz_files.h"
#include "fuzz/probe_tags.h"
#include "zexif.h"

namespace {

// Tags are looked up in IFD 0 and 1 and in the IFDs behind them (the Exif
// and GPS IFDs answer any ifd), and in IFD 2 of a TIFF with more pages.
constexpr int PROBED_IFDS = 3;

void ProbeTagValues(CExifDoc *doc, const uint8_t *data, size_t size)
{
    for (uint32_t tag : ProbeTags(data, size)) {
        for (int ifd = 0; ifd < PROBED_IFDS; ifd++) {
            ExifTagValue value = {0, 0, nullptr};
            if (zExifGetTag(doc, tag, &value, ifd) == 0) std::free(value.data);
        }
    }
}

void ProbeThumbnail(CExifDoc *doc)
{
    if (zExifIsThumbnailExist(doc) != 1) return;
    ExifBuffer thumb = {nullptr, 0};
    if (zExifGetThumbnailData(doc, &thumb) == 0) std::free(thumb.data);
    ExifBuffer typed = {nullptr, 0};
    if (zExifGetThumbDataEx(doc, &typed, zExifGetThumbType(doc)) == 0) std::free(typed.data);
}

void ProbeAudio(CExifDoc *doc)
{
    if (zExifIsAudioExist(doc) != 1) return;
    std::string out = FuzzDirectory() + "/audio.wav";
    zExifGetAudioFile(doc, out.c_str());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    std::string path = WriteFuzzFile("input", data, size);
    CExifDoc *doc = zExifLoadFile(path.c_str());
    if (doc == nullptr) return 0;
    zExifGetFileFormat(doc);
    zExifIsExifExist(doc);
    ProbeTagValues(doc, data, size);
    ProbeThumbnail(doc);
    ProbeAudio(doc);
    zExifDestroy(doc);
    return 0;
}
