#include "zexif/output.h"

#include <cstdlib>

namespace {

thread_local FILE *t_out = nullptr;
thread_local FILE *t_err = nullptr;

std::string Collect(FILE *&stream, char *&text, size_t &size)
{
    if (stream != nullptr) std::fclose(stream);
    stream = nullptr;
    std::string collected = text != nullptr ? std::string(text, size) : std::string();
    std::free(text);
    text = nullptr;
    return collected;
}

}  // namespace

FILE *Out()
{
    return t_out != nullptr ? t_out : stdout;
}

FILE *Err()
{
    return t_err != nullptr ? t_err : stderr;
}

// A stream that can't be made leaves the thread writing straight through.
CapturedOutput::CapturedOutput()
    : m_out(open_memstream(&m_outText, &m_outSize)), m_err(open_memstream(&m_errText, &m_errSize))
{
    t_out = m_out;
    t_err = m_err;
}

CapturedOutput::~CapturedOutput()
{
    std::string out, err;
    Release(&out, &err);
}

void CapturedOutput::Release(std::string *out, std::string *err)
{
    t_out = nullptr;
    t_err = nullptr;
    *out = Collect(m_out, m_outText, m_outSize);
    *err = Collect(m_err, m_errText, m_errSize);
}
