#ifndef ZEXIF_TREE_NODE_H
#define ZEXIF_TREE_NODE_H

#include <cstdint>

#include "zexif.h"

class CStreamIO;

// Structural ids share one number space with JPEG marker codes and TIFF tag
// numbers; only a node's position tells them apart. The id of the
// entropy-coded data, MARKER_SCAN_DATA, is public.
enum NodeId {
    NODE_TIFF_HEADER = 1,
    NODE_IFD = 2,
    NODE_ENTRY_COUNT = 3,
    NODE_NEXT_IFD = 60,
    NODE_STRIP_LIST = 70,
    NODE_STRIP = 80,
};

enum NodeKind { KIND_IFD_CONTENT = 1, KIND_MARKER = 2, KIND_PLAIN = 3 };

enum BlockState { BLOCK_NOTHING = 0, BLOCK_ON_FILE = 1, BLOCK_IN_MEMORY = 2 };

// A node of the document tree. m_child and m_next own what they point at;
// deleting a node deletes its children and all its later siblings, so a single
// node is unlinked and its m_next cleared before it is deleted.
class CNode {
public:
    CNode() = default;
    CNode(const CNode &) = delete;
    CNode &operator=(const CNode &) = delete;
    virtual ~CNode();

    int32_t m_hasChild = 0;
    int32_t m_kind = KIND_PLAIN;
    int32_t m_id = 0;
    char *m_sig = nullptr;  // malloc block: 4 signature bytes and a NUL
    uint32_t m_value = 0;
    CNode *m_next = nullptr;
    CNode *m_child = nullptr;
    CNode *m_parent = nullptr;
};

// A node that can hold bytes: a tag's out-of-line value or a marker's payload.
class CBlock : public CNode {
public:
    ~CBlock() override;

    // Brings the data into memory from stream (state 1), or hands out what is
    // there (state 2). State 0 returns 1 and writes neither out-parameter.
    int Load(CStreamIO *stream, unsigned char **data, int32_t *size);
    int Unload();
    int GetData(unsigned char **data, int32_t *size);
    // Copies size bytes in; a buffer held before is released, so no path can
    // leak one. Fails for a size below 1 and changes nothing then.
    int SetData(const void *data, int32_t size);
    int ReplaceData(const void *data, int32_t size);
    // Takes over a new[] buffer without copying.
    int AdoptData(unsigned char *data, int32_t size);

    int32_t m_state = BLOCK_NOTHING;
    unsigned char *m_data = nullptr;  // new[] buffer of m_size bytes, at least one
    int32_t m_offset = 0;
    int32_t m_size = 0;
};

// An IFD entry; its tag number is m_id. Values that fit the entry's 4-byte
// field stand in m_value, others in m_data, in host byte order.
class CTag : public CBlock {
public:
    CTag() { m_kind = KIND_IFD_CONTENT; }

    // Makes a malloc copy of the value for the caller; a value of no bytes
    // gives null. A type outside 1 to 12 leaves *data untouched. Returns 0
    // only when the copy can't be allocated, leaving *data untouched.
    int CopyValue(void **data);
    // Takes a caller's value with its type and count. A value that fits the
    // entry goes into m_value and leaves the block alone, any other replaces
    // the block. Returns 1, or 0 with the tag unchanged when the block can't
    // be made or value->data is null for a value that has bytes.
    int SetValue(const ExifTagValue *value);

    uint32_t m_type = 0;
    int32_t m_count = 0;
};

// A JPEG segment, or the run of entropy-coded bytes (MARKER_SCAN_DATA).
// m_offset and m_size locate its payload in the file that holds it.
class CMarker : public CBlock {
public:
    CMarker(int32_t id, int32_t size, int32_t offset);

    // Set on the APP2 nodes that plan an audio file for the next save: their
    // m_offset and m_size lie in that file, not in the source.
    int32_t m_audioChunk = 0;
};

// A new plain node with its id, kind and value; null when out of memory.
CNode *NewStructuralNode(int32_t id, int32_t kind, uint32_t value);

// Deletes a node with its children and later siblings without recursion, so
// that chains of any length can't exhaust the stack.
void DeleteTree(CNode *node);

#endif
