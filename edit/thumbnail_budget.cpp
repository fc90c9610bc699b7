#include "edit/marker_chain.h"
#include "edit/thumbnail_edit.h"
#include "save/block_size.h"
#include "save/exif_rebuild.h"
#include "tree/document.h"

namespace {

constexpr int64_t EXIF_SIGNATURE_SIZE = 6;

// The IFDs of a chain sized as the save would write them, from what the tree
// holds. -1 when one can't be sized.
int64_t SizeOfIfds(const BlockSource &source, CNode *chain)
{
    int64_t total = 0;
    for (CNode *node = chain; node != nullptr; node = node->m_next) {
        if (node->m_id != NODE_IFD) continue;
        int64_t size = ComputeIfdSize(source, node, 0);
        if (size < 0) return -1;
        total += size;
    }
    return total;
}

}  // namespace

// Bulk data that is still on file is not counted, so the estimate is a lower
// bound; a block the save can't size at all is not this call's to refuse.
int FitsAfterSwap(CNode *header, CNode *dropped, CNode *const *added, int addedCount)
{
    BlockSource inMemory;
    int64_t size = ComputeExifSize(inMemory, header);
    int64_t droppedSize = SizeOfIfds(inMemory, dropped);
    if (size < 0 || droppedSize < 0) return 1;
    size += EXIF_SIGNATURE_SIZE - droppedSize;
    for (int i = 0; i < addedCount; i++) {
        int64_t addedSize = added[i] != nullptr ? ComputeIfdSize(inMemory, added[i], 0) : 0;
        if (addedSize < 0) return 1;
        size += addedSize;
    }
    return size <= THUMB_APP1_LIMIT;
}

// The thumbnail's old bytes count as far as the tree holds them.
int FitsWithThumbnail(CExifDoc *doc, int64_t newSize)
{
    CTag *thumb = doc->m_thumbTag;
    CMarker *holder = HoldingMarker(thumb);
    CNode *header = holder != nullptr ? BlockHeaderOf(holder) : nullptr;
    if (header == nullptr) return 1;
    BlockSource inMemory;
    int64_t size = ComputeExifSize(inMemory, header);
    if (size < 0) return 1;
    int64_t held = thumb->m_data != nullptr ? thumb->m_size : 0;
    return EXIF_SIGNATURE_SIZE + size - held + newSize <= THUMB_APP1_LIMIT;
}
