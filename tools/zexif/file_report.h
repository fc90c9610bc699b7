#ifndef ZEXIF_TOOL_FILE_REPORT_H
#define ZEXIF_TOOL_FILE_REPORT_H

#include <string>

#include "zexif/json_writer.h"

// The output of a command that reads several files. As text, each file's
// part is printed as it comes, a blank line between files. As JSON, the run
// prints one array with an object per file, in the order given, each with
// its "file"; a file that could not be handled is {"file", "error"} there.
// Either way a failure is also one line on stderr and makes the exit
// status 1, and the other files are still handled.
class FileReport {
public:
    explicit FileReport(bool json);

    bool IsJson() const { return m_json; }
    // Text: the blank line in front of every file's part but the first.
    void BeginText();
    // JSON: begins the file's object, its "file" member written.
    JsonWriter &BeginObject(const std::string &path);
    void EndObject();
    // message goes to stderr behind "zexif: ", and into the JSON as "error".
    void Fail(const std::string &path, const std::string &message);
    // Prints the JSON array. Returns the exit status.
    int Finish();

private:
    bool m_json;
    bool m_failed = false;
    bool m_textStarted = false;
    JsonWriter m_writer;
};

#endif
