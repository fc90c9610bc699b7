#include "support/jpeg_files.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>

#include "support/temp_dir.h"

namespace {

// The position behind the first SOS header, or 0 when the file has none.
size_t WalkSegments(const std::vector<uint8_t> &file, std::vector<JpegSegmentView> *segments)
{
    size_t pos = 2;
    while (pos + 4 <= file.size() && file[pos] == 0xFF) {
        uint8_t code = file[pos + 1];
        size_t length = size_t(file[pos + 2]) << 8 | file[pos + 3];
        if (length < 2 || pos + 2 + length > file.size()) return 0;
        if (segments != nullptr) {
            segments->push_back({code, std::vector<uint8_t>(file.begin() + long(pos + 4),
                                                            file.begin() + long(pos + 2 + length))});
        }
        pos += 2 + length;
        if (code == 0xDA) return pos;
    }
    return 0;
}

}  // namespace

std::vector<JpegSegmentView> SegmentsOf(const std::vector<uint8_t> &file)
{
    std::vector<JpegSegmentView> segments;
    WalkSegments(file, &segments);
    return segments;
}

std::vector<uint8_t> ScanDataOf(const std::vector<uint8_t> &file)
{
    size_t start = WalkSegments(file, nullptr);
    if (start == 0) return {};
    size_t end = start;
    while (end + 1 < file.size() && !(file[end] == 0xFF && file[end + 1] == 0xD9)) end++;
    end = std::min(end + 2, file.size());
    return std::vector<uint8_t>(file.begin() + long(start), file.begin() + long(end));
}

bool HasProgram(const std::string &name)
{
    return std::system(("command -v " + name + " >/dev/null 2>&1").c_str()) == 0;
}

bool DecodesAsJpeg(const std::vector<uint8_t> &bytes, const std::string &scratchDir)
{
    std::string path = scratchDir + "/decode-check.jpg";
    std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char *>(bytes.data()), long(bytes.size()));
    std::string command = "djpeg -outfile /dev/null '" + path + "' >/dev/null 2>&1";
    return std::system(command.c_str()) == 0;
}

std::vector<uint8_t> PlainJpeg(const std::string &scratchDir, int width, int height, int quality)
{
    if (!HasProgram("cjpeg")) return {};
    std::string ppm = scratchDir + "/plain.ppm";
    std::string jpg = scratchDir + "/plain.jpg";
    std::ofstream out(ppm, std::ios::binary);
    out << "P6\n" << width << " " << height << "\n255\n";
    for (int y = 0; y < height; y++) {
        for (int x = 0; x < width; x++) {
            char pixel[3] = {char(x * 255 / width), char(y * 255 / height), char((x + y) % 256)};
            out.write(pixel, 3);
        }
    }
    out.close();
    std::string command = "cjpeg -quality " + std::to_string(quality) + " -outfile '" + jpg + "' '" + ppm + "'";
    if (std::system(command.c_str()) != 0) return {};
    return ReadFileBytes(jpg);
}
