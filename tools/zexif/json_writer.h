#ifndef ZEXIF_TOOL_JSON_WRITER_H
#define ZEXIF_TOOL_JSON_WRITER_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// Builds one JSON text, compact, with the commas put in for the caller.
// Strings are raw bytes: what is valid UTF-8 goes through as it is, any
// other byte is written as the character of that code (\u00XX), so the text
// is always valid JSON whatever a file held.
class JsonWriter {
public:
    JsonWriter &BeginObject();
    JsonWriter &EndObject();
    JsonWriter &BeginArray();
    JsonWriter &EndArray();
    JsonWriter &Key(const std::string &key);
    JsonWriter &String(const std::string &text);
    JsonWriter &String(const unsigned char *bytes, size_t size);
    JsonWriter &Integer(int64_t number);
    // The shortest text that reads back as the same number; one that isn't
    // finite has no JSON form and is written as null.
    JsonWriter &Real(double number);
    JsonWriter &Bool(bool value);
    JsonWriter &Null();

    const std::string &Text() const { return m_text; }

private:
    JsonWriter &Open(char bracket);
    JsonWriter &Close(char bracket);
    void BeforeValue();

    std::string m_text;
    std::vector<bool> m_hasItems;
    bool m_afterKey = false;
};

// bytes as a JSON string literal, quotes included.
std::string JsonQuoted(const unsigned char *bytes, size_t size);

#endif
