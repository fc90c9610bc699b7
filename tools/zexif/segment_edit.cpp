#include "zexif/segment_edit.h"

#include <cstdlib>
#include <cstring>

#include "zexif.h"

namespace {

std::string Payload(CExifDoc *doc, int32_t index)
{
    ExifBuffer data{};
    if (zExifGetSegmentData(doc, index, &data) != 0) return "";
    std::string payload(reinterpret_cast<const char *>(data.data), data.size);
    zExifFreeBuffer(&data);
    return payload;
}

bool IsDocumentExif(int32_t marker, const std::string &payload)
{
    return marker == MARKER_APP1 && payload.compare(0, 6, std::string("Exif\0\0", 6)) == 0;
}

}  // namespace

int RemoveSegments(CExifDoc *doc, const SegmentTest &test)
{
    ExifSegment *segments = nullptr;
    int32_t count = 0;
    if (zExifGetSegmentList(doc, &segments, &count) != 0) return -1;
    int removed = 0;
    for (int32_t i = count - 1; i >= 0; --i) {
        const int32_t marker = segments[i].marker;
        const bool app = (marker >= 0xE0 && marker <= 0xEF) || marker == MARKER_COM;
        if (!app) continue;
        const std::string payload = Payload(doc, i);
        if (!IsDocumentExif(marker, payload) && test(marker, payload) && zExifRemoveSegment(doc, i) == 0) ++removed;
    }
    std::free(segments);
    return removed;
}

int32_t FindSegment(CExifDoc *doc, const SegmentTest &test, std::string *payload)
{
    ExifSegment *segments = nullptr;
    int32_t count = 0;
    if (zExifGetSegmentList(doc, &segments, &count) != 0) return -1;
    int32_t found = -1;
    for (int32_t i = 0; i < count && found < 0; ++i) {
        const bool app = (segments[i].marker >= 0xE0 && segments[i].marker <= 0xEF) || segments[i].marker == MARKER_COM;
        if (!app) continue;
        *payload = Payload(doc, i);
        if (test(segments[i].marker, *payload)) found = i;
    }
    std::free(segments);
    return found;
}

std::vector<std::string> SegmentPayloads(CExifDoc *doc, const SegmentTest &test)
{
    std::vector<std::string> payloads;
    std::string payload;
    FindSegment(doc, [&](int32_t marker, const std::string &candidate) {
        if (test(marker, candidate)) payloads.push_back(candidate);
        return false;
    }, &payload);
    return payloads;
}

SegmentTest SegmentOf(int32_t marker, const std::string &prefix)
{
    return [marker, prefix](int32_t code, const std::string &payload) {
        return code == marker && payload.compare(0, prefix.size(), prefix) == 0;
    };
}
