#include "zexif/dry_run.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "zexif/marker_names.h"
#include "zexif/tag_reading.h"
#include "zexif/value_format.h"
#include "zexif.h"

namespace {

constexpr int32_t MARKER_COM = 0xFE;
constexpr size_t SIGNATURE_LIMIT = 32;
constexpr size_t COMMENT_LIMIT = 60;
const uint32_t OFFSET_TAGS[] = {273, 324, 513, 34665, 34853, 40965};

bool HoldsOffset(uint32_t tag)
{
    for (uint32_t offset : OFFSET_TAGS) {
        if (tag == offset) return true;
    }
    return false;
}

uint64_t Fingerprint(const unsigned char *bytes, size_t size)
{
    uint64_t hash = 1469598103934665603ull;
    for (size_t i = 0; i < size; ++i) hash = (hash ^ bytes[i]) * 1099511628211ull;
    return hash;
}

std::string TagKey(int ifd, uint32_t tag)
{
    const char *name = zExifGetTagName(ifd, tag);
    const std::string own = name != nullptr ? name : "tag " + std::to_string(tag);
    return ifd == 1 ? "IFD 1 " + own : own;
}

const TifTagItem *FindItem(const TifTagList &list, uint32_t tag)
{
    for (int32_t i = 0; i < list.count; ++i) {
        if (list.items[i]->tag == tag) return list.items[i];
    }
    return nullptr;
}

void AddTags(CExifDoc *doc, int ifd, std::vector<SnapshotEntry> *entries)
{
    TifTagList *list = nullptr;
    if (zExifGetTagList(doc, ifd, &list) != 0) return;
    for (int32_t i = 0; i < list->count; ++i) {
        const TifTagItem &item = *list->items[i];
        TagView view;
        view.group = GroupOfIfd(ifd);
        view.number = item.tag;
        view.value = ViewOfValue(item.type, item.count, item.data);
        const TifTagItem *reference = FindItem(*list, ReferenceTagOf(view.group, item.tag));
        if (reference != nullptr) view.reference = ViewOfValue(reference->type, reference->count, reference->data);
        const bool offset = HoldsOffset(item.tag);
        entries->push_back({TagKey(ifd, item.tag), offset ? "(present)" : ReadableValue(view, false),
                            offset ? 0 : Fingerprint(view.value.bytes, view.value.size)});
    }
    zExifFreeTagList(list);
}

std::string SegmentKey(int32_t marker, const ExifBuffer &data)
{
    const std::string name = MarkerName(marker);
    if (marker == MARKER_COM) return name;
    size_t length = 0;
    while (length < data.size && length < SIGNATURE_LIMIT && data.data[length] >= 0x20 && data.data[length] < 0x7f) ++length;
    return length == 0 ? name : name + " " + std::string(reinterpret_cast<const char *>(data.data), length);
}

std::string SegmentShown(int32_t marker, const ExifBuffer &data)
{
    if (marker == MARKER_COM) return QuoteText(data.data, std::min<size_t>(data.size, COMMENT_LIMIT));
    return std::to_string(data.size) + " bytes";
}

bool IsAppOrComment(int32_t marker)
{
    return (marker >= 0xE0 && marker <= 0xEF) || marker == MARKER_COM;
}

bool IsExifPayload(const ExifBuffer &data)
{
    return data.size >= 6 && std::memcmp(data.data, "Exif\0\0", 6) == 0;
}

void AddSegments(CExifDoc *doc, std::vector<SnapshotEntry> *entries)
{
    ExifSegment *segments = nullptr;
    int32_t count = 0;
    if (zExifGetSegmentList(doc, &segments, &count) != 0) return;
    for (int32_t i = 0; i < count; ++i) {
        ExifBuffer data{};
        if (IsAppOrComment(segments[i].marker) && zExifGetSegmentData(doc, i, &data) == 0 && !IsExifPayload(data)) {
            entries->push_back({SegmentKey(segments[i].marker, data), SegmentShown(segments[i].marker, data),
                                Fingerprint(data.data, data.size)});
        }
        zExifFreeBuffer(&data);
    }
    std::free(segments);
}

const SnapshotEntry *FindEntry(const std::vector<SnapshotEntry> &entries, const std::string &key, size_t nth)
{
    for (const SnapshotEntry &entry : entries) {
        if (entry.key == key && nth-- == 0) return &entry;
    }
    return nullptr;
}

// The nth entry of its key, for segments that come several of a kind.
size_t Rank(const std::vector<SnapshotEntry> &entries, size_t index)
{
    size_t rank = 0;
    for (size_t i = 0; i < index; ++i) rank += entries[i].key == entries[index].key;
    return rank;
}

bool Differ(const SnapshotEntry *old, const SnapshotEntry *now)
{
    if (old == nullptr || now == nullptr) return old != now;
    return old->shown != now->shown || old->fingerprint != now->fingerprint;
}

std::string Shown(const SnapshotEntry *entry)
{
    return entry != nullptr ? entry->shown : "(none)";
}

}  // namespace

std::vector<SnapshotEntry> TakeSnapshot(CExifDoc *doc)
{
    std::vector<SnapshotEntry> entries;
    for (int ifd : {0, IFD_EXIF, IFD_GPS, IFD_INTEROP, 1}) AddTags(doc, ifd, &entries);
    AddSegments(doc, &entries);
    return entries;
}

void PrintChanges(const std::string &path, const std::vector<SnapshotEntry> &before,
                  const std::vector<SnapshotEntry> &after, FILE *out)
{
    std::string lines;
    for (size_t i = 0; i < before.size(); ++i) {
        const SnapshotEntry *now = FindEntry(after, before[i].key, Rank(before, i));
        if (Differ(&before[i], now)) lines += "  " + before[i].key + ": " + before[i].shown + " -> " + Shown(now) + "\n";
    }
    for (size_t i = 0; i < after.size(); ++i) {
        if (FindEntry(before, after[i].key, Rank(after, i)) == nullptr) {
            lines += "  " + after[i].key + ": (none) -> " + after[i].shown + "\n";
        }
    }
    std::fprintf(out, "%s:%s\n%s", path.c_str(), lines.empty() ? " no change" : "", lines.c_str());
}
