#ifndef ZEXIF_EDIT_IFD_CHAIN_H
#define ZEXIF_EDIT_IFD_CHAIN_H

#include <cstdint>

class CNode;

// The child chain of an IFD node or of a pointer tag: the entry count, the
// entries, the next-IFD link. The owner is the node the chain hangs below.

int IsCountNode(const CNode *node);
int IsIfdNode(const CNode *node);

// The entries in owner's chain, not counting those of sub-IFDs.
int CountEntries(CNode *owner);

// Makes the chain's count node say how many entries the chain holds: the save
// reserves the IFD's table from that number.
void SyncEntryCount(CNode *owner);

// The node behind which an entry of that number goes, from the first node of
// a chain: in front of the first entry of that number or a higher one, at the
// latest in front of the link. Only entries are compared, so a real tag
// numbered 1, 2, 3, 60 or 70 is sorted like any other. A chain without a link
// ends at its last node.
CNode *FindInsertPoint(CNode *first, uint32_t number);

#endif
