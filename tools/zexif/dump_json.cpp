#include "zexif/dump_json.h"

#include <cstdio>
#include <string>
#include <vector>

#include "zexif/document_walk.h"
#include "zexif/marker_names.h"
#include "zexif/tag_json.h"
#include "zexif.h"

namespace {

std::string MarkerCode(int32_t code)
{
    char text[8];
    std::snprintf(text, sizeof text, "%04X", static_cast<unsigned>(0xff00 | (code & 0xff)));
    return text;
}

class JsonDump : public DocumentVisitor {
public:
    explicit JsonDump(JsonWriter &json) : m_json(json) {}

    void BeginMarker(const MarkerInfo &marker) override
    {
        m_json.BeginObject().Key("code");
        if (marker.code == 0) {
            m_json.Null().Key("name").String("scan data");
        } else {
            m_json.String(MarkerCode(marker.code)).Key("name").String(MarkerName(marker.code));
        }
        if (marker.hasPayload) m_json.Key("offset").Integer(marker.offset).Key("size").Integer(marker.size);
        if (marker.hasSignature) {
            const unsigned char *signature = reinterpret_cast<const unsigned char *>(marker.signature.data());
            m_json.Key("signature").String(signature, marker.signature.size());
        }
    }

    void EndMarker() override
    {
        CloseTiff();
        m_json.EndObject();
    }

    void TiffHeader(bool bigEndian) override
    {
        OpenTiff();
        m_json.Key("byteOrder").String(bigEndian ? "MM" : "II");
    }

    void BeginIfd(const IfdInfo &ifd) override
    {
        if (m_tagDepth > 0) {
            m_json.Key("subIfd");
        } else {
            OpenTiff();
            if (!m_inIfdList) m_json.Key("ifds").BeginArray();
            m_inIfdList = true;
        }
        m_json.BeginObject().Key("ifd").String(ifd.label).Key("name").String(ifd.name);
        if (ifd.entries >= 0) m_json.Key("entries").Integer(ifd.entries);
        m_json.Key("nextIfd").Integer(ifd.next).Key("tags").BeginArray();
        m_labels.push_back(ifd.label);
    }

    void EndIfd() override
    {
        m_labels.pop_back();
        m_json.EndArray().EndObject();
    }

    void BeginTag(const TagView &tag) override
    {
        ++m_tagDepth;
        m_json.BeginObject();
        WriteTagMembers(m_json, tag, m_labels.back());
    }

    void EndTag() override
    {
        --m_tagDepth;
        m_json.EndObject();
    }

    void CloseTiff()
    {
        if (m_inIfdList) m_json.EndArray();
        if (m_inTiff) m_json.EndObject();
        m_inTiff = m_inIfdList = false;
    }

private:
    void OpenTiff()
    {
        if (m_inTiff) return;
        m_json.Key("tiff").BeginObject();
        m_inTiff = true;
    }

    JsonWriter &m_json;
    std::vector<std::string> m_labels;
    int m_tagDepth = 0;
    bool m_inTiff = false;
    bool m_inIfdList = false;
};

}  // namespace

void WriteDocumentMembers(JsonWriter &json, const DumpedFile &file)
{
    const bool jpeg = file.Format() == FORMAT_JPEG;
    json.Key("format").String(FormatName(file.Format()));
    JsonDump dump(json);
    if (jpeg) json.Key("markers").BeginArray();
    file.Walk(dump);
    if (jpeg) json.EndArray();
    dump.CloseTiff();
}
