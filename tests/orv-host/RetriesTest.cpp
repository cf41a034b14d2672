#include "OrvHost/update/Retries.h"

#include <gtest/gtest.h>

using namespace std::chrono_literals;
using OrvHost::Retries;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

using Clock = std::chrono::steady_clock;

Retries::Settings settings(int retries, milliseconds firstPause = 0ms)
{
    Retries::Settings all;
    all.retries = retries;
    all.firstPause = firstPause;
    return all;
}

/// The number of times that a failing request is sent again, at most 20.
int repetitions(Retries& retries)
{
    retries.begin();
    int count = 0;
    while (count < 20 && retries.shouldTryAgain({}))
        ++count;
    return count;
}

/// The shortest pause before a repetition, of so many requests that a busy machine has no effect.
/// @param enough no further request is made after a pause that is shorter
milliseconds shortestPause(int repetition, milliseconds firstPause, milliseconds enough)
{
    Clock::duration shortest = 1h;
    for (int request = 0; request < 40 && shortest >= enough; ++request) {
        Retries retries(settings(repetition, firstPause));
        for (int before = 1; before < repetition; ++before)
            retries.shouldTryAgain({});
        const Clock::time_point start = Clock::now();
        EXPECT_TRUE(retries.shouldTryAgain({}));
        shortest = std::min(shortest, Clock::now() - start);
    }
    return std::chrono::duration_cast<milliseconds>(shortest);
}

} // namespace

TEST(Retries, requestIsRepeatedAsOftenAsAllowed)
{
    for (const int count : {0, 1, 3}) {
        Retries retries(settings(count));
        EXPECT_EQ(repetitions(retries), count);
        EXPECT_EQ(repetitions(retries), count) << "the next request has its own tries";
    }
}

TEST(Retries, serviceThatFailedThreeRequestsIsAskedOnceUntilItSucceeds)
{
    Retries retries(settings(2));
    for (const int expected : {2, 2, 2, 0, 0})
        EXPECT_EQ(repetitions(retries), expected);
    retries.succeeded();
    for (const int expected : {2, 2, 2, 0})
        EXPECT_EQ(repetitions(retries), expected);
}

TEST(Retries, serviceMayAskForAPauseUpToALimit)
{
    Retries::Settings limited = settings(3, 3s);
    limited.longestRetryAfter = 1s;
    EXPECT_FALSE(Retries(limited).shouldTryAgain(2s));
    EXPECT_TRUE(Retries(limited).shouldTryAgain(0s));
    int questions = 0;
    limited.isCancelled = [&questions] { return ++questions == 0; };
    const Clock::time_point start = Clock::now();
    EXPECT_TRUE(Retries(limited).shouldTryAgain(1s));
    EXPECT_GE(Clock::now() - start, 1s);
    EXPECT_LE(questions, 30) << "it sleeps meanwhile";
}

TEST(Retries, pausesGrowUpToALimit)
{
    // Each pause is between half and one and a half of its length, which doubles six times.
    constexpr milliseconds kFirst = 32ms;
    const milliseconds first = shortestPause(1, kFirst, kFirst);
    EXPECT_GE(first, kFirst / 2);
    EXPECT_LT(first, kFirst);
    const milliseconds fourth = shortestPause(4, 4ms, 32ms);
    EXPECT_GE(fourth, 16ms);
    EXPECT_LT(fourth, 32ms);
    const milliseconds eighth = shortestPause(8, 1ms, 64ms);
    EXPECT_GE(eighth, 32ms);
    EXPECT_LT(eighth, 64ms);
}

TEST(Retries, cancelEndsAPause)
{
    int questions = 0;
    Retries::Settings cancelled = settings(3, 3s);
    cancelled.isCancelled = [&questions] { return ++questions == 3; };
    Retries retries(cancelled);
    EXPECT_FALSE(retries.shouldTryAgain({}));
    EXPECT_EQ(questions, 3);
}
