#include "OrvLibrary/host/impl/http/AddressGuard_p.h"

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace {

class AddressGuardTest : public testing::Test
{
protected:
    static HttpLimits limitsWith(HttpLimits::Clock::time_point& now)
    {
        HttpLimits limits;
        limits.now = [&now] { return now; };
        return limits;
    }
    void fail(int times)
    {
        for (int i = 0; i < times; ++i)
            guard.unanswered("h:80");
    }

    HttpLimits::Clock::time_point now{};
    AddressGuard guard{limitsWith(now)};
};

} // namespace

TEST_F(AddressGuardTest, threeRequestsInARowWithoutAnswerCloseAnAddress)
{
    fail(2);
    EXPECT_TRUE(guard.isOpen("h:80"));
    fail(1);
    EXPECT_FALSE(guard.isOpen("h:80"));
    EXPECT_TRUE(guard.isOpen("h:81"));
}

TEST_F(AddressGuardTest, answerInBetweenStartsTheCountAnew)
{
    fail(2);
    guard.answered("h:80");
    fail(2);
    EXPECT_TRUE(guard.isOpen("h:80"));
}

TEST_F(AddressGuardTest, addressIsTriedAgainAfterAMinute)
{
    fail(3);
    now += 59999ms;
    EXPECT_FALSE(guard.isOpen("h:80"));
    now += 1ms;
    EXPECT_TRUE(guard.isOpen("h:80"));
}

TEST_F(AddressGuardTest, oneMoreSilenceClosesItAgain)
{
    fail(3);
    now += 60s;
    fail(1);
    EXPECT_FALSE(guard.isOpen("h:80"));
    now += 60s;
    guard.answered("h:80");
    fail(1);
    EXPECT_TRUE(guard.isOpen("h:80"));
}

TEST_F(AddressGuardTest, resetForgetsEverything)
{
    fail(3);
    guard.reset();
    EXPECT_TRUE(guard.isOpen("h:80"));
}
