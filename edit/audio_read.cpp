#include <cstdio>

#include "edit/audio_walk.h"
#include "platform/failure_reason.h"
#include "platform/path_open.h"
#include "tree/document.h"
#include "zexif.h"

namespace {

// 1 when the file took every byte of the segment from 'from' on.
int WriteSegmentFrom(FILE *out, const FpxrSegment &segment, int32_t from)
{
    size_t count = static_cast<size_t>(segment.m_size - from);
    return std::fwrite(segment.m_data + from, 1, count, out) == count;
}

}  // namespace

int zExifIsAudioExist(CExifDoc *doc)
{
    if (doc == nullptr) return RefuseNullHandle();
    if (doc->m_audioState != 0) return doc->m_hasAudio;
    for (CMarker *marker = FirstSourceSegment(doc); marker != nullptr; marker = NextSourceSegment(marker)) {
        FpxrSegment segment;
        if (LoadSegment(doc, marker, &segment) && IsAudioHead(segment)) {
            doc->m_hasAudio = 1;
            break;
        }
        marker->Unload();
    }
    return doc->m_hasAudio;
}

// One segment is in memory at a time. A second head while the output is open
// ends the walk: the first stream is the audio, and the second, whose index
// may well be the same, is not mixed into it. A write the file didn't take
// makes the result a failure.
int zExifGetAudioFile(CExifDoc *doc, const void *path)
{
    BeginExport();
    if (doc == nullptr) return FailExport(ZEXIF_ERROR_ARGUMENT);
    FILE *out = nullptr;
    int written = 1;
    AudioTrack track;
    for (CMarker *marker = FirstSourceSegment(doc); marker != nullptr; marker = NextSourceSegment(marker)) {
        FpxrSegment segment;
        SegmentRole role = LoadSegment(doc, marker, &segment) ? ClassifySegment(track, segment) : SEGMENT_OTHER;
        if (role == SEGMENT_HEAD && out != nullptr) {
            marker->Unload();
            break;
        }
        if (role == SEGMENT_HEAD) {
            out = OpenPath(path, "wb");
            if (out == nullptr) {
                marker->Unload();
                return FailExport(ZEXIF_ERROR_OPEN);
            }
            written &= WriteSegmentFrom(out, segment, FPXR_HEAD_PAYLOAD);
            StartTrack(track, segment);
            if (!IsTrackComplete(track)) doc->m_hasAudio = 1;
        } else if (role == SEGMENT_CONTINUATION) {
            written &= WriteSegmentFrom(out, segment, FPXR_HEADER_SIZE);
            ConsumeContinuation(track, segment);
        }
        marker->Unload();
        if (role != SEGMENT_OTHER && IsTrackComplete(track)) break;
    }
    doc->m_audioState = AUDIO_STATE_EXTRACTED;
    if (out == nullptr) return FailExport(ZEXIF_ERROR_NOT_FOUND);
    if (std::fclose(out) != 0) written = 0;
    return written ? 0 : FailExport(ZEXIF_ERROR_WRITE);
}
