#include "fuzz/edit_ops.h"

#include <cstring>
#include <string>
#include <vector>

#include "fuzz/fuzz_files.h"
#include "reader/tif_tag_list.h"

namespace {

enum EditKind {
    EDIT_SET_TAG,
    EDIT_DELETE_TAG,
    EDIT_SET_THUMBNAIL,
    EDIT_REMOVE_MARKER,
    EDIT_SET_AUDIO,
    EDIT_REMOVE_AUDIO,
    EDIT_INSERT_EXIF_MARKER,
    EDIT_IMPORT_TIFF_EXIF,
    EDIT_KINDS
};

const size_t TYPE_SIZES[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8};
constexpr uint32_t MAX_VALUE_COUNT = 300;

uint32_t Word(const uint8_t *bytes)
{
    return static_cast<uint32_t>(bytes[0] | bytes[1] << 8);
}

// Types run past 12 now and then, so the refusal of unknown types is fuzzed
// too; values are long enough to leave the entry for a block of their own.
void SetTag(CExifDoc *doc, const uint8_t *edit)
{
    uint32_t type = edit[3] % 14;
    uint32_t count = 1 + edit[4] % MAX_VALUE_COUNT;
    std::vector<uint8_t> bytes(count * (type < 13 ? TYPE_SIZES[type] : 1) + 1, edit[6]);
    ExifTagValue value = {type, count, bytes.data()};
    zExifSetTag(doc, Word(edit + 1), &value, edit[5] % 4 - 1);
}

// A small JPEG-looking block; the library takes thumbnails as bytes.
void SetThumbnail(CExifDoc *doc, const uint8_t *edit)
{
    std::vector<uint8_t> bytes(1 + Word(edit + 1) % 4096, edit[3]);
    bytes[0] = 0xFF;
    ExifBuffer buffer = {bytes.data(), static_cast<uint32_t>(bytes.size())};
    if (edit[4] & 1) {
        zExifSetThumbDataEx(doc, &buffer, THUMB_TYPE_JPEG);
    } else {
        zExifSetThumbnailData(doc, &buffer);
    }
}

void RemoveMarker(CExifDoc *doc, const uint8_t *edit)
{
    uint32_t signature;
    std::memcpy(&signature, edit + 2, sizeof signature);
    zExifRemoveMarker(doc, 0xE0 + edit[1] % 16, signature);
}

// The path must outlive the save, so it lives as long as the process.
void SetAudio(CExifDoc *doc, const uint8_t *edit)
{
    static std::string path;
    std::vector<uint8_t> riff(12 + Word(edit + 1) * 16u % 200000, edit[3]);
    std::memcpy(riff.data(), "RIFF", 4);
    path = WriteFuzzFile("audio-in.wav", riff.data(), riff.size());
    zExifSetAudioFile(doc, path.c_str());
}

void InsertExifMarker(CExifDoc *doc, const char *source)
{
    CExifReader *reader = zRExifBeginRead(source);
    if (reader == nullptr) return;
    ExifBuffer buffer = {nullptr, 0};
    if (zRExifGetExifMarker(reader, &buffer) == 0 && zExifInsertExifMarker(doc, &buffer) != 0) delete[] buffer.data;
    zRExifEndRead(reader);
}

void ImportTiffExif(CExifDoc *doc, const char *source)
{
    CExifReader *reader = zRExifBeginRead(source);
    if (reader == nullptr) return;
    TifTagList *list = nullptr;
    // An Exif IFD without entries comes as a null list, which the import refuses.
    if (zRExifGetTIFExifData(reader, &list) == 0 && zExifSetTIFExifData(doc, list) != 0) FreeTifTagList(list);
    zRExifEndRead(reader);
}

}  // namespace

EditInput SplitEditInput(const uint8_t *data, size_t size)
{
    if (size == 0) return {data, 0, data, 0};
    size_t count = data[0] % (MAX_EDITS + 1);
    if (count > (size - 1) / EDIT_SIZE) count = (size - 1) / EDIT_SIZE;
    size_t header = 1 + count * EDIT_SIZE;
    return {data + 1, count, data + header, size - header};
}

void ApplyEdit(CExifDoc *doc, const uint8_t *edit, const char *source)
{
    switch (edit[0] % EDIT_KINDS) {
    case EDIT_SET_TAG: SetTag(doc, edit); break;
    case EDIT_DELETE_TAG: zExifDelTag(doc, Word(edit + 1), edit[5] % 4 - 1); break;
    case EDIT_SET_THUMBNAIL: SetThumbnail(doc, edit); break;
    case EDIT_REMOVE_MARKER: RemoveMarker(doc, edit); break;
    case EDIT_SET_AUDIO: SetAudio(doc, edit); break;
    case EDIT_REMOVE_AUDIO: zExifRemoveAudio(doc); break;
    case EDIT_INSERT_EXIF_MARKER: InsertExifMarker(doc, source); break;
    case EDIT_IMPORT_TIFF_EXIF: ImportTiffExif(doc, source); break;
    }
}
