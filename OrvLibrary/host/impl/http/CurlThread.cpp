#include "OrvLibrary/host/impl/http/CurlThread_p.h"

#include <new>

namespace {

thread_local Curl::Answer lastAnswer;

} // namespace

CurlThread& CurlThread::get()
{
    static thread_local CurlThread thread;
    return thread;
}

namespace LastAnswer {

void clear()
{
    lastAnswer = {};
}

void note(const HttpAnswer& answer, const std::string& url)
{
    lastAnswer = {answer.status, answer.headerText, answer.errorText, url};
}

void noteReason(const std::string& reason) noexcept
try {
    lastAnswer.reason = reason;
} catch (const std::bad_alloc&) {
}

const Curl::Answer& get()
{
    return lastAnswer;
}

} // namespace LastAnswer
