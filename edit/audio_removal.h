#ifndef ZEXIF_EDIT_AUDIO_REMOVAL_H
#define ZEXIF_EDIT_AUDIO_REMOVAL_H

struct CExifDoc;

// Removes the audio nodes that an earlier zExifSetAudioFile planned. Returns 1
// when there were any.
int DropAudioPlan(CExifDoc *doc);

// Brings every APP2 segment of the source into memory, so that a removal
// that follows can tell each one's role and never stops half way. 0 when a
// payload on file couldn't be loaded (no memory, a failed read).
int LoadSourceSegments(CExifDoc *doc);

// Removes the source's audio segments: every head, and the continuations of
// the stream last started until it is complete. Other APP2 segments stay,
// loaded. Returns 1 when a head was removed.
int RemoveSourceAudio(CExifDoc *doc);

#endif
