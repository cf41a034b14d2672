#include "tests/orv-browser/EventWatch.h"

#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

namespace test {

namespace {

EventWatch* gCurrent = nullptr;

} // namespace

EventWatch::EventWatch()
{
    gCurrent = this;
}

EventWatch::~EventWatch()
{
    gCurrent = nullptr;
}

EventWatch* EventWatch::current()
{
    return gCurrent;
}

double EventWatch::waitForProcessor()
{
    static const thread_local int file = open("/proc/thread-self/schedstat", O_RDONLY | O_CLOEXEC);
    char text[100] = "";
    if (pread(file, text, sizeof text - 1, 0) <= 0)
        return 0;
    // The file has the time running, then the time waiting, in nanoseconds.
    char* waited = nullptr;
    std::strtoll(text, &waited, 10);
    return static_cast<double>(std::strtoll(waited, nullptr, 10)) / 1e6;
}

void EventWatch::note(double milliseconds, const std::string& name)
{
    if (milliseconds <= mLongest)
        return;
    mLongest = milliseconds;
    mLongestName = name;
}

} // namespace test
