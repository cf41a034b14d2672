#include <algorithm>
#include <string>
#include <vector>

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
    limit.set(1);
    limit.received(2, start);
    EXPECT_EQ(limit.pause(start), 2s);
}

TEST_F(RateLimitTest, pieceIsATenthOfASecondsShare)
{
    RateLimit limit;
    EXPECT_EQ(limit.piece(256), 256);
    limit.set(1000);
    EXPECT_EQ(limit.piece(256), 100);
    limit.set(10'000);
    EXPECT_EQ(limit.piece(256), 256);
    limit.set(1);
    EXPECT_EQ(limit.piece(256), 1);
}

TEST_F(RateLimitTest, downloadsTogetherKeepToTheRate)
{
    server.on("/a", FaultReply::ok(std::string(150'000, 'x')));
    Curl::setRateLimit(1'000'000);
    const auto fetchFive = [&] {
        for (int i = 0; i < 5; ++i)
            EXPECT_TRUE(fetch(server.url("/a"))) << reason;
    };
    EXPECT_GE(timeOf(fetchFive), 750ms);
    EXPECT_EQ(readFile(target()).size(), 150'000u);
}

TEST_F(RateLimitTest, smallFileTakesItsTimeFromTheFirstByte)
{
    server.on("/a", FaultReply::ok(std::string(50'000, 'x')));
    Curl::setRateLimit(100'000);
    EXPECT_GE(timeOf([&] { EXPECT_TRUE(fetch(server.url("/a"))) << reason; }), 500ms);
}

TEST_F(RateLimitTest, noByteComesBeforeItsTime)
{
    /// Compares the bytes received with the number that the limit allows since the start.
    struct Pace
    {
        std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
        double largestLead = 0; ///< in seconds
        int calls = 0;
    } pace;
    const auto watch = [](void* context, double, double received, double, double) {
        Pace& seen = *static_cast<Pace*>(context);
        const std::chrono::duration<double> time = std::chrono::steady_clock::now() - seen.start;
        seen.largestLead = std::max(seen.largestLead, received / 1'000'000 - time.count());
        ++seen.calls;
        return 0;
    };
    server.on("/a", FaultReply::ok(std::string(600'000, 'x')));
    Curl::setRateLimit(1'000'000);
    ASSERT_TRUE(fetch(server.url("/a"), {}, watch, &pace)) << reason;
    EXPECT_GE(pace.calls, 100);
    EXPECT_LE(pace.largestLead, 0);
}

TEST_F(RateLimitTest, bodiesFetchedAheadTogetherKeepToTheRate)
{
    FaultReply reply = FaultReply::ok(std::string(20'000, 'x'));
    reply.pauseAt(0, 10ms); // slow enough for requests ahead
    std::vector<Curl::DownloadRequest> requests;
    for (int i = 0; i < 10; ++i) {
        const std::string path = "/" + std::to_string(i);
        server.on(path, reply);
        requests.push_back({server.url(path), {}, target(std::to_string(i)), 20'000});
    }
    ASSERT_TRUE(header(requests.front().url));
    Curl::setRateLimit(200'000);
    EXPECT_GE(timeOf([&] {
                  curl.prefetchDownloads(requests);
                  for (const Curl::DownloadRequest& request : requests)
                      EXPECT_TRUE(curl.download_to_location(request.url, request.target, reason)) << reason;
              }),
              1s);
}

} // namespace test
