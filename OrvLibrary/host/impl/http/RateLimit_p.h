#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>

#include "OrvLibrary/host/impl/http/HttpLimits_p.h"

/// Bounds the bytes that all transfers of the process receive in a second. Each byte received takes its share
/// of time, which its transfer waits for before it uses the byte. May be used from any thread.
class RateLimit
{
public:
    using TimePoint = HttpLimits::Clock::time_point;

    /// The one that all transfers share. It starts without a bound.
    static RateLimit& ofProcess();

    /// @param bytesPerSecond 0 or less for no bound
    void set(std::int64_t bytesPerSecond);
    /// 0 when there is no bound.
    std::int64_t bytesPerSecond() const { return mBytesPerSecond; }

    void received(std::int64_t bytes, TimePoint now);
    /// How long the bytes received until now still need; 0 when their time is over.
    std::chrono::nanoseconds pause(TimePoint now);
    /// How many bytes a transfer may receive at once: what a tenth of a second allows, and at most `largest`.
    std::int64_t piece(std::int64_t largest) const;

private:
    std::atomic<std::int64_t> mBytesPerSecond{0};
    std::mutex mMutex;
    TimePoint mFreeAt{};
};
