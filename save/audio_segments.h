#ifndef ZEXIF_SAVE_AUDIO_SEGMENTS_H
#define ZEXIF_SAVE_AUDIO_SEGMENTS_H

struct CExifDoc;
class CMarker;
class CStreamIO;

// 1 when the top-level chain holds APP2 nodes that zExifSetAudioFile planned:
// only then does a save need the audio file.
int HasPlannedAudio(CExifDoc *doc);

// Writes one planned node as an FPXR APP2 segment: the 13-byte header with
// the audio index and, as its offset field, the chunk's place in the audio
// file; the property block in the first segment of the save (*first, cleared
// here); then the chunk, copied from m_audioStream without entering the tree.
// Returns 1, or 0 when the chunk can't be read whole or written.
int WriteAudioSegment(CExifDoc *doc, const CMarker *chunk, CStreamIO *out, int *first);

#endif
