#pragma once

#include "OrvLibrary/host/TimeUtils.h"

namespace test {

/// The times of day before and after some work.
struct ClockSpan
{
    boost::posix_time::ptime before;
    boost::posix_time::ptime after;
};

/// Does `work`, and does it once more where somebody has set the clock back meanwhile: the order of its times
/// says nothing then.
template <class Work>
ClockSpan clockSpanOf(Work work)
{
    ClockSpan span;
    for (int i = 0; i == 0 || (i == 1 && span.after < span.before); ++i) {
        span.before = Library::getTimeNow();
        work();
        span.after = Library::getTimeNow();
    }
    return span;
}

} // namespace test
