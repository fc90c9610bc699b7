#include "zexif/dump_text.h"

#include "zexif/document_walk.h"
#include "zexif/marker_names.h"
#include "zexif/value_format.h"

namespace {

constexpr int MARKER_DEPTH = 1;
constexpr int BLOCK_IN_MARKER_DEPTH = 3;

std::string MarkerLabel(int32_t code)
{
    if (code == 0) return "      scan data";
    char label[32];
    std::snprintf(label, sizeof label, "%04X  %s", static_cast<unsigned>(0xff00 | (code & 0xff)),
                  MarkerName(code).c_str());
    return label;
}

// Where the payload lies, and the signature of an APPn segment.
std::string PayloadText(const MarkerInfo &marker)
{
    if (!marker.hasPayload) return "";
    char text[64];
    std::snprintf(text, sizeof text, "offset %-8d size %d", marker.offset, marker.size);
    if (!marker.hasSignature) return text;
    const unsigned char *signature = reinterpret_cast<const unsigned char *>(marker.signature.data());
    return std::string(text) + "  " + QuoteText(signature, marker.signature.size());
}

class TextDump : public DocumentVisitor {
public:
    explicit TextDump(FILE *out) : m_out(out) {}

    void BeginMarker(const MarkerInfo &marker) override
    {
        const std::string label = MarkerLabel(marker.code), payload = PayloadText(marker);
        Indent(MARKER_DEPTH);
        if (payload.empty()) {
            std::fprintf(m_out, "%s\n", label.c_str());
        } else {
            std::fprintf(m_out, "%-15s  %s\n", label.c_str(), payload.c_str());
        }
        m_depth = BLOCK_IN_MARKER_DEPTH;
    }

    void EndMarker() override {}

    void TiffHeader(bool bigEndian) override
    {
        Indent(m_depth);
        std::fprintf(m_out, "TIFF header, %s\n", bigEndian ? "big-endian (MM)" : "little-endian (II)");
    }

    void BeginIfd(const IfdInfo &ifd) override
    {
        Indent(m_depth++);
        std::fprintf(m_out, "%s", ifd.name.c_str());
        if (ifd.entries >= 0) std::fprintf(m_out, ": %d %s", ifd.entries, ifd.entries == 1 ? "entry" : "entries");
        if (ifd.next != 0) std::fprintf(m_out, ", next IFD at %u", ifd.next);
        std::fprintf(m_out, "\n");
    }

    void EndIfd() override { --m_depth; }

    void BeginTag(const TagView &tag) override
    {
        const char *name = NameOfTag(tag.group, tag.number);
        const std::string value = ReadableValue(tag, false);
        Indent(m_depth++);
        std::fprintf(m_out, "%5u %-27s %-9s %6u  %s\n", tag.number, name != nullptr ? name : "",
                     TypeName(tag.value.type).c_str(), tag.value.count, value.c_str());
    }

    void EndTag() override { --m_depth; }

private:
    void Indent(int depth) { std::fprintf(m_out, "%*s", depth * 2, ""); }

    FILE *m_out;
    int m_depth = MARKER_DEPTH;
};

}  // namespace

void PrintDocument(const DumpedFile &file, const std::string &name, FILE *out)
{
    std::fprintf(out, "%s: %s\n", name.c_str(), FormatName(file.Format()));
    TextDump dump(out);
    file.Walk(dump);
}
