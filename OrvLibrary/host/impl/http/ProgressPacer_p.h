#pragma once

#include <cstdint>

#include "OrvLibrary/host/Curl.h"
#include "OrvLibrary/host/impl/http/HttpLimits_p.h"

/// Calls a progress function at the promised rate: for every step of the body, and at short intervals once a
/// silence has lasted a while. The first call comes with the first step, not at the start, because a caller
/// may count the calls that bring no new bytes.
class ProgressPacer
{
public:
    using TimePoint = HttpLimits::Clock::time_point;

    /// @param progress may be null: then nothing is called, and nothing aborts the transfer
    ProgressPacer(const HttpLimits& limits, Curl::ProgressFunction progress, void* context, TimePoint start);

    /// Gives a function to a transfer that went on without one: calls it for the steps that have come, and
    /// counts a silence from `now` on. False once the function aborted.
    bool attach(Curl::ProgressFunction progress, void* context, TimePoint now);
    /// Lets the counts start at `bytes`, because so many bytes are there already.
    void startAt(std::int64_t bytes) { mReceived = bytes; }
    /// The body's length as announced, in bytes; 0 when it is not known.
    void setTotal(std::int64_t bytes) { mTotal = bytes; }
    /// Takes note of body bytes. False once the function aborted.
    bool received(std::int64_t bytes, TimePoint now);
    /// To be called at each step of the transfer loop. False once the function aborted.
    bool tick(TimePoint now);
    /// To be called when a body has arrived whole. Makes the last call unless the function knows the count
    /// already. False once the function aborted.
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
    TimePoint mLastCall;
    /// When the next call of a silence is due.
    TimePoint mNextCall;
    bool mAborted = false;
};
