#include "support/tree_builder.h"

#include <cstdlib>
#include <cstring>

#include "load/tiff_types.h"

namespace {

CTag *MakeTag(const EntryDef &def)
{
    CTag *tag = new CTag;
    tag->m_id = def.tag;
    tag->m_type = def.type;
    tag->m_count = int32_t(def.count);
    if (def.bytes.empty()) return tag;
    if (ValueFitsEntry(def.type, def.count) || TiffTypeSize(def.type) == 0) {
        std::memcpy(&tag->m_value, def.bytes.data(), std::min<size_t>(def.bytes.size(), 4));
    } else {
        tag->SetData(def.bytes.data(), int32_t(def.bytes.size()));
    }
    return tag;
}

template <typename T>
std::vector<uint8_t> BytesOf(const T &value)
{
    std::vector<uint8_t> bytes(sizeof(T));
    std::memcpy(bytes.data(), &value, sizeof(T));
    return bytes;
}

}  // namespace

EntryDef Short(int32_t tag, uint16_t value)
{
    return {tag, TIFF_SHORT, 1, BytesOf(value), {}};
}

EntryDef Long(int32_t tag, uint32_t value)
{
    return {tag, TIFF_LONG, 1, BytesOf(value), {}};
}

EntryDef Ascii(int32_t tag, const std::string &text)
{
    std::vector<uint8_t> bytes(text.begin(), text.end());
    bytes.push_back(0);
    return {tag, TIFF_ASCII, uint32_t(bytes.size()), bytes, {}};
}

EntryDef Rational(int32_t tag, uint32_t numerator, uint32_t denominator)
{
    uint32_t halves[2] = {numerator, denominator};
    return {tag, TIFF_RATIONAL, 1, BytesOf(halves), {}};
}

EntryDef Bytes(int32_t tag, uint32_t type, const std::vector<uint8_t> &bytes)
{
    int size = TiffTypeSize(type);
    return {tag, type, uint32_t(bytes.size() / (size == 0 ? 1 : size)), bytes, {}};
}

EntryDef Numbers(int32_t tag, uint32_t type, const std::vector<uint32_t> &values)
{
    std::vector<uint8_t> bytes;
    for (uint32_t v : values) {
        std::vector<uint8_t> number = TiffTypeSize(type) == 2 ? BytesOf(uint16_t(v)) : BytesOf(v);
        bytes.insert(bytes.end(), number.begin(), number.end());
    }
    return Bytes(tag, type, bytes);
}

EntryDef Pointer(int32_t tag, const IfdDef &sub)
{
    EntryDef def = Long(tag, 0);
    def.sub = sub;
    return def;
}

ExifTagValue ValueOf(const EntryDef &def)
{
    return {def.type, def.count, const_cast<uint8_t *>(def.bytes.data())};
}

void RegisterLikeALoad(CExifDoc &doc, CTag *tag)
{
    if (tag->m_id == 34665) {
        doc.m_exifIfdTag = tag;
        doc.m_hasExif = 1;
    }
    if (tag->m_id == 513) {
        doc.m_thumbTag = tag;
        doc.m_hasThumb = 1;
        doc.m_thumbType |= 0x800;
        doc.m_thumbLoaded = 0;
    }
}

TreeBuilder::TreeBuilder(int32_t format) : m_doc(std::make_unique<CExifDoc>())
{
    m_doc->m_format = format;
}

TreeBuilder &TreeBuilder::Marker(int32_t code, const std::string &signature)
{
    CMarker *marker = new CMarker(code, int32_t(signature.size()), 0);
    if (code >= 0xE0 && code <= 0xEF) {
        marker->m_sig = static_cast<char *>(std::calloc(8, 1));
        std::memcpy(marker->m_sig, signature.data(), std::min<size_t>(signature.size(), 4));
    }
    if (m_doc->m_root == nullptr) {
        m_doc->AddChild(marker);
    } else {
        m_doc->AddSibling(marker);
    }
    return *this;
}

TreeBuilder &TreeBuilder::ExifApp1(const std::vector<IfdDef> &ifds)
{
    Marker(0xE1, "Exif");
    CNode *marker = m_doc->m_cur;
    m_doc->m_exifMarker = static_cast<CMarker *>(marker);
    m_doc->AddChild(NewStructuralNode(NODE_TIFF_HEADER, KIND_IFD_CONTENT, 0));
    AddIfds(ifds);
    m_doc->MoveTo(marker);
    return *this;
}

TreeBuilder &TreeBuilder::TiffBlock(const std::vector<IfdDef> &ifds)
{
    m_doc->AddChild(NewStructuralNode(NODE_TIFF_HEADER, KIND_IFD_CONTENT, 0));
    AddIfds(ifds);
    return *this;
}

std::unique_ptr<CExifDoc> TreeBuilder::Take()
{
    return std::move(m_doc);
}

void TreeBuilder::AddIfds(const std::vector<IfdDef> &ifds)
{
    uint32_t index = 0;
    for (const IfdDef &entries : ifds) {
        CNode *ifd = NewStructuralNode(NODE_IFD, KIND_PLAIN, index++);
        ifd->m_hasChild = 1;
        m_doc->AddSibling(ifd);
        AddEntries(entries);
        m_doc->MoveTo(ifd);
    }
}

// Leaves the cursor on the chain's link.
void TreeBuilder::AddEntries(const IfdDef &entries)
{
    m_doc->AddChild(NewStructuralNode(NODE_ENTRY_COUNT, KIND_IFD_CONTENT, uint32_t(entries.size())));
    for (const EntryDef &def : entries) {
        CTag *tag = MakeTag(def);
        m_doc->AddSibling(tag);
        RegisterLikeALoad(*m_doc, tag);
        if (def.sub.empty()) continue;
        AddEntries(def.sub);
        m_doc->MoveTo(tag);
    }
    m_doc->AddSibling(NewStructuralNode(NODE_NEXT_IFD, KIND_PLAIN, 0));
}

std::unique_ptr<CExifDoc> JpegDoc(const std::vector<IfdDef> &ifds)
{
    TreeBuilder builder(FORMAT_JPEG);
    builder.Marker(0xD8).Marker(0xE0, "JFIF");
    if (!ifds.empty()) builder.ExifApp1(ifds);
    builder.Marker(0xDB).Marker(0xDA).Marker(MARKER_SCAN_DATA).Marker(0xD9);
    return builder.Take();
}

std::unique_ptr<CExifDoc> TiffDoc(const std::vector<IfdDef> &ifds)
{
    return TreeBuilder(FORMAT_TIFF).TiffBlock(ifds).Take();
}
