#include "OrvLibrary/host/impl/http/RateLimit_p.h"
#include "tests/host/http/CurlFixture.h"

using namespace std::chrono_literals;

namespace test {

namespace {

class RateLimitTest : public CurlFixture
{
protected:
    void TearDown() override { Curl::setRateLimit(0); }
};

} // namespace

TEST_F(RateLimitTest, newLimitForgetsWhatTheFormerOnePutOff)
{
    RateLimit limit;
    const auto start = HttpLimits::Clock::now();
    limit.set(10);
    limit.received(1000, start);
    EXPECT_EQ(limit.pause(start), 100s);
    limit.set(1000);
    EXPECT_EQ(limit.pause(start), 0ns);
}

TEST_F(RateLimitTest, bytesPutOffTheNextOnes)
{
    RateLimit limit;
    const auto start = HttpLimits::Clock::now();
    limit.received(1'000'000, start);
    EXPECT_EQ(limit.pause(start), 0ns);
    limit.set(1000);
    EXPECT_EQ(limit.pause(start), 0ns);
    limit.received(500, start);
    limit.received(500, start);
    EXPECT_EQ(limit.pause(start), 1s);
    EXPECT_EQ(limit.pause(start + 400ms), 600ms);
    EXPECT_EQ(limit.pause(start + 2s), 0ns);
    limit.set(-5);
    EXPECT_EQ(limit.bytesPerSecond(), 0);
    EXPECT_EQ(limit.pause(start), 0ns);
}

TEST_F(RateLimitTest, downloadsTogetherKeepToTheRate)
{
    server.on("/a", FaultReply::ok(std::string(150'000, 'x')));
    Curl::setRateLimit(1'000'000);
    const auto fetchFive = [&] {
        for (int i = 0; i < 5; ++i)
            EXPECT_TRUE(fetch(server.url("/a"))) << reason;
    };
    // What the last one took is left to whoever comes next.
    EXPECT_GE(timeOf(fetchFive), 590ms);
    EXPECT_EQ(readFile(target()).size(), 150'000u);
}

} // namespace test
