#include "tree/node.h"

#include <cstdlib>
#include <cstring>
#include <new>

#include "platform/failure_reason.h"
#include "streams/stream.h"
#include "zexif.h"

CNode::~CNode()
{
    std::free(m_sig);
    CNode *child = m_child;
    CNode *next = m_next;
    m_child = nullptr;
    m_next = nullptr;
    DeleteTree(child);
    DeleteTree(next);
}

CNode *NewStructuralNode(int32_t id, int32_t kind, uint32_t value)
{
    CNode *node = new (std::nothrow) CNode;
    if (node == nullptr) {
        NoteFailure(ZEXIF_ERROR_MEMORY);
        return nullptr;
    }
    node->m_id = id;
    node->m_kind = kind;
    node->m_value = value;
    return node;
}

// Treats m_child as the left and m_next as the right link of a binary tree and
// rotates left subtrees into the right spine, so every node is deleted with
// both links already cleared and no stack grows.
void DeleteTree(CNode *node)
{
    while (node != nullptr) {
        CNode *child = node->m_child;
        if (child != nullptr) {
            node->m_child = child->m_next;
            child->m_next = node;
            node = child;
        } else {
            CNode *next = node->m_next;
            node->m_next = nullptr;
            delete node;
            node = next;
        }
    }
}

CBlock::~CBlock()
{
    delete[] m_data;
    m_data = nullptr;
}

int CBlock::Load(CStreamIO *stream, unsigned char **data, int32_t *size)
{
    if (m_state == BLOCK_NOTHING) return 1;
    if (m_state == BLOCK_ON_FILE) {
        if (m_size < 1 || stream == nullptr) return 0;
        // Zero-filled, so that a short read leaves no undefined bytes behind;
        // a read that failed leaves the block as it was.
        unsigned char *buffer = new (std::nothrow) unsigned char[m_size]();
        if (buffer == nullptr) return NoteFailure(ZEXIF_ERROR_MEMORY);
        stream->Seek(0, m_offset);
        stream->Read(buffer, static_cast<uint32_t>(m_size));
        if (stream->HasFailed()) {
            delete[] buffer;
            return 0;
        }
        delete[] m_data;
        m_data = buffer;
        m_state = BLOCK_IN_MEMORY;
    }
    *data = m_data;
    *size = m_size;
    return 1;
}

int CBlock::Unload()
{
    delete[] m_data;
    m_data = nullptr;
    m_state = BLOCK_ON_FILE;
    return 1;
}

int CBlock::GetData(unsigned char **data, int32_t *size)
{
    *data = m_data;
    *size = m_size;
    return 1;
}

int CBlock::SetData(const void *data, int32_t size)
{
    if (size < 1) return 0;
    unsigned char *buffer = new (std::nothrow) unsigned char[size];
    if (buffer == nullptr) return NoteFailure(ZEXIF_ERROR_MEMORY);
    std::memcpy(buffer, data, static_cast<size_t>(size));
    delete[] m_data;
    m_data = buffer;
    m_size = size;
    return 1;
}

// SetData releases the old buffer only once the copy is made, so data may
// lie inside it and a failed copy leaves the block as it was.
int CBlock::ReplaceData(const void *data, int32_t size)
{
    if (m_data == nullptr) return 0;
    return SetData(data, size);
}

int CBlock::AdoptData(unsigned char *data, int32_t size)
{
    delete[] m_data;
    m_data = data;
    m_size = size;
    m_state = BLOCK_IN_MEMORY;
    return 1;
}

CMarker::CMarker(int32_t id, int32_t size, int32_t offset)
{
    m_kind = KIND_MARKER;
    m_id = id;
    m_size = size;
    m_offset = offset;
    m_state = (id == 216 || id == 217) ? BLOCK_NOTHING : BLOCK_ON_FILE;
}
