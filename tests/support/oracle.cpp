#include "support/oracle.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "reader/tif_tag_list.h"
#include "support/files.h"
#include "support/tree_records.h"

namespace {

const uint32_t kExifTable[] = {
    33434, 33437, 34850, 34852, 34855, 34856, 36864, 36867, 36868, 37121, 37122, 37377, 37378, 37379, 37380,
    37381, 37382, 37383, 37384, 37385, 37386, 37396, 37500, 37510, 37520, 37521, 37522, 40960, 40961, 40962,
    40963, 40964, 40965, 41483, 41484, 41486, 41487, 41488, 41492, 41493, 41495, 41728, 41729, 41730, 41985,
    41986, 41987, 41988, 41989, 41990, 41991, 41992, 41993, 41994, 41995, 41996, 42016, 274};
const uint32_t kReaderKeeps[] = {270, 271, 272, 274, 306};

bool Keeps(uint32_t tag)
{
    return std::find(std::begin(kReaderKeeps), std::end(kReaderKeeps), tag) != std::end(kReaderKeeps);
}

bool IsChainPlace(const std::string &place)
{
    return place.find('/') == std::string::npos;
}

bool Within(const std::string &place, const std::string &scope)
{
    return place == scope || place.compare(0, scope.size() + 1, scope + "/") == 0;
}

bool SingleBlock(const std::vector<RawTag> &tags)
{
    return std::none_of(tags.begin(), tags.end(), [](const RawTag &t) { return t.place.compare(0, 4, "APP1") == 0; });
}

// The first of a walk from from; no lookup enters the Interop IFD.
const RawTag *FirstIn(const std::vector<RawTag> &tags, size_t from, const std::string &scope, uint32_t tag)
{
    for (size_t i = from; i < tags.size() && (scope.empty() || Within(tags[i].place, scope)); i++) {
        if (tags[i].tag == tag && tags[i].place.find("/40965") == std::string::npos) return &tags[i];
    }
    return nullptr;
}

// The Exif IFD's place, where the last Exif pointer of the chain leads.
std::string ExifPlace(const std::vector<RawTag> &tags)
{
    std::string place;
    for (const RawTag &t : tags) {
        if (t.tag == 34665 && IsChainPlace(t.place)) place = t.place + "/34665";
    }
    return place;
}

Bytes SegmentBytes(const Bytes &file, const RawSegment &s)
{
    if (s.size <= 0 || s.offset + s.size > int64_t(file.size())) return {};
    return Bytes(file.begin() + s.offset, file.begin() + s.offset + s.size);
}

// An APP1 of an Exif block: a load parses one of 14 bytes or more, the
// reader takes any that opens with the signature.
bool IsExifSegment(const Bytes &file, const RawSegment &s, int64_t least = 14)
{
    return s.code == 0xE1 && s.size >= least && std::memcmp(&file[size_t(s.offset)], "Exif", 4) == 0;
}

// Every segment but the Exif blocks, with its payload: what a save copies.
std::vector<std::pair<int, Bytes>> CopiedSegments(const Bytes &file, const RawFile &raw)
{
    std::vector<std::pair<int, Bytes>> out;
    for (const RawSegment &s : raw.segments) {
        if (!IsExifSegment(file, s)) out.push_back({s.code, SegmentBytes(file, s)});
    }
    return out;
}

// An answer of either family, or what it should be, as a record without a
// place; "none" for -1.
RawTag Answer(int result, uint32_t tag, const ExifTagValue &value)
{
    if (result != 0) return {"none", uint16_t(tag), 0, 0, {}};
    return {"", uint16_t(tag), uint16_t(value.type), value.count, ValueBytes(value)};
}

RawTag Want(const RawTag *expected, uint32_t tag)
{
    if (expected == nullptr) return {"none", uint16_t(tag), 0, 0, {}};
    RawTag want = *expected;
    want.place = "";
    return want;
}

// Lookups of every tag the file has, in its IFD and the next, and of one
// it lacks.
void CheckTreeLookups(CExifDoc *doc, const std::vector<RawTag> &tags, const std::string &label)
{
    std::vector<std::pair<uint32_t, int>> asked = {{65001, 0}, {42016, 0}};
    for (const RawTag &t : tags) {
        int ifd = std::atoi(t.place.c_str() + 3);
        asked.insert(asked.end(), {{t.tag, ifd}, {t.tag, ifd + 1}});
    }
    for (const auto &[tag, ifd] : asked) {
        ExifTagValue value = {};
        int result = zExifGetTag(doc, tag, &value, ifd);
        EXPECT_EQ(Want(ExpectedGet(tags, tag, ifd), tag), Answer(result, tag, value)) << label << " IFD " << ifd;
        std::free(value.data);
    }
}

// The tags the reader can answer: it reads no IFD whose entries the file
// cuts short, nor anything below it, and no value that runs past the file's
// end or past the APP1 that holds it.
std::vector<RawTag> ReadableTags(const RawFile &raw)
{
    std::vector<RawTag> tags;
    for (size_t i = 0; i < raw.tags.size(); i++) {
        bool cut = std::any_of(raw.cutIfds.begin(), raw.cutIfds.end(), [&](const std::string &p) { return Within(raw.tags[i].place, p); });
        if (!cut && raw.cutValues.count(i) == 0) tags.push_back(raw.tags[i]);
    }
    return tags;
}

void CheckReader(const std::string &path, const Bytes &file, const RawFile &raw, const std::string &label)
{
    const std::vector<RawTag> readable = ReadableTags(raw);
    ReaderPtr reader(zRExifBeginRead(path.c_str()));
    ASSERT_NE(nullptr, reader) << label;
    EXPECT_EQ(raw.format, zRExifGetFileFormat(reader.get())) << label;
    bool hasExif = std::any_of(raw.segments.begin(), raw.segments.end(), [&](const RawSegment &s) { return IsExifSegment(file, s, 4); }) ||
                std::any_of(raw.tags.begin(), raw.tags.end(), [](const RawTag &t) {
                    return (t.tag == 34665 || t.tag == 34853) && t.count > 0 && IsChainPlace(t.place);
                });
    EXPECT_EQ(hasExif ? 1 : 0, zRExifIsExifExist(reader.get())) << label;
    bool thumbTag = std::any_of(raw.tags.begin(), raw.tags.end(), [&](const RawTag &t) {
        return t.tag == 513 && (raw.format == 2 ? IsChainPlace(t.place) : t.place == "IFD1");
    });
    EXPECT_EQ(thumbTag, zRExifIsThumbnailExist(reader.get()) == 1) << label;
    std::vector<uint32_t> asked(std::begin(kReaderKeeps), std::end(kReaderKeeps));
    for (const RawTag &t : raw.tags) asked.push_back(t.tag);
    for (uint32_t tag : asked) {
        ExifTagValue value = {};
        int result = zRExifGetTag(reader.get(), tag, &value);
        EXPECT_EQ(Want(ExpectedReaderGet(readable, tag), tag), Answer(result, tag, value)) << label;
    }
    ExifBuffer thumb = {};
    int got = zRExifGetThumbnailData(reader.get(), &thumb);
    EXPECT_EQ(raw.thumbnail.empty() ? -1 : 0, got) << label;
    if (got == 0) EXPECT_EQ(raw.thumbnail, Bytes(thumb.data, thumb.data + thumb.size)) << label;

    ExifBuffer marker = {};
    Bytes payload;  // zeros where the file ends
    for (const RawSegment &s : raw.segments) {
        if (!IsExifSegment(file, s, 4)) continue;
        payload.assign(file.begin() + s.offset, file.begin() + std::min<int64_t>(s.offset + s.size, int64_t(file.size())));
        payload.resize(size_t(s.size));
    }
    EXPECT_EQ(payload.empty() ? -1 : 0, zRExifGetExifMarker(reader.get(), &marker)) << label;
    EXPECT_EQ(payload, Bytes(marker.data, marker.data + marker.size)) << label;
    delete[] marker.data;

    TifTagList *list = nullptr;
    std::vector<RawTag> exif;
    std::string exifPlace = ExifPlace(readable);
    for (const RawTag &t : readable) {
        if (raw.format == 2 && t.place == exifPlace) exif.push_back({"", t.tag, t.type, t.count, t.value});
    }
    EXPECT_EQ(raw.format == 2 && !exifPlace.empty() ? 0 : -1, zRExifGetTIFExifData(reader.get(), &list)) << label;
    std::vector<RawTag> items;
    for (int32_t i = 0; list != nullptr && i < list->count; i++) {
        const TifTagItem *item = list->items[i];
        items.push_back(Answer(0, item->tag, {item->type, item->count, item->data}));
    }
    FreeTifTagList(list);
    EXPECT_EQ(exif, items) << label;
}

// A save to a new file, then a second one of the same document, whose source
// is closed by then: the segments of a JPEG and the strips of a TIFF were
// copied from it, never held, so that save fails and leaves no file, unless
// the TIFF has no strip bytes to copy.
void CheckSave(CExifDoc *doc, const Bytes &file, const RawFile &raw, const TempDir &dir, const std::string &label)
{
    std::string out = dir.Path(raw.format == 1 ? "saved.jpg" : "saved.tif");
    ASSERT_EQ(0, zExifSaveFile(doc, out.c_str())) << label;
    Bytes saved = ReadFile(out);
    RawFile again = ReadRaw(saved);
    ASSERT_TRUE(again.loads) << label;
    EXPECT_EQ(AsSaved(raw.tags, raw.bigEndian), AsSaved(again.tags, raw.bigEndian)) << label;
    EXPECT_EQ(CopiedSegments(file, raw), CopiedSegments(saved, again)) << label;
    EXPECT_EQ(raw.thumbnail, again.thumbnail) << label;
    EXPECT_EQ(raw.images, again.images) << label;
    if (!raw.note.empty()) EXPECT_EQ(raw.note, again.note) << label << ": the maker note's IFD";
    uint32_t exifAt = 0, gpsAt = 0;
    for (const RawTag &t : again.tags) {
        bool pointer = t.count == 1 && (t.type == 4 || t.type == 13);
        if (pointer && t.place == "IFD0" && (t.tag == 34665 || t.tag == 34853)) {
            (t.tag == 34665 ? exifAt : gpsAt) = FirstNumber(t);
        }
    }
    if (exifAt != 0 && gpsAt != 0) EXPECT_LT(exifAt, gpsAt) << label << ": the Exif IFD goes first";
    int64_t block = raw.format == 1 ? saved.size() : 0;
    for (const RawSegment &s : again.segments) {
        if (IsExifSegment(saved, s) && block == int64_t(saved.size())) block = s.offset + 6;
    }
    if (block < int64_t(saved.size())) EXPECT_EQ((Bytes{'I', 'I', 42, 0}), Bytes(saved.begin() + block, saved.begin() + block + 4)) << label;
    DocPtr reloaded(zExifLoadFile(out.c_str()));
    ASSERT_NE(nullptr, reloaded) << label;
    EXPECT_EQ(again.tags, TreeTags(*reloaded)) << label;

    EXPECT_EQ(raw.thumbnail, DocThumbnail(doc)) << label << ": after the save";
    std::string second = dir.Path("second");
    int result = zExifSaveFile(doc, second.c_str());
    bool noStrips = std::all_of(raw.images.begin(), raw.images.end(), [](const Bytes &image) { return image.empty(); });
    EXPECT_EQ(raw.format == 2 && noStrips ? 0 : -1, result) << label;
    EXPECT_EQ(result == 0 ? saved : Bytes{}, ReadFile(second)) << label;
}

int FirstPlainTag(const std::vector<RawTag> &tags)
{
    for (const RawTag &t : tags) {
        if (t.place == "IFD0" && !InExifTable(t.tag) && t.tag != 34665 && t.tag != 34853 && t.tag < 273) return t.tag;
    }
    return -1;
}

// Puts tag into the chain at place at its sorted place, or over the one
// that is there.
void SetInModel(std::vector<RawTag> &tags, const RawTag &tag)
{
    auto at = std::find_if(tags.begin(), tags.end(), [&](const RawTag &t) { return t.place == tag.place; });
    size_t slash = tag.place.rfind('/');
    if (at == tags.end() && slash != std::string::npos) {
        std::string owner = tag.place.substr(0, slash);
        uint16_t pointer = uint16_t(std::stoi(tag.place.substr(slash + 1)));
        at = std::find_if(tags.begin(), tags.end(), [&](const RawTag &t) { return t.place == owner && t.tag == pointer; });
        tags.insert(at + 1, tag);
        return;
    }
    while (at != tags.end() && Within(at->place, tag.place) && (at->place != tag.place || at->tag < tag.tag)) at++;
    if (at != tags.end() && at->place == tag.place && at->tag == tag.tag) {
        *at = tag;
    } else {
        tags.insert(at, tag);
    }
}

void AskEverything(CExifReader *reader)
{
    zRExifGetFileFormat(reader);
    zRExifIsExifExist(reader);
    zRExifIsThumbnailExist(reader);
    for (uint32_t tag : {271u, 274u, 306u, 33434u, 36867u, 37500u, 513u}) {
        ExifTagValue value = {};
        zRExifGetTag(reader, tag, &value);
    }
    ExifBuffer buffer = {};
    zRExifGetThumbnailData(reader, &buffer);
    buffer = {};
    if (zRExifGetExifMarker(reader, &buffer) == 0) delete[] buffer.data;
    TifTagList *list = nullptr;
    if (zRExifGetTIFExifData(reader, &list) == 0) FreeTifTagList(list);
    zRExifIsAudioExist(reader);
}

// The edits of CheckFile, on a document of their own.
void CheckEdits(const Bytes &bytes, const RawFile &raw, const std::string &path, const TempDir &dir, const std::string &label)
{
    DocPtr doc(zExifLoadFile(path.c_str()));
    std::vector<RawTag> expected = AsSaved(raw.tags, raw.bigEndian);

    RawTag artist = {"IFD0", 315, 2, 5, {'J', 'a', 'n', 'e', 0}};
    ExifTagValue value = {artist.type, artist.count, artist.value.data()};
    ASSERT_EQ(0, zExifSetTag(doc.get(), artist.tag, &value, 0)) << label;
    SetInModel(expected, artist);

    std::string exifPlace = ExifPlace(raw.tags);
    RawTag comment = {exifPlace.empty() ? "IFD0/34665" : exifPlace, 37510, 7, 9, {'A', 'S', 'C', 'I', 'I', 0, 0, 0, 'x'}};
    value = {comment.type, comment.count, comment.value.data()};
    ASSERT_EQ(0, zExifSetTag(doc.get(), comment.tag, &value, 0)) << label;
    if (exifPlace.empty()) SetInModel(expected, {"IFD0", 34665, 4, 1, {}});
    SetInModel(expected, comment);

    int plain = FirstPlainTag(raw.tags);
    if (plain >= 0) {
        ASSERT_EQ(0, zExifDelTag(doc.get(), uint32_t(plain), 0)) << label;
        expected.erase(std::find_if(expected.begin(), expected.end(),
                                    [&](const RawTag &t) { return t.place == "IFD0" && t.tag == plain; }));
    }
    Bytes thumbnail = ThumbnailBytes(3000, 9);
    ExifBuffer buffer = {thumbnail.data(), uint32_t(thumbnail.size())};
    bool newThumb = raw.format == 1 && !raw.thumbnail.empty();
    if (newThumb) {
        ASSERT_EQ(0, zExifSetThumbnailData(doc.get(), &buffer)) << label;
    }

    std::string out = dir.Path("edited");
    ASSERT_EQ(0, zExifSaveFile(doc.get(), out.c_str())) << label;
    Bytes saved = ReadFile(out);
    RawFile edited = ReadRaw(saved);
    EXPECT_EQ(expected, AsSaved(edited.tags, raw.bigEndian)) << label;
    EXPECT_EQ(CopiedSegments(bytes, raw), CopiedSegments(saved, edited)) << label;
    EXPECT_EQ(newThumb ? thumbnail : raw.thumbnail, edited.thumbnail) << label;
}

}  // namespace

