#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>

#include "OrvLibrary/host/impl/http/HttpLimits_p.h"

/// Bounds the bytes that all transfers of the process receive in a second. Each byte received puts off the
/// time from which more may be read. May be used from any thread.
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
    /// How long nothing may be read yet; 0 when something may be.
    std::chrono::nanoseconds pause(TimePoint now);

private:
    std::atomic<std::int64_t> mBytesPerSecond{0};
    std::mutex mMutex;
    TimePoint mFreeAt{};
};
