#include "edit/ifd_chain.h"

#include "tree/node.h"
#include "tree/walk.h"

namespace {

int IsStructural(const CNode *node)
{
    return dynamic_cast<const CTag *>(node) == nullptr;
}

uint32_t EntryNumber(const CTag *entry)
{
    return static_cast<uint32_t>(entry->m_id);
}

}  // namespace

int IsCountNode(const CNode *node)
{
    return node != nullptr && node->m_id == NODE_ENTRY_COUNT && IsStructural(node);
}

int IsIfdNode(const CNode *node)
{
    return node != nullptr && node->m_id == NODE_IFD && IsStructural(node);
}

int CountEntries(CNode *owner)
{
    int count = 0;
    for (CNode *node = owner->m_child; node != nullptr; node = node->m_next) {
        if (AsTag(node) != nullptr) count++;
    }
    return count;
}

void SyncEntryCount(CNode *owner)
{
    if (owner == nullptr || !IsCountNode(owner->m_child)) return;
    owner->m_child->m_value = static_cast<uint32_t>(CountEntries(owner));
}

CNode *FindInsertPoint(CNode *first, uint32_t number)
{
    CNode *pos = first;
    while (pos->m_next != nullptr) {
        const CTag *next = AsTag(pos->m_next);
        if (next == nullptr || EntryNumber(next) >= number) break;
        pos = pos->m_next;
    }
    return pos;
}