bool InExifTable(uint32_t tag)
{
    return std::find(std::begin(kExifTable), std::end(kExifTable), tag) != std::end(kExifTable);
}

const RawTag *ExpectedGet(const std::vector<RawTag> &tags, uint32_t tag, int ifd)
{
    if (InExifTable(tag)) {
        for (size_t i = tags.size(); i-- > 0;) {
            if (tags[i].tag == 34665 && i + 1 < tags.size() && tags[i + 1].place == tags[i].place + "/34665") {
                return FirstIn(tags, i, tags[i].place, tag);
            }
        }
        return nullptr;
    }
    std::string place = "IFD" + std::to_string(ifd);
    for (size_t i = 0; i < tags.size(); i++) {
        if (tags[i].place == place) return FirstIn(tags, i, "", tag);
    }
    return nullptr;
}

const RawTag *ExpectedReaderGet(const std::vector<RawTag> &tags, uint32_t tag)
{
    const RawTag *found = nullptr;
    if (Keeps(tag)) {
        for (const RawTag &t : tags) {
            if (t.tag == tag && IsChainPlace(t.place)) found = &t;
        }
    }
    if (found != nullptr || !InExifTable(tag)) return found;
    std::string exif = ExifPlace(tags);
    for (const RawTag &t : tags) {
        if (t.place == exif && t.tag == tag) return &t;
    }
    return nullptr;
}

