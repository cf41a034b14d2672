#pragma once

#include <cstdint>

#include "OrvLibrary/host/Curl.h"
#include "OrvLibrary/host/impl/http/HttpLimits_p.h"

/// Calls a progress function at the promised rate: for every `HttpLimits::progressStep` bytes, and at short
/// intervals when nothing arrives. The first call comes with the first step, not at the start, because a
/// caller may count the calls that bring no new bytes.
class ProgressPacer
{
public:
    using TimePoint = HttpLimits::Clock::time_point;

    /// @param progress may be null; then nothing is called and nothing cancels the transfer
    ProgressPacer(const HttpLimits& limits, Curl::ProgressFunction progress, void* context, TimePoint start);

    /// Sets the function of a transfer that has run without one. Calls it for the steps so far; a silence
    /// counts from `now`. False if the function cancelled.
    bool attach(Curl::ProgressFunction progress, void* context, TimePoint now);
    /// The first `bytes` bytes are there already; counting starts there.
    void startAt(std::int64_t bytes) { mReceived = bytes; }
    /// The announced length of the body in bytes; 0 if unknown.
    void setTotal(std::int64_t bytes) { mTotal = bytes; }
    /// Called for body bytes that arrived. False if the function cancelled.
    bool received(std::int64_t bytes, TimePoint now);
    /// Called at each step of the transfer loop. False if the function cancelled.
    bool tick(TimePoint now);
    /// Called when the body is complete. Makes a last call if the function does not know the final count.
    /// False if the function cancelled.
    bool callAtEnd(TimePoint now);

    bool wanted() const { return mProgress != nullptr; }
    bool aborted() const { return mAborted; }
    /// Whether the function was called with at least one byte.
    bool toldOfBytes() const { return mTold > 0; }

private:
    bool call(std::int64_t count, TimePoint now);
    bool callForSteps(std::int64_t from, TimePoint now);

    const HttpLimits& mLimits;
    Curl::ProgressFunction mProgress = nullptr;
    void* mContext = nullptr;
    std::int64_t mTotal = 0;
    std::int64_t mReceived = 0;
    /// The count of the last call; -1 before the first call.
    std::int64_t mTold = -1;
    TimePoint mLastCall;
    /// When the next call is due if no byte arrives.
    TimePoint mNextCall;
    bool mAborted = false;
};
