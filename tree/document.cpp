#include "tree/document.h"

#include "streams/stream.h"
#include "tree/walk.h"

CExifDoc::~CExifDoc()
{
    DeleteStream(m_stream);
    DeleteStream(m_audioStream);
    DeleteTree(m_root);
}

int CExifDoc::MoveTo(CNode *node)
{
    m_cur = node;
    m_childSlot = &node->m_child;
    m_nextSlot = &node->m_next;
    return 1;
}

int CExifDoc::MoveUp()
{
    m_cur = m_cur != nullptr ? m_cur->m_parent : nullptr;
    if (m_cur != nullptr) return MoveTo(m_cur);
    m_childSlot = &m_root;
    m_nextSlot = &m_root;
    return 1;
}

int CExifDoc::AddChild(CNode *node)
{
    *m_childSlot = node;
    node->m_parent = m_cur;
    if (m_cur != nullptr) m_cur->m_hasChild = 1;
    return MoveTo(node);
}

int CExifDoc::AddSibling(CNode *node)
{
    *m_nextSlot = node;
    node->m_parent = m_cur != nullptr ? m_cur->m_parent : nullptr;
    return MoveTo(node);
}

CNode *CExifDoc::FindMarker(int32_t id)
{
    return FindNode(m_root, id);
}

CNode *CExifDoc::FindIfd(uint32_t index)
{
    for (CNode *node = FindNode(m_root, NODE_IFD); node != nullptr; node = FindNode(node->m_next, NODE_IFD)) {
        if (node->m_value == index) return node;
    }
    return nullptr;
}

int CExifDoc::CountIfds()
{
    int count = 0;
    for (CNode *node = FindNode(m_root, NODE_IFD); node != nullptr; node = node->m_next) {
        if (node->m_id == NODE_IFD) count++;
    }
    return count;
}
