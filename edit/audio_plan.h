#ifndef ZEXIF_EDIT_AUDIO_PLAN_H
#define ZEXIF_EDIT_AUDIO_PLAN_H

#include <cstdint>

struct CExifDoc;
class CMarker;
class CNode;

// The segment nodes for an audio file of fileSize bytes, chained along
// m_next: chunks of at most FPXR_MAX_CHUNK bytes, their offsets in the audio
// file, each marked as planned. An empty file still gets one node. Null when
// a node can't be allocated; nothing is left over then.
CMarker *PlanAudioChunks(int32_t fileSize);

// The node the planned segments go behind: the last of the first run of APP1
// markers, else the first APP0, else SOI. Null in a TIFF document.
CNode *FindAudioPlace(CExifDoc *doc);

// Puts the chain of planned nodes behind place, in their order.
void PlaceAudioChunks(CNode *place, CMarker *chunks);

#endif
