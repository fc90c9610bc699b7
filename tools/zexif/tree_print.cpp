#include "tools/zexif/tree_print.h"

#include "load/tiff_types.h"
#include "tools/zexif/marker_names.h"
#include "tools/zexif/value_format.h"
#include "tree/document.h"
#include "tree/walk.h"
#include "zexif.h"

namespace {

constexpr int32_t TAG_EXIF_IFD = 34665;
constexpr int32_t TAG_GPS_IFD = 34853;
constexpr int32_t TAG_INTEROP_IFD = 40965;

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

void Indent(FILE *out, int depth)
{
    std::fprintf(out, "%*s", depth * 2, "");
}

std::string SubIfdName(int32_t pointerTag)
{
    switch (pointerTag) {
    case TAG_EXIF_IFD: return "Exif IFD";
    case TAG_GPS_IFD: return "GPS IFD";
    case TAG_INTEROP_IFD: return "Interoperability IFD";
    default: return "IFD of tag " + std::to_string(pointerTag);
    }
}

std::string TagValueText(const CTag &tag)
{
    const uint32_t count = static_cast<uint32_t>(tag.m_count);
    if (TiffTypeSize(tag.m_type) == 0) return FormatValue(tag.m_type, count, nullptr, 0);
    if (ValueFitsEntry(tag.m_type, count)) {
        return FormatValue(tag.m_type, count, reinterpret_cast<const unsigned char *>(&tag.m_value), sizeof tag.m_value);
    }
    if (tag.m_data == nullptr) return "(not read, at offset " + std::to_string(tag.m_value) + ")";
    return FormatValue(tag.m_type, count, tag.m_data, static_cast<size_t>(tag.m_size > 0 ? tag.m_size : 0));
}

void PrintIfdContent(const CNode *first, int depth, FILE *out);

// The heading of an IFD from its entry count, which comes first, and its
// next-IFD link, which comes last.
void PrintIfdHeading(const std::string &name, const CNode *first, int depth, FILE *out)
{
    Indent(out, depth);
    std::fprintf(out, "%s", name.c_str());
    if (IsStructure(first, NODE_ENTRY_COUNT)) {
        std::fprintf(out, ": %u %s", first->m_value, first->m_value == 1 ? "entry" : "entries");
    }
    const CNode *last = first;
    while (last != nullptr && last->m_next != nullptr) last = last->m_next;
    if (IsStructure(last, NODE_NEXT_IFD) && last->m_value != 0) std::fprintf(out, ", next IFD at %u", last->m_value);
    std::fprintf(out, "\n");
}

void PrintTag(const CTag &tag, int depth, FILE *out)
{
    Indent(out, depth);
    std::fprintf(out, "%5d %-9s %6d  %s\n", tag.m_id, TypeName(tag.m_type).c_str(), tag.m_count,
                 TagValueText(tag).c_str());
    if (tag.m_child == nullptr) return;
    PrintIfdHeading(SubIfdName(tag.m_id), tag.m_child, depth + 1, out);
    PrintIfdContent(tag.m_child, depth + 2, out);
}

void PrintIfdContent(const CNode *first, int depth, FILE *out)
{
    for (const CNode *node = first; node != nullptr; node = node->m_next) {
        const CTag *tag = TagOf(node);
        if (tag != nullptr) PrintTag(*tag, depth, out);
    }
}

// The header node, then IFD 0, IFD 1 and so on.
void PrintTiffBlock(const CNode *first, int depth, FILE *out)
{
    for (const CNode *node = first; node != nullptr; node = node->m_next) {
        if (IsStructure(node, NODE_TIFF_HEADER)) {
            Indent(out, depth);
            std::fprintf(out, "TIFF header, %s\n", node->m_value != 0 ? "big-endian (MM)" : "little-endian (II)");
        } else if (IsStructure(node, NODE_IFD)) {
            PrintIfdHeading("IFD " + std::to_string(node->m_value), node->m_child, depth, out);
            PrintIfdContent(node->m_child, depth + 1, out);
        }
    }
}

std::string MarkerLabel(int32_t id)
{
    if (id == MARKER_SCAN_DATA) return "      scan data";
    char label[32];
    std::snprintf(label, sizeof label, "%04X  %s", static_cast<unsigned>(0xff00 | (id & 0xff)), MarkerName(id).c_str());
    return label;
}

// Where the payload lies, and the signature of an APPn segment.
std::string PayloadText(const CNode &node)
{
    const CMarker *marker = dynamic_cast<const CMarker *>(&node);
    if (marker == nullptr || marker->m_state == BLOCK_NOTHING) return "";
    char text[64];
    std::snprintf(text, sizeof text, "offset %-8d size %d", marker->m_offset, marker->m_size);
    if (marker->m_sig == nullptr) return text;
    return std::string(text) + "  " + QuoteText(reinterpret_cast<const unsigned char *>(marker->m_sig), 4);
}

void PrintMarker(const CNode &node, FILE *out)
{
    const std::string label = MarkerLabel(node.m_id), payload = PayloadText(node);
    Indent(out, 1);
    if (payload.empty()) {
        std::fprintf(out, "%s\n", label.c_str());
    } else {
        std::fprintf(out, "%-15s  %s\n", label.c_str(), payload.c_str());
    }
    PrintTiffBlock(node.m_child, 3, out);
}

const char *FormatName(int32_t format)
{
    switch (format) {
    case FORMAT_JPEG: return "JPEG";
    case FORMAT_TIFF: return "TIFF";
    default: return "unknown format";
    }
}

}  // namespace

void PrintDocument(const CExifDoc &doc, const std::string &name, FILE *out)
{
    std::fprintf(out, "%s: %s\n", name.c_str(), FormatName(doc.m_format));
    if (doc.m_format != FORMAT_JPEG) {
        PrintTiffBlock(doc.m_root, 1, out);
        return;
    }
    for (const CNode *node = doc.m_root; node != nullptr; node = node->m_next) PrintMarker(*node, out);
}
