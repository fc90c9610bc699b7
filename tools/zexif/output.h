#ifndef ZEXIF_TOOL_OUTPUT_H
#define ZEXIF_TOOL_OUTPUT_H

#include <cstdio>
#include <string>

// Where a command writes what it has to say about the file it is working on:
// standard output and standard error, or the buffers of that file while the
// runner of many files holds its output back to print the files in order.
FILE *Out();
FILE *Err();

// Catches the calling thread's Out() and Err() until Release.
class CapturedOutput {
public:
    CapturedOutput();
    ~CapturedOutput();
    CapturedOutput(const CapturedOutput &) = delete;
    CapturedOutput &operator=(const CapturedOutput &) = delete;

    // What was written, the thread's streams given back.
    void Release(std::string *out, std::string *err);

private:
    char *m_outText = nullptr, *m_errText = nullptr;
    size_t m_outSize = 0, m_errSize = 0;
    FILE *m_out = nullptr, *m_err = nullptr;
};

#endif
