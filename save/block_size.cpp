#include "save/block_size.h"

#include "save/value_layout.h"
#include "tree/node.h"

namespace {

constexpr int64_t HEADER_SIZE = 8;
constexpr int64_t TABLE_OVERHEAD = 2 + 4;
constexpr int64_t ENTRY_SIZE = 12;

int64_t ValueAreaBytes(const ChainPlan &plan, const PlannedEntry &entry)
{
    switch (entry.m_role) {
    case ROLE_VALUE:
        return OutOfLineSize(entry.m_tag);
    case ROLE_IMAGE_OFFSETS:
    case ROLE_IMAGE_COUNTS:
        return plan.m_stripCount > 1 ? 4 * int64_t(plan.m_stripCount) : 0;
    default:
        return 0;
    }
}

}  // namespace

int64_t ComputeIfdSize(const BlockSource &source, CNode *owner, int depth)
{
    ChainPlan plan;
    if (!PlanChain(owner, source, depth, &plan)) return -1;
    if (plan.m_entries.empty()) return 0;
    int64_t size = TABLE_OVERHEAD + ENTRY_SIZE * static_cast<int64_t>(plan.m_entries.size());
    for (const PlannedEntry &entry : plan.m_entries) size += ValueAreaBytes(plan, entry);
    for (CNode *pointer : plan.m_subIfds) {
        int64_t sub = ComputeIfdSize(source, pointer, depth + 1);
        if (sub < 0) return -1;
        size += sub;
    }
    return size + plan.m_streamSize + (plan.m_strips != nullptr ? StripListBytes(plan.m_strips) : 0);
}

int64_t ComputeExifSize(const BlockSource &source, CNode *header)
{
    if (header == nullptr) return 0;
    int64_t size = HEADER_SIZE;
    for (CNode *ifd : IfdsOfBlock(header)) {
        int64_t ifdSize = ComputeIfdSize(source, ifd, 0);
        if (ifdSize < 0) return -1;
        size += ifdSize;
    }
    return size;
}
