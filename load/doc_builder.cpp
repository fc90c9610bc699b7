#include "load/doc_builder.h"

#include <cstdlib>
#include <cstring>
#include <new>

#include "platform/failure_reason.h"
#include "zexif.h"
#include "tree/document.h"

namespace {

char *CopySignature(const unsigned char *signature)
{
    char *sig = static_cast<char *>(std::calloc(8, 1));
    if (sig != nullptr) std::memcpy(sig, signature, 4);
    return sig;
}

}  // namespace

int CDocBuilder::OnMarker(int32_t id, int32_t size, int32_t offset, const unsigned char *signature)
{
    CMarker *marker = new (std::nothrow) CMarker(id, size, offset);
    if (marker == nullptr) return NoteFailure(ZEXIF_ERROR_MEMORY);
    if (signature != nullptr) {
        marker->m_sig = CopySignature(signature);
        if (marker->m_sig == nullptr) {
            delete marker;
            return NoteFailure(ZEXIF_ERROR_MEMORY);
        }
    }
    m_doc->AddSibling(marker);
    if (id == 225 && signature != nullptr && std::memcmp(signature, "Exif", 4) == 0) m_doc->m_exifMarker = marker;
    return 1;
}

int CDocBuilder::OnTiffHeader(const unsigned char *bytes)
{
    CNode *header = NewStructuralNode(NODE_TIFF_HEADER, KIND_IFD_CONTENT, bytes[0] == 'M' ? 1 : 0);
    if (header == nullptr) return 0;
    m_doc->AddChild(header);
    m_doc->m_bigEndian = static_cast<int32_t>(header->m_value);
    return 1;
}

int CDocBuilder::OnIfdStart(uint32_t index)
{
    CNode *ifd = NewStructuralNode(NODE_IFD, KIND_PLAIN, index - 1);
    if (ifd == nullptr) return 0;
    ifd->m_hasChild = 1;
    m_doc->AddSibling(ifd);
    return 1;
}

int CDocBuilder::OnEntryCount(uint32_t count)
{
    CNode *node = NewStructuralNode(NODE_ENTRY_COUNT, KIND_IFD_CONTENT, count);
    if (node == nullptr) return 0;
    m_doc->AddChild(node);
    return 1;
}

int CDocBuilder::OnTag(const IfdEntry &entry)
{
    CTag *tag = new (std::nothrow) CTag;
    if (tag == nullptr) return NoteFailure(ZEXIF_ERROR_MEMORY);
    tag->m_id = entry.tag;
    tag->m_type = entry.type;
    tag->m_count = static_cast<int32_t>(entry.count);
    tag->m_value = entry.value;
    m_doc->AddSibling(tag);
    if (entry.tag == 34665) {
        m_doc->m_exifIfdTag = tag;
        m_doc->m_hasExif = 1;
    } else if (entry.tag == 513) {
        m_doc->m_thumbTag = tag;
        m_doc->m_hasThumb = 1;
        m_doc->m_thumbType |= THUMB_TYPE_JPEG;
        m_doc->m_thumbLoaded = 0;
    }
    return 1;
}

int CDocBuilder::OnTagData(const IfdEntry &entry, const unsigned char *bytes)
{
    int64_t size = EntryDataSize(entry.type, entry.count);
    if (size == 0) return 1;
    return static_cast<CTag *>(m_doc->m_cur)->SetData(bytes, static_cast<int32_t>(size));
}

int CDocBuilder::OnNextIfd(uint32_t offset)
{
    CNode *link = NewStructuralNode(NODE_NEXT_IFD, KIND_PLAIN, offset);
    if (link == nullptr) return 0;
    m_doc->AddSibling(link);
    if (link->m_parent != nullptr) return m_doc->MoveTo(link->m_parent);
    return m_doc->MoveUp();
}

int CDocBuilder::OnIfdEnd()
{
    return m_doc->MoveUp();
}
