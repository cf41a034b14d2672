#pragma once

#include <cstdint>
#include <deque>

#include "OrvLibrary/host/impl/http/HttpLimits_p.h"

/// Watches a transfer that nobody else watches: tells when a whole stretch of time brought less than the
/// lowest speed allowed.
class SpeedGuard
{
public:
    using TimePoint = HttpLimits::Clock::time_point;

    SpeedGuard(const HttpLimits& limits, TimePoint start);

    void received(std::int64_t bytes) { mReceived += bytes; }
    /// To be called all the time. Whether the last stretch was too slow.
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
