#include "save/entry_plan.h"

#include <algorithm>
#include <iterator>

#include "load/tiff_types.h"
#include "platform/failure_reason.h"
#include "save/tag_numbers.h"
#include "save/value_layout.h"
#include "tree/node.h"
#include "zexif.h"

namespace {

constexpr int32_t MAX_TAG_NUMBER = 0xFFFF;
constexpr uint32_t MAX_TYPE_NUMBER = 0xFFFF;
constexpr size_t MAX_CHAIN_ENTRIES = 0xFFFF;
// Offsets into the source whose data the tree doesn't hold and the writer
// doesn't move: free space (288, 289), SubIFDs (330) and the tables of old
// JPEG compression (519 to 521).
constexpr int32_t UNMOVABLE_OFFSET_TAGS[] = {288, 289, 330, 519, 520, 521};

// What Decide gives besides a role.
constexpr int DECIDE_DROP = -1;
constexpr int DECIDE_FAIL = -2;

int IsUnmovableOffset(int32_t id)
{
    return std::find(std::begin(UNMOVABLE_OFFSET_TAGS), std::end(UNMOVABLE_OFFSET_TAGS), id) !=
           std::end(UNMOVABLE_OFFSET_TAGS);
}

int PointerRank(int32_t id)
{
    return id == TAG_EXIF_IFD ? 0 : id == TAG_GPS_IFD ? 1 : id == TAG_INTEROP_IFD ? 2 : -1;
}

// Structural nodes are plain CNodes; every CTag in a chain is an entry, also
// one whose number is that of a structural id.
int IsStructural(const CNode *node, int32_t id)
{
    return node != nullptr && node->m_id == id && dynamic_cast<const CTag *>(node) == nullptr;
}

int HasSubIfdChain(const CTag *tag)
{
    return IsStructural(tag->m_child, NODE_ENTRY_COUNT);
}

int64_t SlotNumber(const CTag *tag)
{
    return tag->m_type == TIFF_SHORT ? int64_t(tag->m_value & 0xFFFF) : int64_t(tag->m_value);
}

// The offsets and sizes come from unsigned fields: none is negative.
int InSource(const BlockSource &source, int64_t offset, int64_t size)
{
    return source.m_stream != nullptr && offset + size <= source.m_size;
}

// The JPEG stream of tag 513 is carried when its bytes are in the tag or in
// the source; a stream that lies outside the source is no stream.
int PlanStream(CNode *owner, const BlockSource &source, ChainPlan *plan)
{
    CTag *offset = FindChainEntry(owner, TAG_STREAM_OFFSET);
    if (offset == nullptr || !IsSingleNumber(offset)) return 1;
    if (offset->m_data != nullptr) {
        plan->m_stream = offset;
        plan->m_streamSize = offset->m_size;
        return 1;
    }
    CTag *length = FindChainEntry(owner, TAG_STREAM_LENGTH);
    if (length == nullptr || !IsSingleNumber(length)) return 1;
    int64_t start = SlotNumber(offset);
    int64_t size = SlotNumber(length);
    if (start < 1 || size < 1) return 1;
    if (source.m_gone) return NoteFailure(ZEXIF_ERROR_READ);
    if (!InSource(source, start, size)) return 1;
    plan->m_stream = offset;
    plan->m_streamOffset = start;
    plan->m_streamSize = size;
    return 1;
}

// Strips the source doesn't hold fail a TIFF file's save, while a thumbnail
// stored as strips is merely left out.
int PlanImage(CNode *owner, const BlockSource &source, ChainPlan *plan)
{
    CNode *list = FindStripList(owner);
    CTag *offsets = nullptr;
    CTag *counts = nullptr;
    if (list == nullptr || !PickImageTags(owner, &offsets, &counts)) return 1;
    int32_t count = 0;
    for (CNode *node = list->m_child; node != nullptr; node = node->m_next) {
        const CTag *strip = dynamic_cast<const CTag *>(node);
        if (strip == nullptr || count == INT32_MAX) return 0;
        count++;
        if (strip->m_size == 0) continue;
        if (source.m_gone) return NoteFailure(ZEXIF_ERROR_READ);
        if (!InSource(source, strip->m_offset, strip->m_size)) return source.m_strictImages ? 0 : 1;
    }
    plan->m_strips = list;
    plan->m_stripCount = count;
    return 1;
}

int ValueIsWritable(const CTag *tag)
{
    if (tag->m_id < 0 || tag->m_id > MAX_TAG_NUMBER || tag->m_type > MAX_TYPE_NUMBER) return 0;
    int64_t size = OutOfLineSize(tag);
    return size == 0 || (tag->m_data != nullptr && tag->m_size >= size);
}

// A reader stops at an entry of type 0, so writing one would make the whole
// file unreadable; no value can be held in it anyway.
int DecideValue(const CTag *tag)
{
    if (IsUnmovableOffset(tag->m_id) || tag->m_type == 0) return DECIDE_DROP;
    return ValueIsWritable(tag) ? ROLE_VALUE : DECIDE_FAIL;
}

// A pointer whose IFD the tree doesn't hold would name stale bytes and goes;
// a tag of a pointer's number that holds no single offset points at nothing
// and stays as it is.
int DecidePointer(CTag *tag, const BlockSource &source, int depth)
{
    if (!HasSubIfdChain(tag)) return IsIfdPointer(tag->m_type, uint32_t(tag->m_count)) ? DECIDE_DROP : DecideValue(tag);
    ChainPlan sub;
    if (!PlanChain(tag, source, depth + 1, &sub)) return DECIDE_FAIL;
    return sub.m_entries.empty() ? DECIDE_DROP : ROLE_SUB_IFD;
}

int DecideImageTag(const CTag *tag, const ChainPlan &plan, const CTag *offsets, const CTag *counts)
{
    if (plan.m_strips == nullptr) return DECIDE_DROP;
    if (tag == offsets) return ROLE_IMAGE_OFFSETS;
    if (tag == counts) return ROLE_IMAGE_COUNTS;
    return DECIDE_DROP;
}

// A 514 goes with its 513: the length of the stream written, or nothing when
// the stream is left out. Without a 513 in the chain it is a plain number.
int DecideStreamLength(const CTag *tag, CNode *owner, const ChainPlan &plan)
{
    if (plan.m_stream != nullptr) {
        return tag == FindChainEntry(owner, TAG_STREAM_LENGTH) ? ROLE_STREAM_LENGTH : DECIDE_DROP;
    }
    return FindChainEntry(owner, TAG_STREAM_OFFSET) != nullptr ? DECIDE_DROP : ROLE_VALUE;
}

int Decide(CTag *tag, CNode *owner, const BlockSource &source, int depth, const ChainPlan &plan)
{
    CTag *offsets = nullptr;
    CTag *counts = nullptr;
    PickImageTags(owner, &offsets, &counts);
    switch (tag->m_id) {
    case TAG_EXIF_IFD: case TAG_GPS_IFD: case TAG_INTEROP_IFD:
        return DecidePointer(tag, source, depth);
    case TAG_STRIP_OFFSETS: case TAG_STRIP_COUNTS: case TAG_TILE_OFFSETS: case TAG_TILE_COUNTS:
        return DecideImageTag(tag, plan, offsets, counts);
    case TAG_STREAM_OFFSET:
        return tag == plan.m_stream ? ROLE_STREAM_OFFSET : DECIDE_DROP;
    case TAG_STREAM_LENGTH:
        return DecideStreamLength(tag, owner, plan);
    default:
        return DecideValue(tag);
    }
}

}  // namespace

