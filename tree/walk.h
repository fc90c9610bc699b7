#ifndef ZEXIF_TREE_WALK_H
#define ZEXIF_TREE_WALK_H

#include <cstdint>

class CNode;
class CTag;

// The first node with that id in a pre-order walk from start: start itself,
// its subtree, then its later siblings with theirs; never upwards, and never
// into the Interop IFD below a tag 40965. The walk climbs back through
// m_parent instead of recursing, so it needs no stack.
CNode *FindNode(CNode *start, int32_t id);

// The node behind node in that walk, which never climbs to bound (the parent
// of the walk's start); null at its end.
CNode *NextInWalk(CNode *node, const CNode *bound);

// The first node with that id along m_next from start, without descending.
CNode *FindInChain(CNode *start, int32_t id);

// node as a CTag when it is an IFD entry, else null: tag numbers 1, 2, 3 and
// 60 are also the ids of structural nodes, which have no tag fields.
CTag *AsTag(CNode *node);

// Puts newNode directly behind node, with node's parent. Returns 1.
int InsertAfter(CNode *node, CNode *newNode);

#endif