void CheckFile(const Bytes &bytes, const std::string &label, bool edits)
{
    SCOPED_TRACE(label);
    TempDir dir;
    RawFile raw = ReadRaw(bytes);
    std::string path = dir.Write(raw.format == 2 ? "photo.tif" : "photo.jpg", bytes);
    DocPtr doc(zExifLoadFile(path.c_str()));
    ASSERT_EQ(raw.loads, doc != nullptr) << label;
    if (doc == nullptr) return;
    EXPECT_EQ(raw.format, zExifGetFileFormat(doc.get())) << label;
    bool exifSegment = std::any_of(raw.segments.begin(), raw.segments.end(),
                                   [&](const RawSegment &s) { return IsExifSegment(bytes, s); });
    bool exifPointer = std::any_of(raw.tags.begin(), raw.tags.end(), [](const RawTag &t) { return t.tag == 34665; });
    EXPECT_EQ(exifSegment || exifPointer ? 1 : 0, zExifIsExifExist(doc.get())) << label;
    EXPECT_EQ(raw.tags, TreeTags(*doc)) << label;
    EXPECT_EQ(raw.segments, TreeSegments(*doc)) << label;
    if (SingleBlock(raw.tags)) {
        CheckTreeLookups(doc.get(), raw.tags, label);
        CheckReader(path, bytes, raw, label);
    }
    if (!raw.thumbnail.empty()) {
        EXPECT_EQ(raw.thumbnail, DocThumbnail(DocPtr(zExifLoadFile(path.c_str())).get())) << label;
        EXPECT_EQ(raw.thumbnail, DocThumbnail(DocPtr(zExifLoadFile(path.c_str())).get(), THUMB_TYPE_JPEG)) << label;
    }
    CheckSave(doc.get(), bytes, raw, dir, label);
    if (edits) CheckEdits(bytes, raw, path, dir, label);
}

void CheckDamaged(const Bytes &bytes, const std::string &label)
{
    SCOPED_TRACE(label);
    TempDir dir;
    RawFile raw = ReadRaw(bytes);
    std::string path = dir.Write("photo", bytes);
    if (ReaderPtr reader{zRExifBeginRead(path.c_str())}) AskEverything(reader.get());
    DocPtr doc(zExifLoadFile(path.c_str()));
    ASSERT_EQ(raw.loads, doc != nullptr) << label;
    if (doc == nullptr) return;
    EXPECT_EQ(raw.tags, TreeTags(*doc)) << label;
    EXPECT_EQ(raw.segments, TreeSegments(*doc)) << label;
    if (SingleBlock(raw.tags)) CheckReader(path, bytes, raw, label);
    std::string out = dir.Path("saved");
    if (zExifSaveFile(doc.get(), out.c_str()) == 0) {
        EXPECT_TRUE(ReadRaw(ReadFile(out)).loads) << label;
    } else {
        EXPECT_EQ(std::vector<std::string>{"photo"}, dir.List()) << label;
    }
}
