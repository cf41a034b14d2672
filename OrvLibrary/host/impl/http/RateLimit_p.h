#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>

#include "OrvLibrary/host/impl/http/HttpLimits_p.h"

/// Limits how many bytes per second all transfers of the process receive together. Each byte takes its share
/// of time, and its transfer waits this long before it uses the byte. May be used from any thread.
class RateLimit
{
public:
    using TimePoint = HttpLimits::Clock::time_point;

    /// The limit that all transfers share. At first there is none.
    static RateLimit& ofProcess();

    /// @param bytesPerSecond 0 or less removes the limit
    void set(std::int64_t bytesPerSecond);
    /// 0 if there is no limit.
    std::int64_t bytesPerSecond() const { return mBytesPerSecond; }

    /// Counts bytes and waits until their time is over. The bytes that arrive meanwhile stay with the system,
    /// which slows the server down. Other transfers of the thread wait, too: there is no time for their bytes
    /// either.
    /// @param now receives the end of the waiting
    /// @return false after a cancel
    bool keep(std::int64_t bytes, TimePoint& now);
    void received(std::int64_t bytes, TimePoint now);
    /// How long to wait until the time of all bytes received is over.
    std::chrono::nanoseconds pause(TimePoint now);
    /// How many bytes a transfer may receive at once: those of a tenth of a second, at most `largest`.
    std::int64_t piece(std::int64_t largest) const;

private:
    std::atomic<std::int64_t> mBytesPerSecond{0};
    std::mutex mMutex;
    TimePoint mFreeAt{};
};
