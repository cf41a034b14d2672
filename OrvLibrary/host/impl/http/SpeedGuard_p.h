#pragma once

#include <cstdint>
#include <deque>

#include "OrvLibrary/host/impl/http/HttpLimits_p.h"

/// Watches the speed of a transfer that has no progress function. It says when the transfer was slower than
/// the lowest allowed speed for a whole stretch of time.
class SpeedGuard
{
public:
    using TimePoint = HttpLimits::Clock::time_point;

    SpeedGuard(const HttpLimits& limits, TimePoint start);

    void received(std::int64_t bytes) { mReceived += bytes; }
    /// To be called at each step of the transfer loop. Whether the last stretch was too slow.
    bool tooSlow(TimePoint now);

private:
    struct Sample
    {
        TimePoint time;
        std::int64_t received;
    };

    const HttpLimits& mLimits;
    std::int64_t mReceived = 0;
    /// About thirty samples of the last stretch, the oldest first.
    std::deque<Sample> mSamples;
};
