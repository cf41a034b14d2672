#pragma once

#include <cstdint>
#include <deque>

#include "OrvLibrary/host/impl/http/HttpLimits_p.h"

/// Watches the speed of a transfer without a progress function. Such a transfer ends if it stays below
/// `HttpLimits::lowestSpeed` for the whole of `HttpLimits::slowTime`.
class SpeedGuard
{
public:
    using TimePoint = HttpLimits::Clock::time_point;

    SpeedGuard(const HttpLimits& limits, TimePoint start);

    void received(std::int64_t bytes) { mReceived += bytes; }
    /// Called at each step of the transfer loop. True if the transfer must end.
    bool tooSlow(TimePoint now);

private:
    struct Sample
    {
        TimePoint time;
        std::int64_t received;
    };

    const HttpLimits& mLimits;
    std::int64_t mReceived = 0;
    /// About thirty samples over `slowTime`, oldest first.
    std::deque<Sample> mSamples;
};
