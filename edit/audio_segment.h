#ifndef ZEXIF_EDIT_AUDIO_SEGMENT_H
#define ZEXIF_EDIT_AUDIO_SEGMENT_H

#include <cstdint>

#include "edit/fpxr_format.h"

// The payload of one APP2 segment, as far as the source file really holds it.
struct FpxrSegment {
    const unsigned char *m_data = nullptr;
    int32_t m_size = 0;
};

enum SegmentRole { SEGMENT_OTHER, SEGMENT_HEAD, SEGMENT_CONTINUATION };

// The audio stream that a walk follows: its index and the bytes of the RIFF
// file that no segment has delivered yet.
struct AudioTrack {
    uint16_t m_index = FPXR_NO_INDEX;
    int64_t m_remaining = 0;
};

// "FPXR", the audio type and "RIFF" where a head has them; a payload too short
// to hold the RIFF size field is no head.
int IsAudioHead(const FpxrSegment &segment);

// A head starts a stream, a continuation belongs to the one being followed,
// anything else is passed over.
SegmentRole ClassifySegment(const AudioTrack &track, const FpxrSegment &segment);

// Follows a head: the RIFF file minus what the head carries is outstanding.
void StartTrack(AudioTrack &track, const FpxrSegment &head);
void ConsumeContinuation(AudioTrack &track, const FpxrSegment &segment);
int IsTrackComplete(const AudioTrack &track);

#endif
