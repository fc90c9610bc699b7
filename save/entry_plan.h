#ifndef ZEXIF_SAVE_ENTRY_PLAN_H
#define ZEXIF_SAVE_ENTRY_PLAN_H

#include <cstdint>
#include <vector>

class CNode;
class CStreamIO;
class CTag;

// Where a block's bulk data lies that the tree doesn't hold: the strips of an
// image and a JPEG stream that was never read. Positions are the block's own
// offsets.
struct BlockSource {
    CStreamIO *m_stream = nullptr;  // null when the block never had a source
    int64_t m_size = 0;             // bytes the stream holds
    int m_gone = 0;                 // the block had a source, and it is closed
    int m_strictImages = 0;         // strips the source doesn't hold fail the save
};

// What an entry of a chain is for the writer.
enum EntryRole {
    ROLE_VALUE,          // written from the tree as it stands
    ROLE_SUB_IFD,        // points at a sub-IFD written behind the chain
    ROLE_IMAGE_OFFSETS,  // a LONG per strip, patched once the strips stand
    ROLE_IMAGE_COUNTS,
    ROLE_STREAM_OFFSET,  // 513, patched once the JPEG stream stands
    ROLE_STREAM_LENGTH,  // 514, the length of the stream written
};

struct PlannedEntry {
    CTag *m_tag;
    EntryRole m_role;
};

// The entries of one chain (an IFD's or a sub-IFD's) that reach the output,
// and the bulk data that follows the chain.
struct ChainPlan {
    std::vector<PlannedEntry> m_entries;
    std::vector<CTag *> m_subIfds;  // in writing order: Exif, GPS, Interop
    CNode *m_strips = nullptr;      // the strip list whose strips follow the chain
    int32_t m_stripCount = 0;
    CTag *m_stream = nullptr;       // tag 513 whose JPEG stream follows the chain
    int64_t m_streamOffset = 0;     // in the source, when the tag holds no bytes
    int64_t m_streamSize = 0;
};

constexpr int32_t TAG_STRIP_OFFSETS = 273;
constexpr int32_t TAG_STRIP_COUNTS = 279;
constexpr int32_t TAG_TILE_OFFSETS = 324;
constexpr int32_t TAG_TILE_COUNTS = 325;
constexpr int32_t TAG_STREAM_OFFSET = 513;
constexpr int32_t TAG_STREAM_LENGTH = 514;
constexpr int32_t TAG_EXIF_IFD = 34665;
constexpr int32_t TAG_GPS_IFD = 34853;
constexpr int32_t TAG_INTEROP_IFD = 40965;

// Sub-IFDs nest this deep at most; a deeper tree is refused.
constexpr int MAX_SUB_IFD_DEPTH = 8;

// Decides what of owner's chain is written. Every offset in the output must
// point at what the writer lays down, so an entry whose value is an offset
// that can't be followed is left out rather than copied: a pointer tag
// without a sub-IFD (40965 as a load leaves it), strip tags without a strip
// list, a 513 whose bytes the source doesn't hold, and offsets of other kinds
// (free space, SubIFDs, JPEG tables). Returns 1, or 0 when the chain can't be
// written: a value shorter than its type and count, a tag number beyond 16
// bits, a sub-IFD too deep, bulk data of a source that is gone.
int PlanChain(CNode *owner, const BlockSource &source, int depth, ChainPlan *plan);

// The tags that locate an IFD's image data: 273 and 279 when both are there,
// else 324 and 325. Returns 1 with both set, else 0.
int PickImageTags(CNode *owner, CTag **offsets, CTag **counts);

// The IFD nodes behind a block's header, in chain order.
std::vector<CNode *> IfdsOfBlock(CNode *header);

// The first entry of that number in a chain, sub-IFDs not entered.
CTag *FindChainEntry(CNode *owner, int32_t id);

// The strip list of an IFD, or null.
CNode *FindStripList(CNode *ifd);

// The bytes of all strips of a list.
int64_t StripListBytes(const CNode *list);

#endif
