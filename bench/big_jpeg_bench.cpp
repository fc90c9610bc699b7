// Big JPEGs through the read-write family: loading the whole tree beside a
// plain read loop over the same file, and setting one tag and saving to a new
// file beside exiv2 doing the same edit through its library.
#include "bench/bench.h"

#include <fcntl.h>
#include <unistd.h>

#include <exiv2/exiv2.hpp>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "zexif.h"

namespace {

namespace fs = std::filesystem;

constexpr size_t READ_CHUNK = 65536;

size_t ReadLoop(const std::string &path)
{
    std::vector<char> buffer(READ_CHUNK);
    int file = open(path.c_str(), O_RDONLY);
    if (file < 0) return 0;
    size_t total = 0;
    ssize_t got;
    while ((got = read(file, buffer.data(), buffer.size())) > 0) total += size_t(got);
    close(file);
    return total;
}

size_t LoadWithZexif(const std::string &path)
{
    CExifDoc *doc = zExifLoadFile(path.c_str());
    if (doc == nullptr) return 0;
    size_t format = size_t(zExifGetFileFormat(doc));
    zExifDestroy(doc);
    return format;
}

// Tag 270, ImageDescription, as ASCII "x".
size_t SetWithZexif(const std::string &path, const std::string &out)
{
    CExifDoc *doc = zExifLoadFile(path.c_str());
    if (doc == nullptr) return 0;
    char text[] = "x";
    ExifTagValue value = {2, 2, text};
    int ok = zExifSetTag(doc, 270, &value, 0) == 0 && zExifSaveFile(doc, out.c_str()) == 0;
    zExifDestroy(doc);
    return size_t(ok);
}

void SetDescription(Exiv2::Image &image)
{
    image.readMetadata();
    image.exifData()["Exif.Image.ImageDescription"] = "x";
    image.writeMetadata();
}

// exiv2 edits a file in place, as its own tool does: the new file is a copy
// of the old one, edited.
size_t SetWithExiv2(const std::string &path, const std::string &out)
{
    try {
        fs::copy_file(path, out, fs::copy_options::overwrite_existing);
        SetDescription(*Exiv2::ImageFactory::open(out));
        return 1;
    } catch (const std::exception &) {
        return 0;
    }
}

// Or the file is read whole, edited in memory and written out: faster for
// smaller files.
size_t SetWithExiv2InMemory(const std::string &path, const std::string &out)
{
    try {
        Exiv2::DataBuf file = Exiv2::readFile(path);
        Exiv2::Image::AutoPtr image = Exiv2::ImageFactory::open(file.pData_, file.size_);
        SetDescription(*image);
        Exiv2::BasicIo &io = image->io();
        io.seek(0, Exiv2::BasicIo::beg);
        Exiv2::writeFile(io.read(io.size()), out);
        return 1;
    } catch (const std::exception &) {
        return 0;
    }
}

void RunOnFile(benchmark::State &state, size_t (*work)(const std::string &), const std::string &path)
{
    size_t sum = 0;
    for (auto _ : state) sum += work(path);
    benchmark::DoNotOptimize(sum);
    state.counters["tags"] = sum > 0 ? 1 : 0;
}

// zexif puts the new file on the disk before it takes the old one's place;
// exiv2 leaves it to the system to write later. Each edit starts with nothing
// waiting to be written, so that neither pays for what the other left.
void RunEdit(benchmark::State &state, size_t (*edit)(const std::string &, const std::string &),
             const std::string &path, const std::string &out)
{
    size_t done = 0;
    for (auto _ : state) {
        state.PauseTiming();
        sync();
        state.ResumeTiming();
        done += edit(path, out);
    }
    state.counters["tags"] = done > 0 ? 1 : 0;
}

}  // namespace

// "load 80MB/zexif" and "/read-loop" over big80MB.jpg; "set <N>MB/zexif",
// "/exiv2" and "/exiv2-memory" over big10MB.jpg and big80MB.jpg.
void RegisterBigJpegBenchmarks(const std::string &dir)
{
    const std::string big = dir + "/big80MB.jpg";
    benchmark::RegisterBenchmark("load 80MB/zexif", RunOnFile, LoadWithZexif, big);
    benchmark::RegisterBenchmark("load 80MB/read-loop", RunOnFile, ReadLoop, big);
    for (const std::string size : {"10MB", "80MB"}) {
        const std::string path = dir + "/big" + size + ".jpg", out = dir + "/out" + size + ".jpg";
        benchmark::RegisterBenchmark(("set " + size + "/zexif").c_str(), RunEdit, SetWithZexif, path, out);
        benchmark::RegisterBenchmark(("set " + size + "/exiv2").c_str(), RunEdit, SetWithExiv2, path, out);
        benchmark::RegisterBenchmark(("set " + size + "/exiv2-memory").c_str(), RunEdit, SetWithExiv2InMemory, path, out);
    }
}
