// Per sample file: open, read Make, Model, DateTimeOriginal and ExposureTime,
// close. zExifLib's reader beside libexif and exiv2 doing the same work.
// libexif runs twice: through exif_data_new_from_file, its one call for the
// job, and through its loader with the pass that completes and corrects the
// data left off, which the four tags don't need.
#include <fcntl.h>
#include <unistd.h>

#include <exiv2/exiv2.hpp>
#include <libexif/exif-data.h>
#include <libexif/exif-loader.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "bench/bench.h"
#include "zexif.h"

namespace {

namespace fs = std::filesystem;

struct WantedTag {
    uint32_t number;
    ExifIfd ifd;
    const char *key;
};

const WantedTag kWanted[] = {
    {271, EXIF_IFD_0, "Exif.Image.Make"},
    {272, EXIF_IFD_0, "Exif.Image.Model"},
    {36867, EXIF_IFD_EXIF, "Exif.Photo.DateTimeOriginal"},
    {33434, EXIF_IFD_EXIF, "Exif.Photo.ExposureTime"},
};

// Each library hands back the bytes of the values it found; their sum keeps
// the work from being optimised away and shows that all found the same.
int ReadWithZexif(const std::string &path, size_t *bytes)
{
    CExifReader *reader = zRExifBeginRead(path.c_str());
    if (reader == nullptr) return 0;
    int found = 0;
    for (const WantedTag &tag : kWanted) {
        ExifTagValue value;
        if (zRExifGetTag(reader, tag.number, &value) != 0) continue;
        found++;
        if (value.data != nullptr) *bytes += static_cast<const unsigned char *>(value.data)[0];
    }
    zRExifEndRead(reader);
    return found;
}

int FindWithLibexif(ExifData *data, size_t *bytes)
{
    int found = 0;
    for (const WantedTag &tag : kWanted) {
        ExifEntry *entry = exif_content_get_entry(data->ifd[tag.ifd], static_cast<ExifTag>(tag.number));
        if (entry == nullptr) continue;
        found++;
        if (entry->data != nullptr && entry->size > 0) *bytes += entry->data[0];
    }
    exif_data_unref(data);
    return found;
}

int ReadWithLibexif(const std::string &path, size_t *bytes)
{
    ExifData *data = exif_data_new_from_file(path.c_str());
    return data != nullptr ? FindWithLibexif(data, bytes) : 0;
}

int ReadWithLibexifNoFix(const std::string &path, size_t *bytes)
{
    ExifLoader *loader = exif_loader_new();
    exif_loader_write_file(loader, path.c_str());
    const unsigned char *block = nullptr;
    unsigned int size = 0;
    exif_loader_get_buf(loader, &block, &size);
    ExifData *data = block != nullptr ? exif_data_new() : nullptr;
    if (data != nullptr) {
        exif_data_unset_option(data, EXIF_DATA_OPTION_FOLLOW_SPECIFICATION);
        exif_data_load_data(data, block, size);
    }
    exif_loader_unref(loader);
    return data != nullptr ? FindWithLibexif(data, bytes) : 0;
}

int ReadWithExiv2(const std::string &path, size_t *bytes)
{
    try {
        Exiv2::Image::AutoPtr image = Exiv2::ImageFactory::open(path);
        image->readMetadata();
        Exiv2::ExifData &exif = image->exifData();
        int found = 0;
        for (const WantedTag &tag : kWanted) {
            auto it = exif.findKey(Exiv2::ExifKey(tag.key));
            if (it == exif.end()) continue;
            found++;
            Exiv2::byte buffer[256];
            if (it->size() <= static_cast<long>(sizeof buffer) && it->copy(buffer, Exiv2::littleEndian) > 0) {
                *bytes += buffer[0];
            }
        }
        return found;
    } catch (const Exiv2::AnyError &) {
        return 0;
    }
}

// The floor that no reader can go below: what a file system costs for a
// file whose metadata lies in its first 64 KiB.
int OpenReadClose(const std::string &path, size_t *bytes)
{
    static unsigned char buffer[65536];
    int file = open(path.c_str(), O_RDONLY);
    if (file < 0) return 0;
    ssize_t got = read(file, buffer, sizeof buffer);
    close(file);
    if (got > 0) *bytes += buffer[0];
    return 0;
}

using Reader = int (*)(const std::string &, size_t *);

void RunFiles(benchmark::State &state, Reader read, const std::vector<std::string> &paths)
{
    size_t bytes = 0;
    int found = 0;
    for (auto _ : state) {
        found = 0;
        for (const std::string &path : paths) found += read(path, &bytes);
        benchmark::DoNotOptimize(bytes);
    }
    state.counters["tags"] = found;
    state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(paths.size()));
}

std::vector<std::string> Samples(const std::string &root)
{
    std::vector<std::string> paths;
    for (const auto &entry : fs::recursive_directory_iterator(root)) {
        std::string ext = entry.path().extension().string();
        std::transform(ext.begin(), ext.end(), ext.begin(), [](unsigned char c) { return char(std::tolower(c)); });
        if (entry.is_regular_file() && (ext == ".jpg" || ext == ".jpeg" || ext == ".tif" || ext == ".tiff")) {
            paths.push_back(entry.path().string());
        }
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

}  // namespace

void RegisterReaderBenchmarks(const std::string &samples)
{
    const std::pair<const char *, Reader> libraries[] = {
        {"zexif", ReadWithZexif},
        {"libexif", ReadWithLibexif},
        {"libexif-nofix", ReadWithLibexifNoFix},
        {"exiv2", ReadWithExiv2}};
    std::string root = fs::canonical(samples).string();
    std::vector<std::string> paths = Samples(root);
    for (const auto &[name, read] : libraries) {
        benchmark::RegisterBenchmark((std::string("all/") + name).c_str(), RunFiles, read, paths);
    }
    benchmark::RegisterBenchmark("all/open-read-close", RunFiles, OpenReadClose, paths);
    for (const std::string &path : paths) {
        std::string file = path.substr(root.size() + 1);
        for (const auto &[name, read] : libraries) {
            benchmark::RegisterBenchmark((file + "/" + name).c_str(), RunFiles, read, std::vector<std::string>{path});
        }
    }
}
