#include "save/tiff_save.h"

#include "save/entry_plan.h"
#include "save/exif_writer.h"
#include "save/strip_list.h"
#include "save/tag_numbers.h"
#include "save/thumbnail_bytes.h"
#include "streams/stream_size.h"
#include "tree/document.h"
#include "tree/walk.h"

namespace {

constexpr int32_t TAG_BITS_PER_SAMPLE = 258;
constexpr uint32_t BITS_PER_BYTE = 8;
constexpr uint32_t HEADER_BIG_ENDIAN = 1;

int HasWideSamples(CNode *ifd)
{
    CTag *bits = FindChainEntry(ifd, TAG_BITS_PER_SAMPLE);
    if (bits == nullptr) return 0;
    uint32_t value = 0;
    for (int32_t k = 0; ReadNumber(bits, k, &value); k++) {
        if (value > BITS_PER_BYTE) return 1;
    }
    return 0;
}

int KeepsItsMeaning(CNode *header)
{
    if (header->m_value != HEADER_BIG_ENDIAN) return 1;
    for (CNode *ifd : IfdsOfBlock(header)) {
        if (HasWideSamples(ifd)) return 0;
    }
    return 1;
}

BlockSource FileSource(CExifDoc *doc)
{
    BlockSource source;
    source.m_stream = doc->m_stream;
    source.m_size = doc->m_stream != nullptr ? StreamSize(doc->m_stream) : 0;
    source.m_gone = doc->m_stream == nullptr;
    source.m_strictImages = 1;
    return source;
}

}  // namespace

int SaveTiff(CExifDoc *doc, CStreamIO *out)
{
    doc->m_bigEndian = 0;
    CNode *header = FindInChain(doc->m_root, NODE_TIFF_HEADER);
    if (header == nullptr || AsTag(header) != nullptr || !KeepsItsMeaning(header)) return 0;
    if (!PrepareTiffStrips(doc)) return 0;
    BlockSource source = FileSource(doc);
    if (!BringThumbnailIn(doc, source, nullptr)) return 0;
    CExifWriter writer(out, source);
    return writer.WriteTiff(header);
}
