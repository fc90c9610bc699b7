#include "edit/audio_segment.h"

#include <cstring>

#include "streams/byte_order.h"

namespace {

uint16_t SegmentIndex(const FpxrSegment &segment)
{
    return ReadU16(segment.m_data + FPXR_INDEX_OFFSET, 1);
}

}  // namespace

int IsAudioHead(const FpxrSegment &segment)
{
    if (segment.m_size < FPXR_HEAD_MIN_SIZE) return 0;
    const unsigned char *data = segment.m_data;
    return std::memcmp(data, "FPXR", 4) == 0 && data[FPXR_TYPE_OFFSET] == FPXR_AUDIO_TYPE &&
           std::memcmp(data + FPXR_RIFF_OFFSET, "RIFF", 4) == 0;
}

// Any APP2 can continue a stream, FPXR or not: the index alone decides. A
// payload without a whole header has no index to trust.
SegmentRole ClassifySegment(const AudioTrack &track, const FpxrSegment &segment)
{
    if (IsAudioHead(segment)) return SEGMENT_HEAD;
    if (track.m_remaining > 0 && segment.m_size >= FPXR_HEADER_SIZE && SegmentIndex(segment) == track.m_index) {
        return SEGMENT_CONTINUATION;
    }
    return SEGMENT_OTHER;
}

// The RIFF size is read as a signed number, as the read-only family reads it,
// so that a size with its top bit set ends the stream at its head in both.
void StartTrack(AudioTrack &track, const FpxrSegment &head)
{
    int32_t riff = static_cast<int32_t>(ReadU32(head.m_data + FPXR_RIFF_SIZE_OFFSET, 0));
    track.m_index = SegmentIndex(head);
    track.m_remaining = int64_t(riff) + RIFF_UNCOUNTED - (head.m_size - FPXR_HEAD_PAYLOAD);
}

void ConsumeContinuation(AudioTrack &track, const FpxrSegment &segment)
{
    track.m_remaining -= segment.m_size - FPXR_HEADER_SIZE;
}

int IsTrackComplete(const AudioTrack &track)
{
    return track.m_remaining <= 0;
}
