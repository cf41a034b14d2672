#pragma once

#include "OrvLibrary/host/TimeUtils.h"

namespace test {

/// The times of day before and after some work.
struct ClockSpan
{
    boost::posix_time::ptime before;
    boost::posix_time::ptime after;
};

/// Does `work` between two looks at the clock. If the clock was set back meanwhile, the times say nothing,
/// and it does `work` once more.
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
