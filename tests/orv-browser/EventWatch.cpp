#include "tests/orv-browser/EventWatch.h"

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

void EventWatch::note(double milliseconds, const std::string& name)
{
    if (milliseconds <= mLongest)
        return;
    mLongest = milliseconds;
    mLongestName = name;
}

} // namespace test
