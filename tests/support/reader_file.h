#ifndef ZEXIF_TESTS_READER_FILE_H
#define ZEXIF_TESTS_READER_FILE_H

#include <cstdint>
#include <string>
#include <vector>

#include "support/temp_dir.h"
#include "zexif.h"

// A reader opened on bytes written into a fresh directory, ended when the
// object goes. m_reader is null when the open failed.
class ReaderFile {
public:
    explicit ReaderFile(const std::vector<uint8_t> &bytes, const std::string &name = "image.jpg");
    ~ReaderFile();
    ReaderFile(const ReaderFile &) = delete;
    ReaderFile &operator=(const ReaderFile &) = delete;

    CExifReader *get() const { return m_reader; }

    TempDir m_dir;
    std::string m_path;
    CExifReader *m_reader;
};

// SOI, the segments, an SOS with a few bytes of scan data, EOI.
std::vector<uint8_t> JpegFile(std::initializer_list<std::vector<uint8_t>> segments);
// A small JPEG stream to stand as a thumbnail: SOI, a comment, EOI.
std::vector<uint8_t> ThumbnailJpeg(size_t size);
// The bytes of a tag value handed out by the library.
std::vector<uint8_t> ValueBytes(const void *data, size_t size);

#endif
