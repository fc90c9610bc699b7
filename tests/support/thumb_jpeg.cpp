#include "support/thumb_jpeg.h"

#include <algorithm>
#include <cstdlib>

#include "streams/stream.h"

const std::vector<uint8_t> &JfifPayload()
{
    static const std::vector<uint8_t> payload = {'J', 'F', 'I', 'F', 0, 1, 2, 0, 0, 1, 0, 1, 0, 0};
    return payload;
}

std::vector<HandTag> OldThumbIfd(uint32_t size)
{
    return {{259, 3, 1, 6}, {513, 4, 1, kOldThumbOffset}, {514, 4, 1, size}};
}

InMemoryExifJpeg::InMemoryExifJpeg(size_t payloadSize, const std::vector<uint8_t> &oldThumb,
                                   const std::vector<std::vector<HandTag>> &ifds)
{
    std::vector<uint8_t> payload(std::max(payloadSize, 6 + kOldThumbOffset + oldThumb.size()), 0);
    const uint8_t head[10] = {'E', 'x', 'i', 'f', 0, 0, 'I', 'I', 42, 0};
    for (size_t i = 0; i < sizeof(head); i++) payload[i] = head[i];
    for (size_t i = 0; i < oldThumb.size(); i++) payload[6 + kOldThumbOffset + i] = oldThumb[i];
    payload.resize(payloadSize);
    jpeg.Segment(0xE0, JfifPayload()).Segment(0xE1, payload).Segment(0xDB, {0, 1, 2});
    doc = jpeg.Load();
    app1 = MarkersOf(*doc)[2];
    if (!ifds.empty()) HangTiffBlock(*doc, app1, ifds);
}

ExifBuffer BufferOf(std::vector<uint8_t> &bytes)
{
    return ExifBuffer{bytes.data(), uint32_t(bytes.size())};
}

std::vector<uint8_t> BytesOf(const ExifBuffer &buffer)
{
    return std::vector<uint8_t>(buffer.data, buffer.data + buffer.size);
}

std::vector<uint8_t> GetThumbnail(CExifDoc *doc)
{
    ExifBuffer out{nullptr, 0};
    if (zExifGetThumbnailData(doc, &out) != 0) return {};
    std::vector<uint8_t> bytes = BytesOf(out);
    std::free(out.data);
    return bytes;
}

std::vector<uint8_t> ReaderThumbnail(const std::string &path)
{
    CExifReader *reader = zRExifBeginRead(path.c_str());
    if (reader == nullptr) return {};
    ExifBuffer out{nullptr, 0};
    std::vector<uint8_t> bytes;
    if (zRExifGetThumbnailData(reader, &out) == 0) bytes = BytesOf(out);
    zRExifEndRead(reader);
    return bytes;
}

void DropSource(CExifDoc &doc)
{
    DeleteStream(doc.m_stream);
    doc.m_stream = nullptr;
}
