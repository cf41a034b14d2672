#include "OrvHost/update/Retries.h"

#include <algorithm>
#include <random>
#include <thread>

namespace OrvHost {

namespace {

using std::chrono::milliseconds;

/// A cancel takes effect within this time.
constexpr milliseconds kStep{50};
constexpr int kMostFailuresInRow = 3;

/// Between half of the time and one and a half of it, at random.
milliseconds jittered(milliseconds time)
{
    static thread_local std::minstd_rand generator{std::random_device{}()};
    std::uniform_real_distribution<double> factor(0.5, 1.5);
    return milliseconds(
        static_cast<milliseconds::rep>(static_cast<double>(time.count()) * factor(generator)));
}

} // namespace

bool Retries::shouldTryAgain(std::optional<std::chrono::seconds> retryAfter)
{
    const bool isTooLong = retryAfter && *retryAfter > mSettings.longestRetryAfter;
    if (mTries >= mSettings.retries || mFailuresInRow >= kMostFailuresInRow || isTooLong) {
        ++mFailuresInRow;
        return false;
    }
    const milliseconds growing = mSettings.firstPause * (1 << std::min(mTries, 6));
    ++mTries;
    return pause(retryAfter ? milliseconds(*retryAfter) : jittered(growing));
}

/// @return false after a cancel
bool Retries::pause(milliseconds time) const
{
    const auto end = std::chrono::steady_clock::now() + time;
    while (!isCancelled()) {
        const auto left = end - std::chrono::steady_clock::now();
        if (left <= left.zero())
            return true;
        std::this_thread::sleep_for(std::min<std::chrono::steady_clock::duration>(left, kStep));
    }
    return false;
}

} // namespace OrvHost
