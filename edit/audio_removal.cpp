#include "edit/audio_removal.h"

#include "edit/audio_walk.h"
#include "tree/document.h"

namespace {

// Unlinks node from the top-level chain behind prev (null when node is the
// root) and destroys it; returns the node that followed it. A cursor left on
// the node moves to its predecessor rather than dangling.
CNode *RemoveTopLevel(CExifDoc *doc, CNode *prev, CNode *node)
{
    CNode *next = node->m_next;
    if (prev != nullptr) {
        prev->m_next = next;
    } else {
        doc->m_root = next;
    }
    node->m_next = nullptr;
    if (doc->m_cur == node) {
        if (prev != nullptr) {
            doc->MoveTo(prev);
        } else {
            doc->MoveUp();
        }
    }
    delete node;
    return next;
}

}  // namespace

int DropAudioPlan(CExifDoc *doc)
{
    int dropped = 0;
    CNode *prev = nullptr;
    for (CNode *node = doc->m_root; node != nullptr;) {
        if (IsPlannedSegment(node)) {
            node = RemoveTopLevel(doc, prev, node);
            dropped = 1;
        } else {
            prev = node;
            node = node->m_next;
        }
    }
    return dropped;
}

int LoadSourceSegments(CExifDoc *doc)
{
    for (CMarker *marker = FirstSourceSegment(doc); marker != nullptr; marker = NextSourceSegment(marker)) {
        int onFile = marker->m_state == BLOCK_ON_FILE && marker->m_size > 0 && doc->m_stream != nullptr;
        FpxrSegment segment;
        if (!LoadSegment(doc, marker, &segment) && onFile) return 0;
    }
    return 1;
}

// A later head in the file is removed too, so a stream's completion at its
// head doesn't end the walk; the completion of a continuation does.
int RemoveSourceAudio(CExifDoc *doc)
{
    AudioTrack track;
    int headRemoved = 0;
    CNode *prev = nullptr;
    for (CNode *node = doc->m_root; node != nullptr;) {
        CMarker *marker = AsSourceSegment(node);
        FpxrSegment segment;
        SegmentRole role = SEGMENT_OTHER;
        if (marker != nullptr && LoadSegment(doc, marker, &segment)) role = ClassifySegment(track, segment);
        if (role == SEGMENT_OTHER) {
            prev = node;
            node = node->m_next;
            continue;
        }
        if (role == SEGMENT_HEAD) {
            StartTrack(track, segment);
            headRemoved = 1;
        } else {
            ConsumeContinuation(track, segment);
        }
        node = RemoveTopLevel(doc, prev, node);
        if (role == SEGMENT_CONTINUATION && IsTrackComplete(track)) break;
    }
    return headRemoved;
}
