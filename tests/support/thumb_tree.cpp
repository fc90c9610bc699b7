#include "support/thumb_tree.h"

#include "support/tree_builder.h"
#include "support/tree_check.h"

CNode *HangTiffBlock(CExifDoc &doc, CNode *parent, const std::vector<std::vector<HandTag>> &ifds)
{
    if (parent != nullptr) {
        doc.MoveTo(parent);
    } else {
        doc.m_cur = nullptr;
        doc.MoveUp();
    }
    CNode *header = NewStructuralNode(NODE_TIFF_HEADER, KIND_IFD_CONTENT, 0);
    doc.AddChild(header);
    uint32_t index = 0;
    for (const auto &tags : ifds) {
        CNode *ifd = NewStructuralNode(NODE_IFD, KIND_PLAIN, index++);
        ifd->m_hasChild = 1;
        doc.AddSibling(ifd);
        doc.AddChild(NewStructuralNode(NODE_ENTRY_COUNT, KIND_IFD_CONTENT, uint32_t(tags.size())));
        for (const HandTag &def : tags) {
            CTag *tag = new CTag;
            tag->m_id = def.tag;
            tag->m_type = def.type;
            tag->m_count = def.count;
            tag->m_value = def.value;
            doc.AddSibling(tag);
            RegisterLikeALoad(doc, tag);
        }
        doc.AddSibling(NewStructuralNode(NODE_NEXT_IFD, KIND_PLAIN, 0));
        doc.MoveTo(ifd);
    }
    return header;
}

std::string TreeShape(const CExifDoc &doc)
{
    return Outline(doc);
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
