#ifndef ZEXIF_EDIT_AUDIO_WALK_H
#define ZEXIF_EDIT_AUDIO_WALK_H

#include "edit/audio_segment.h"

struct CExifDoc;
class CMarker;
class CNode;

// m_audioState once zExifGetAudioFile has run to its end.
constexpr int32_t AUDIO_STATE_EXTRACTED = 2;

// The source's APP2 markers in file order. Only the top-level chain is
// walked, where markers live: a tag numbered 226 is no segment. Planned audio
// nodes are passed over, since their offsets lie in another file.
CMarker *AsSourceSegment(CNode *node);
CMarker *FirstSourceSegment(CExifDoc *doc);
CMarker *NextSourceSegment(CMarker *marker);

// An audio node planned by zExifSetAudioFile for the next save.
int IsPlannedSegment(const CNode *node);

// Brings the marker's payload in from m_stream. A segment that the end of the
// file cuts off counts with the bytes that are really there. 0 when the
// payload can't be loaded.
int LoadSegment(CExifDoc *doc, CMarker *marker, FpxrSegment *segment);

#endif
