#include "support/reader_file.h"

#include "support/byte_builder.h"

ReaderFile::ReaderFile(const std::vector<uint8_t> &bytes, const std::string &name)
    : m_path(m_dir.Write(name, bytes)), m_reader(zRExifBeginRead(m_path.c_str()))
{
}

ReaderFile::~ReaderFile()
{
    if (m_reader != nullptr) zRExifEndRead(m_reader);
}

std::vector<uint8_t> JpegFile(std::initializer_list<std::vector<uint8_t>> segments)
{
    std::vector<uint8_t> out = {0xFF, 0xD8};
    for (const auto &segment : segments) out.insert(out.end(), segment.begin(), segment.end());
    std::vector<uint8_t> sos = JpegSegment(0xDA, {1, 1, 0, 0, 63, 0});
    out.insert(out.end(), sos.begin(), sos.end());
    for (uint8_t b : {0x12, 0x34, 0xFF, 0x00, 0x56}) out.push_back(b);
    out.push_back(0xFF);
    out.push_back(0xD9);
    return out;
}

std::vector<uint8_t> ThumbnailJpeg(size_t size)
{
    std::vector<uint8_t> out = {0xFF, 0xD8, 0xFF, 0xFE};
    size_t comment = size - 6;
    out.push_back(uint8_t(comment >> 8));
    out.push_back(uint8_t(comment));
    for (size_t i = 0; out.size() < size - 2; i++) out.push_back(uint8_t(i * 7));
    out.push_back(0xFF);
    out.push_back(0xD9);
    return out;
}

std::vector<uint8_t> ValueBytes(const void *data, size_t size)
{
    const uint8_t *bytes = static_cast<const uint8_t *>(data);
    return std::vector<uint8_t>(bytes, bytes + size);
}
