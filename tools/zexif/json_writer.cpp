#include "zexif/json_writer.h"

#include <charconv>
#include <cmath>
#include <cstdio>

namespace {

bool IsContinuation(unsigned char c)
{
    return (c & 0xc0) == 0x80;
}

// The length of the well-formed UTF-8 sequence at bytes, or 0: no overlong
// forms, no surrogates, nothing above U+10FFFF.
size_t Utf8SequenceLength(const unsigned char *bytes, size_t size)
{
    const unsigned char c = bytes[0];
    size_t length;
    unsigned char low = 0x80, high = 0xbf;
    if (c >= 0xc2 && c <= 0xdf) {
        length = 2;
    } else if (c >= 0xe0 && c <= 0xef) {
        length = 3;
        if (c == 0xe0) low = 0xa0;
        if (c == 0xed) high = 0x9f;
    } else if (c >= 0xf0 && c <= 0xf4) {
        length = 4;
        if (c == 0xf0) low = 0x90;
        if (c == 0xf4) high = 0x8f;
    } else {
        return 0;
    }
    if (size < length || bytes[1] < low || bytes[1] > high) return 0;
    for (size_t i = 2; i < length; ++i) {
        if (!IsContinuation(bytes[i])) return 0;
    }
    return length;
}

void AppendEscapedAscii(unsigned char c, std::string *out)
{
    switch (c) {
    case '"': *out += "\\\""; return;
    case '\\': *out += "\\\\"; return;
    case '\n': *out += "\\n"; return;
    case '\r': *out += "\\r"; return;
    case '\t': *out += "\\t"; return;
    default: break;
    }
    if (c >= 0x20 && c < 0x7f) {
        *out += static_cast<char>(c);
        return;
    }
    char escape[8];
    std::snprintf(escape, sizeof escape, "\\u%04x", c);
    *out += escape;
}

}  // namespace

std::string JsonQuoted(const unsigned char *bytes, size_t size)
{
    std::string out = "\"";
    for (size_t i = 0; i < size;) {
        const size_t sequence = bytes[i] < 0x80 ? 0 : Utf8SequenceLength(bytes + i, size - i);
        if (sequence == 0) {
            AppendEscapedAscii(bytes[i++], &out);
            continue;
        }
        out.append(reinterpret_cast<const char *>(bytes + i), sequence);
        i += sequence;
    }
    return out + "\"";
}

void JsonWriter::BeforeValue()
{
    if (m_afterKey) {
        m_afterKey = false;
        return;
    }
    if (m_hasItems.empty()) return;
    if (m_hasItems.back()) m_text += ',';
    m_hasItems.back() = true;
}

JsonWriter &JsonWriter::Open(char bracket)
{
    BeforeValue();
    m_text += bracket;
    m_hasItems.push_back(false);
    return *this;
}

JsonWriter &JsonWriter::Close(char bracket)
{
    m_text += bracket;
    m_hasItems.pop_back();
    return *this;
}

JsonWriter &JsonWriter::BeginObject()
{
    return Open('{');
}

JsonWriter &JsonWriter::EndObject()
{
    return Close('}');
}

JsonWriter &JsonWriter::BeginArray()
{
    return Open('[');
}

JsonWriter &JsonWriter::EndArray()
{
    return Close(']');
}

JsonWriter &JsonWriter::Key(const std::string &key)
{
    String(key);
    m_text += ':';
    m_afterKey = true;
    return *this;
}

JsonWriter &JsonWriter::String(const std::string &text)
{
    return String(reinterpret_cast<const unsigned char *>(text.data()), text.size());
}

JsonWriter &JsonWriter::String(const unsigned char *bytes, size_t size)
{
    BeforeValue();
    m_text += JsonQuoted(bytes, size);
    return *this;
}

JsonWriter &JsonWriter::Integer(int64_t number)
{
    BeforeValue();
    m_text += std::to_string(number);
    return *this;
}

JsonWriter &JsonWriter::Real(double number)
{
    if (!std::isfinite(number)) return Null();
    BeforeValue();
    char text[32];
    const std::to_chars_result end = std::to_chars(text, text + sizeof text, number);
    m_text.append(text, end.ptr);
    return *this;
}

JsonWriter &JsonWriter::Bool(bool value)
{
    BeforeValue();
    m_text += value ? "true" : "false";
    return *this;
}

JsonWriter &JsonWriter::Null()
{
    BeforeValue();
    m_text += "null";
    return *this;
}
