#include "OrvLibrary/host/impl/http/CancelQuestion_p.h"

#include <utility>

namespace {

thread_local Curl::CancelQuestion questionOfThread = nullptr;

} // namespace

namespace CancelQuestion {

Curl::CancelQuestion set(Curl::CancelQuestion question)
{
    return std::exchange(questionOfThread, question);
}

bool isCancelled()
{
    return questionOfThread && questionOfThread();
}

} // namespace CancelQuestion
