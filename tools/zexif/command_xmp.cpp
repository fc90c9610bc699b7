#include <cstdio>
#include <cstdlib>

#include "zexif/command.h"
#include "zexif/edit_session.h"
#include "zexif/field_types.h"
#include "zexif/file_bytes.h"
#include "zexif/file_runner.h"
#include "zexif/load_document.h"
#include "zexif/output.h"
#include "zexif/segment_edit.h"
#include "zexif.h"

namespace {

// The XMP APP1 payload starts with this name and its NUL; a TIFF keeps the
// packet in tag 700 of IFD 0.
const std::string XMP_SIGNATURE("http://ns.adobe.com/xap/1.0/", 29);
constexpr size_t MAX_SEGMENT_PAYLOAD = 65533;
constexpr uint32_t TAG_XMP = 700;

bool ReadPacket(CExifDoc *doc, std::string *packet)
{
    if (zExifGetFileFormat(doc) == FORMAT_TIFF) {
        ExifTagValue value{};
        if (zExifGetTagAt(doc, 0, TAG_XMP, &value) != 0) return false;
        packet->assign(static_cast<const char *>(value.data), value.data != nullptr ? value.count : 0);
        std::free(value.data);
        return true;
    }
    std::string payload;
    if (FindSegment(doc, SegmentOf(MARKER_APP1, XMP_SIGNATURE), &payload) < 0) return false;
    *packet = payload.substr(XMP_SIGNATURE.size());
    return true;
}

int Show(const std::string &path, const std::string &out)
{
    CExifDoc *doc = LoadDocument(path);
    if (doc == nullptr) return EXIT_FAILED;
    std::string packet;
    const bool found = ReadPacket(doc, &packet);
    zExifDestroy(doc);
    if (!found) {
        std::fprintf(Err(), "zexif: %s has no XMP packet\n", path.c_str());
        return EXIT_FAILED;
    }
    const unsigned char *bytes = reinterpret_cast<const unsigned char *>(packet.data());
    if (!out.empty()) return WriteFileBytes(out, bytes, packet.size()) ? EXIT_OK : EXIT_FAILED;
    std::fwrite(bytes, 1, packet.size(), Out());
    return EXIT_OK;
}

EditResult Replace(CExifDoc *doc, const std::string &path, const std::string &packet)
{
    if (zExifGetFileFormat(doc) == FORMAT_TIFF) {
        const ExifTagValue value{TIFF_BYTE, static_cast<uint32_t>(packet.size()), const_cast<char *>(packet.data())};
        return zExifSetTagAt(doc, 0, TAG_XMP, &value) == 0 ? EDIT_DONE : EDIT_FAILED;
    }
    const std::string payload = XMP_SIGNATURE + packet;
    if (payload.size() > MAX_SEGMENT_PAYLOAD) {
        std::fprintf(Err(), "zexif: %s: an XMP packet of a JPEG holds at most %zu bytes\n", path.c_str(),
                     MAX_SEGMENT_PAYLOAD - XMP_SIGNATURE.size());
        return EDIT_FAILED;
    }
    std::string old;
    const int32_t index = FindSegment(doc, SegmentOf(MARKER_APP1, XMP_SIGNATURE), &old);
    const ExifBuffer data{reinterpret_cast<unsigned char *>(const_cast<char *>(payload.data())), static_cast<uint32_t>(payload.size())};
    const bool done = index >= 0 ? zExifSetSegmentData(doc, index, &data) == 0 : zExifInsertSegment(doc, MARKER_APP1, &data) == 0;
    return done ? EDIT_DONE : EDIT_FAILED;
}

}  // namespace

int RunXmp(const ParsedArguments &parsed)
{
    const std::vector<std::string> &words = parsed.positional;
    if (words.size() < 2) return EXIT_USAGE;
    if (words[0] == "get") {
        const std::string out = parsed.Value("out", "");
        return RunForEachFile(parsed, {words.begin() + 1, words.end()}, {}, [&](const std::string &path) { return Show(path, out); });
    }
    std::vector<unsigned char> packet;
    if (words[0] != "set" || words.size() < 3) return EXIT_USAGE;
    if (!ReadFileBytes(words[1], &packet)) return EXIT_FAILED;
    const std::string text(packet.begin(), packet.end());
    return EditEach(parsed, {words.begin() + 2, words.end()},
                    [&](CExifDoc *doc, const std::string &path) { return Replace(doc, path, text); });
}
