// How slow a transfer may become.
#include "OrvLibrary/host/impl/http/SpeedGuard_p.h"

#include <chrono>

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace {

class SpeedGuardTest : public testing::Test
{
protected:
    const HttpLimits limits;
    const HttpLimits::Clock::time_point start = HttpLimits::Clock::now();
    SpeedGuard guard{limits, start};
};

} // namespace

TEST_F(SpeedGuardTest, thirtySecondsBelowAByteASecondAreTooSlow)
{
    EXPECT_FALSE(guard.tooSlow(start + 29900ms));
    EXPECT_TRUE(guard.tooSlow(start + 30s));
}

TEST_F(SpeedGuardTest, oneByteForEachSecondIsJustEnough)
{
    guard.received(29);
    EXPECT_TRUE(guard.tooSlow(start + 30s));
    guard.received(1);
    EXPECT_FALSE(guard.tooSlow(start + 30s));
}

TEST_F(SpeedGuardTest, silenceAfterManyBytesIsNoticedInTime)
{
    guard.received(1'000'000);
    auto time = 0ms;
    while (!guard.tooSlow(start + time) && time < 100s)
        time += 10ms;
    EXPECT_GE(time, 30s);
    EXPECT_LE(time, 32s);
}

TEST_F(SpeedGuardTest, silenceIsNoticedEvenIfItAsksSeldom)
{
    guard.received(1'000'000);
    EXPECT_FALSE(guard.tooSlow(start + 10s));
    EXPECT_TRUE(guard.tooSlow(start + 40s));
}

TEST_F(SpeedGuardTest, onlyTheLastStretchCounts)
{
    EXPECT_FALSE(guard.tooSlow(start + 10s));
    guard.received(1'000'000);
    EXPECT_FALSE(guard.tooSlow(start + 20s));
    EXPECT_FALSE(guard.tooSlow(start + 30s));
    EXPECT_TRUE(guard.tooSlow(start + 100s));
}

TEST_F(SpeedGuardTest, byteASecondIsEnough)
{
    for (auto time = 100ms; time < 120s; time += 100ms) {
        if (time % 1000ms == 0ms)
            guard.received(2);
        EXPECT_FALSE(guard.tooSlow(start + time)) << time.count();
    }
}
