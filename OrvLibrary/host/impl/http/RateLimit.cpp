#include "OrvLibrary/host/impl/http/RateLimit_p.h"

#include <algorithm>
#include <thread>

#include "OrvLibrary/host/impl/http/CancelQuestion_p.h"

RateLimit& RateLimit::ofProcess()
{
    // Never destroyed: a worker thread may still use it when the process ends.
    static RateLimit* const limit = new RateLimit;
    return *limit;
}

void RateLimit::set(std::int64_t bytesPerSecond)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mBytesPerSecond = std::max<std::int64_t>(bytesPerSecond, 0);
    mFreeAt = TimePoint();
}

bool RateLimit::keep(std::int64_t bytes, TimePoint& now)
{
    received(bytes, now);
    for (auto rest = pause(now); rest.count() > 0; rest = pause(now)) {
        if (CancelQuestion::isCancelled())
            return false;
        std::this_thread::sleep_for(std::min<std::chrono::nanoseconds>(rest, HttpLimits::kLongestSleep));
        now = HttpLimits::Clock::now();
    }
    return true;
}

void RateLimit::received(std::int64_t bytes, TimePoint now)
{
    const std::int64_t rate = mBytesPerSecond;
    if (rate == 0)
        return;
    const std::lock_guard<std::mutex> lock(mMutex);
    const std::chrono::duration<double> time(static_cast<double>(bytes) / static_cast<double>(rate));
    mFreeAt = std::max(mFreeAt, now) + std::chrono::duration_cast<TimePoint::duration>(time);
}

std::chrono::nanoseconds RateLimit::pause(TimePoint now)
{
    if (mBytesPerSecond == 0)
        return std::chrono::nanoseconds(0);
    const std::lock_guard<std::mutex> lock(mMutex);
    return std::max<std::chrono::nanoseconds>(mFreeAt - now, std::chrono::nanoseconds(0));
}

std::int64_t RateLimit::piece(std::int64_t largest) const
{
    const std::int64_t rate = mBytesPerSecond;
    return rate == 0 ? largest : std::clamp<std::int64_t>(rate / 10, 1, largest);
}
