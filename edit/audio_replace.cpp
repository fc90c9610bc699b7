#include <climits>
#include <cstdint>
#include <cstdio>

#include "edit/audio_plan.h"
#include "edit/audio_removal.h"
#include "platform/failure_reason.h"
#include "platform/path_open.h"
#include "tree/document.h"
#include "zexif.h"

namespace {

// The size of the file at path, or -1 when it can't be opened or measured.
int64_t MeasureFile(const void *path)
{
    FILE *file = OpenPath(path, "rb");
    if (file == nullptr) return -1;
    int64_t size = std::fseek(file, 0, SEEK_END) == 0 ? int64_t(std::ftell(file)) : -1;
    std::fclose(file);
    return size;
}

}  // namespace

// Dropping the plan takes back what zExifSetAudioFile promised, so the save
// must not open the audio file any more either.
int zExifRemoveAudio(CExifDoc *doc)
{
    BeginExport();
    if (doc == nullptr) return FailExport(ZEXIF_ERROR_ARGUMENT);
    int planDropped = DropAudioPlan(doc);
    int headRemoved = RemoveSourceAudio(doc);
    if (planDropped || headRemoved) doc->m_hasAudio = 0;
    doc->m_audioPath = nullptr;
    return 1;
}

// Every node is made before the tree is touched, so a failed allocation leaves
// the document as it was. The chunks' offsets are 32-bit: a larger file is
// refused. A TIFF document has no place for segments; nothing is planned
// there, and the save needn't open the audio file.
int zExifSetAudioFile(CExifDoc *doc, const void *path)
{
    BeginExport();
    if (doc == nullptr) return FailExport(ZEXIF_ERROR_ARGUMENT);
    int64_t fileSize = MeasureFile(path);
    if (fileSize < 0) return FailExport(ZEXIF_ERROR_OPEN);
    if (fileSize > INT32_MAX) return FailExport(ZEXIF_ERROR_LIMIT);
    CNode *place = FindAudioPlace(doc);
    if (place == nullptr) return 0;
    if (!LoadSourceSegments(doc)) return FailExport(ZEXIF_ERROR_READ);
    CMarker *chunks = PlanAudioChunks(static_cast<int32_t>(fileSize));
    if (chunks == nullptr) return FailExport(ZEXIF_ERROR_MEMORY);
    DropAudioPlan(doc);
    if (RemoveSourceAudio(doc)) doc->m_hasAudio = 1;
    PlaceAudioChunks(place, chunks);
    doc->m_audioPath = path;
    return 0;
}
