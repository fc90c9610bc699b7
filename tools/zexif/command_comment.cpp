#include <cstdio>

#include "zexif/command.h"
#include "zexif/edit_session.h"
#include "zexif/file_runner.h"
#include "zexif/load_document.h"
#include "zexif/output.h"
#include "zexif/segment_edit.h"
#include "zexif.h"

namespace {

// A JPEG comment holds at most what a segment's length field allows.
constexpr size_t MAX_COMMENT = 65533;

bool IsComment(int32_t marker, const std::string &)
{
    return marker == MARKER_COM;
}

bool RequireJpeg(CExifDoc *doc, const std::string &path)
{
    if (zExifGetFileFormat(doc) == FORMAT_JPEG) return true;
    std::fprintf(Err(), "zexif: %s is no JPEG file: comments are JPEG segments\n", path.c_str());
    return false;
}

// Every comment, one line each; behind the file's name with many files.
int Show(const std::string &path, bool named)
{
    CExifDoc *doc = LoadDocument(path);
    if (doc == nullptr) return EXIT_FAILED;
    const bool jpeg = RequireJpeg(doc, path);
    for (const std::string &payload : jpeg ? SegmentPayloads(doc, IsComment) : std::vector<std::string>()) {
        const std::string text = payload.substr(0, payload.find('\0'));
        std::fprintf(Out(), "%s%s\n", named ? (path + ": ").c_str() : "", text.c_str());
    }
    zExifDestroy(doc);
    return jpeg ? EXIT_OK : EXIT_FAILED;
}

// The first comment takes the text, the others go.
EditResult Replace(CExifDoc *doc, const std::string &path, const std::string &text)
{
    if (!RequireJpeg(doc, path)) return EDIT_FAILED;
    std::string payload;
    const int32_t first = FindSegment(doc, IsComment, &payload);
    const ExifBuffer data{reinterpret_cast<unsigned char *>(const_cast<char *>(text.data())), static_cast<uint32_t>(text.size())};
    const bool done = first >= 0 ? zExifSetSegmentData(doc, first, &data) == 0 : zExifInsertSegment(doc, MARKER_COM, &data) == 0;
    if (!done) return EDIT_FAILED;
    int seen = 0;
    RemoveSegments(doc, [&](int32_t marker, const std::string &) { return marker == MARKER_COM && seen++ > 0; });
    return EDIT_DONE;
}

EditResult Remove(CExifDoc *doc, const std::string &path)
{
    if (!RequireJpeg(doc, path)) return EDIT_FAILED;
    if (RemoveSegments(doc, IsComment) > 0) return EDIT_DONE;
    std::fprintf(Err(), "zexif: note: %s has no comment\n", path.c_str());
    return EDIT_UNCHANGED;
}

}  // namespace

int RunComment(const ParsedArguments &parsed)
{
    const std::vector<std::string> &words = parsed.positional;
    if (words.size() < 2) return EXIT_USAGE;
    const std::string &action = words[0];
    if (action == "get") {
        const std::vector<std::string> files(words.begin() + 1, words.end());
        const bool named = files.size() > 1 || parsed.Has("recursive");
        return RunForEachFile(parsed, files, {}, [&](const std::string &path) { return Show(path, named); });
    }
    if (action == "set" && words.size() >= 3 && words[1].size() <= MAX_COMMENT) {
        const std::string text = words[1];
        return EditEach(parsed, {words.begin() + 2, words.end()},
                        [&](CExifDoc *doc, const std::string &path) { return Replace(doc, path, text); });
    }
    if (action == "remove") return EditEach(parsed, {words.begin() + 1, words.end()}, Remove);
    return EXIT_USAGE;
}