int PlanChain(CNode *owner, const BlockSource &source, int depth, ChainPlan *plan)
{
    if (depth > MAX_SUB_IFD_DEPTH) return 0;
    if (!PlanStream(owner, source, plan) || !PlanImage(owner, source, plan)) return 0;
    for (CNode *node = owner->m_child; node != nullptr; node = node->m_next) {
        CTag *tag = dynamic_cast<CTag *>(node);
        if (tag == nullptr) continue;
        int decision = Decide(tag, owner, source, depth, *plan);
        if (decision == DECIDE_FAIL) return 0;
        if (decision == DECIDE_DROP) continue;
        plan->m_entries.push_back({tag, static_cast<EntryRole>(decision)});
        if (decision == ROLE_SUB_IFD) plan->m_subIfds.push_back(tag);
    }
    std::stable_sort(plan->m_subIfds.begin(), plan->m_subIfds.end(),
                     [](const CTag *a, const CTag *b) { return PointerRank(a->m_id) < PointerRank(b->m_id); });
    return plan->m_entries.size() <= MAX_CHAIN_ENTRIES;
}

int PickImageTags(CNode *owner, CTag **offsets, CTag **counts)
{
    CTag *stripOffsets = FindChainEntry(owner, TAG_STRIP_OFFSETS);
    CTag *stripCounts = FindChainEntry(owner, TAG_STRIP_COUNTS);
    if (stripOffsets != nullptr && stripCounts != nullptr) {
        *offsets = stripOffsets;
        *counts = stripCounts;
        return 1;
    }
    CTag *tileOffsets = FindChainEntry(owner, TAG_TILE_OFFSETS);
    CTag *tileCounts = FindChainEntry(owner, TAG_TILE_COUNTS);
    if (tileOffsets == nullptr || tileCounts == nullptr) return 0;
    *offsets = tileOffsets;
    *counts = tileCounts;
    return 1;
}

std::vector<CNode *> IfdsOfBlock(CNode *header)
{
    std::vector<CNode *> ifds;
    for (CNode *node = header->m_next; node != nullptr; node = node->m_next) {
        if (IsStructural(node, NODE_IFD)) ifds.push_back(node);
    }
    return ifds;
}

CTag *FindChainEntry(CNode *owner, int32_t id)
{
    for (CNode *node = owner->m_child; node != nullptr; node = node->m_next) {
        CTag *tag = dynamic_cast<CTag *>(node);
        if (tag != nullptr && tag->m_id == id) return tag;
    }
    return nullptr;
}

CNode *FindStripList(CNode *ifd)
{
    for (CNode *node = ifd->m_child; node != nullptr; node = node->m_next) {
        if (IsStructural(node, NODE_STRIP_LIST)) return node;
    }
    return nullptr;
}

int64_t StripListBytes(const CNode *list)
{
    int64_t total = 0;
    for (const CNode *node = list->m_child; node != nullptr; node = node->m_next) {
        total += static_cast<const CTag *>(node)->m_size;
    }
    return total;
}
