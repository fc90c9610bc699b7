#include "zexif/file_report.h"

#include <cstdio>

#include "zexif/command.h"

FileReport::FileReport(bool json) : m_json(json)
{
    if (m_json) m_writer.BeginArray();
}

void FileReport::BeginText()
{
    if (m_textStarted) std::printf("\n");
    m_textStarted = true;
}

JsonWriter &FileReport::BeginObject(const std::string &path)
{
    return m_writer.BeginObject().Key("file").String(path);
}

void FileReport::EndObject()
{
    m_writer.EndObject();
}

void FileReport::Fail(const std::string &path, const std::string &message)
{
    std::fprintf(stderr, "zexif: %s\n", message.c_str());
    m_failed = true;
    if (m_json) BeginObject(path).Key("error").String(message).EndObject();
}

int FileReport::Finish()
{
    if (m_json) std::printf("%s\n", m_writer.EndArray().Text().c_str());
    return m_failed ? EXIT_FAILED : EXIT_OK;
}
