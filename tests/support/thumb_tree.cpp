#include "support/thumb_tree.h"

#include "tree/walk.h"

namespace {

CNode *Plain(int32_t id, int32_t kind, uint32_t value)
{
    CNode *node = new CNode;
    node->m_id = id;
    node->m_kind = kind;
    node->m_value = value;
    return node;
}

void Register(CExifDoc &doc, CTag *tag)
{
    if (tag->m_id == 513) {
        doc.m_thumbTag = tag;
        doc.m_hasThumb = 1;
        doc.m_thumbType |= 0x800;
        doc.m_thumbLoaded = 0;
    }
    if (tag->m_id == 34665) {
        doc.m_exifIfdTag = tag;
        doc.m_hasExif = 1;
    }
}

void AppendShape(const CNode *node, std::string &out)
{
    for (; node != nullptr; node = node->m_next) {
        if (!out.empty() && out.back() != '[') out += ' ';
        out += std::to_string(node->m_id);
        if (node->m_id == NODE_IFD || node->m_id == NODE_ENTRY_COUNT) out += ":" + std::to_string(node->m_value);
        if (node->m_parent == nullptr && node->m_sig != nullptr) out += "'" + std::string(node->m_sig) + "'";
        if (node->m_child != nullptr) {
            out += '[';
            AppendShape(node->m_child, out);
            out += ']';
        }
    }
}

}  // namespace

CNode *HangTiffBlock(CExifDoc &doc, CNode *parent, const std::vector<std::vector<HandTag>> &ifds)
{
    if (parent != nullptr) {
        doc.MoveTo(parent);
    } else {
        doc.m_cur = nullptr;
        doc.MoveUp();
    }
    CNode *header = Plain(NODE_TIFF_HEADER, 1, 0);
    doc.AddChild(header);
    uint32_t index = 0;
    for (const auto &tags : ifds) {
        CNode *ifd = Plain(NODE_IFD, 3, index++);
        ifd->m_hasChild = 1;
        doc.AddSibling(ifd);
        doc.AddChild(Plain(NODE_ENTRY_COUNT, 1, uint32_t(tags.size())));
        for (const HandTag &def : tags) {
            CTag *tag = new CTag;
            tag->m_id = def.tag;
            tag->m_type = def.type;
            tag->m_count = def.count;
            tag->m_value = def.value;
            doc.AddSibling(tag);
            Register(doc, tag);
        }
        doc.AddSibling(Plain(NODE_NEXT_IFD, 3, 0));
        doc.MoveTo(ifd);
    }
    return header;
}

std::string TreeShape(const CExifDoc &doc)
{
    std::string out;
    AppendShape(doc.m_root, out);
    return out;
}

std::string IfdShape(const CNode *ifd)
{
    std::string out;
    AppendShape(ifd->m_child, out);
    return out;
}

std::vector<uint32_t> IfdIndices(CExifDoc &doc)
{
    std::vector<uint32_t> indices;
    for (CNode *node = FindNode(doc.m_root, NODE_IFD); node != nullptr; node = node->m_next) {
        if (node->m_id == NODE_IFD) indices.push_back(node->m_value);
    }
    return indices;
}

std::vector<uint8_t> FakeThumbnail(size_t size, uint8_t seed)
{
    std::vector<uint8_t> bytes(size);
    for (size_t i = 0; i < size; i++) bytes[i] = uint8_t(i * 7 + seed);
    if (size >= 4) {
        bytes[0] = 0xFF;
        bytes[1] = 0xD8;
        bytes[size - 2] = 0xFF;
        bytes[size - 1] = 0xD9;
    }
    return bytes;
}
