#include "tree/walk.h"

#include "tree/node.h"

namespace {

constexpr int32_t TAG_INTEROP_IFD = 40965;

// The Interop IFD is kept for the save, but no lookup may meet its tags:
// their numbers 1 and 2 are those of GPS tags.
int IsWalkedInto(const CNode *node)
{
    return node->m_child != nullptr && !(node->m_id == TAG_INTEROP_IFD && dynamic_cast<const CTag *>(node) != nullptr);
}

}  // namespace

CNode *NextInWalk(CNode *node, const CNode *bound)
{
    if (IsWalkedInto(node)) return node->m_child;
    while (node->m_next == nullptr) {
        node = node->m_parent;
        if (node == bound || node == nullptr) return nullptr;
    }
    return node->m_next;
}

CNode *FindNode(CNode *start, int32_t id)
{
    if (start == nullptr) return nullptr;
    for (CNode *node = start; node != nullptr; node = NextInWalk(node, start->m_parent)) {
        if (node->m_id == id) return node;
    }
    return nullptr;
}

CNode *FindInChain(CNode *start, int32_t id)
{
    for (CNode *node = start; node != nullptr; node = node->m_next) {
        if (node->m_id == id) return node;
    }
    return nullptr;
}

CTag *AsTag(CNode *node)
{
    CTag *tag = dynamic_cast<CTag *>(node);
    // Strip nodes are CTags too, but hold a strip, not an entry; their kind
    // tells them apart from a real tag numbered 80.
    return tag != nullptr && tag->m_kind == KIND_IFD_CONTENT ? tag : nullptr;
}

int InsertAfter(CNode *node, CNode *newNode)
{
    if (node->m_next != nullptr) newNode->m_next = node->m_next;
    node->m_next = newNode;
    newNode->m_parent = node->m_parent;
    return 1;
}
