#include "tools/zexif/document_walk.h"

#include "tools/zexif/document_tags.h"
#include "tools/zexif/tag_argument.h"
#include "tree/document.h"
#include "tree/walk.h"
#include "zexif.h"

namespace {

const CTag *TagOf(const CNode *node)
{
    return AsTag(const_cast<CNode *>(node));
}

// Tag numbers 1, 2, 3 and 60 are also structural ids: only a node that is no
// tag is the structure.
bool IsStructure(const CNode *node, int32_t id)
{
    return node != nullptr && node->m_id == id && TagOf(node) == nullptr;
}

std::string SubIfdName(TagGroup group, int32_t pointer)
{
    switch (group) {
    case GROUP_EXIF: return "Exif IFD";
    case GROUP_GPS: return "GPS IFD";
    case GROUP_INTEROP: return "Interoperability IFD";
    default: return "IFD of tag " + std::to_string(pointer);
    }
}

std::string SubIfdLabel(TagGroup group, int32_t pointer)
{
    return group == GROUP_TIFF ? "tag " + std::to_string(pointer) : IfdLabel(group, 0);
}

// The entry count comes first in an IFD's chain, its next-IFD link last.
IfdInfo DescribeIfd(std::string name, std::string label, const CNode *first)
{
    IfdInfo ifd;
    ifd.name = std::move(name);
    ifd.label = std::move(label);
    if (IsStructure(first, NODE_ENTRY_COUNT)) ifd.entries = static_cast<int32_t>(first->m_value);
    const CNode *last = first;
    while (last != nullptr && last->m_next != nullptr) last = last->m_next;
    if (IsStructure(last, NODE_NEXT_IFD)) ifd.next = last->m_value;
    return ifd;
}

void WalkIfd(const IfdInfo &ifd, const CNode *first, TagGroup group, DocumentVisitor &visitor);

void WalkTag(const CTag &tag, TagGroup group, DocumentVisitor &visitor)
{
    TagView view;
    const bool read = ViewOfTag(tag, group, &view);
    visitor.BeginTag(view, read, tag.m_value);
    if (tag.m_child != nullptr) {
        const TagGroup below = GroupBelowPointer(static_cast<uint32_t>(tag.m_id));
        WalkIfd(DescribeIfd(SubIfdName(below, tag.m_id), SubIfdLabel(below, tag.m_id), tag.m_child), tag.m_child,
                below, visitor);
    }
    visitor.EndTag();
}

void WalkIfd(const IfdInfo &ifd, const CNode *first, TagGroup group, DocumentVisitor &visitor)
{
    visitor.BeginIfd(ifd);
    for (const CNode *node = first; node != nullptr; node = node->m_next) {
        if (const CTag *tag = TagOf(node)) WalkTag(*tag, group, visitor);
    }
    visitor.EndIfd();
}

// The header node, then IFD 0, IFD 1 and so on.
void WalkTiffBlock(const CNode *first, DocumentVisitor &visitor)
{
    for (const CNode *node = first; node != nullptr; node = node->m_next) {
        if (IsStructure(node, NODE_TIFF_HEADER)) {
            visitor.TiffHeader(node->m_value != 0);
        } else if (IsStructure(node, NODE_IFD)) {
            const std::string index = std::to_string(node->m_value);
            WalkIfd(DescribeIfd("IFD " + index, index, node->m_child), node->m_child, GROUP_TIFF, visitor);
        }
    }
}

MarkerInfo DescribeMarker(const CNode &node)
{
    MarkerInfo info;
    info.code = node.m_id == MARKER_SCAN_DATA ? 0 : node.m_id;
    const CMarker *marker = dynamic_cast<const CMarker *>(&node);
    if (marker == nullptr || marker->m_state == BLOCK_NOTHING) return info;
    info.hasPayload = true;
    info.offset = marker->m_offset;
    info.size = marker->m_size;
    info.signature = marker->m_sig;
    return info;
}

}  // namespace

void WalkDocument(const CExifDoc &doc, DocumentVisitor &visitor)
{
    if (doc.m_format != FORMAT_JPEG) {
        WalkTiffBlock(doc.m_root, visitor);
        return;
    }
    for (const CNode *node = doc.m_root; node != nullptr; node = node->m_next) {
        visitor.BeginMarker(DescribeMarker(*node));
        WalkTiffBlock(node->m_child, visitor);
        visitor.EndMarker();
    }
}

const char *FormatName(int32_t format)
{
    switch (format) {
    case FORMAT_JPEG: return "JPEG";
    case FORMAT_TIFF: return "TIFF";
    default: return "unknown format";
    }
}
