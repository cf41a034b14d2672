#pragma once

#include <cstdint>

#include "OrvLibrary/host/Curl.h"
#include "OrvLibrary/host/impl/http/HttpLimits_p.h"

/// Calls a progress function at the promised rate: for every step of body, and once a silence has lasted, at
/// short intervals. The first call therefore comes with the first step, not at the start: a caller that
/// counts calls without new bytes must not count a transfer whose first byte comes soon.
class ProgressPacer
{
public:
    using TimePoint = HttpLimits::Clock::time_point;

    /// @param progress may be null: then nothing is called and nothing aborts
    ProgressPacer(const HttpLimits& limits, Curl::ProgressFunction progress, void* context, TimePoint start);

    /// Gives a function to a transfer that went on without one: calls it for the steps that have come, and
    /// counts a silence from `now` on. False once the function aborted.
    bool attach(Curl::ProgressFunction progress, void* context, TimePoint now);
    /// So many bytes of the body are there already: the counts start with them.
    void startAt(std::int64_t bytes) { mReceived = bytes; }
    /// The body's length as announced, in bytes; 0 when it is not known.
    void setTotal(std::int64_t bytes) { mTotal = bytes; }
    /// Takes note of body bytes. False once the function aborted.
    bool received(std::int64_t bytes, TimePoint now);
    /// To be called all the time. False once the function aborted.
    bool tick(TimePoint now);
    /// The end of a body that arrived whole: makes the last call, unless it was made. False once the function
    /// aborted.
    bool finish(TimePoint now);

    bool wanted() const { return mProgress != nullptr; }
    bool aborted() const { return mAborted; }
    /// Whether the function was told of any byte.
    bool toldOfBytes() const { return mTold > 0; }

private:
    bool call(std::int64_t count, TimePoint now);
    bool callForSteps(std::int64_t from, TimePoint now);

    const HttpLimits& mLimits;
    Curl::ProgressFunction mProgress;
    void* mContext;
    std::int64_t mTotal = 0;
    std::int64_t mReceived = 0;
    /// Count of the last call; -1 before the first.
    std::int64_t mTold = -1;
    TimePoint mLastByte;
    TimePoint mLastCall;
    /// When the next call of a silence is due.
    TimePoint mNextCall;
    bool mAborted = false;
};
