// The server handles only a few requests at a time and refuses the others. Requests ahead may change how long
// a run takes, but not its results.
#include <atomic>
#include <memory>
#include <thread>

#include "tests/host/http/CurlDownloadsFixture.h"

using namespace std::chrono_literals;

namespace test {

namespace {

/// How the server refuses requests over its limit.
enum class Refusal
{
    TooMany,
    Unavailable,
    Closed
};

class CurlCrowdTest : public CurlDownloadsFixture, public testing::WithParamInterface<Refusal>
{
protected:
    CurlCrowdTest() : CurlDownloadsFixture(patientLimits()) {}

    static constexpr int kCount = 60;

    /// Each request takes 15 ms. While `limit` requests are in progress, the server refuses further ones at
    /// once.
    Downloads serveAtOnce(int limit)
    {
        server.limitRequests(limit, refusal());
        const Downloads downloads = serve(kCount);
        learnLatency();
        return downloads;
    }
    static FaultReply refusal()
    {
        if (GetParam() == Refusal::Closed)
            return FaultReply::raw("").close();
        return FaultReply::status(GetParam() == Refusal::TooMany ? 429 : 503, "not now");
    }
};

} // namespace

TEST_P(CurlCrowdTest, everyHeaderRequestIsAnsweredAtLast)
{
    for (const int limit : {1, 4}) {
        const Downloads downloads = serveAtOnce(limit);
        std::vector<Curl::HeaderRequest> headers;
        for (const auto& download : downloads)
            headers.push_back({download.url, {}});
        curl.prefetchHeaders(headers);
        for (const auto& request : headers) {
            ASSERT_TRUE(header(request.url)) << curl.lastAnswer().reason;
            EXPECT_EQ(status, 200) << request.url;
        }
        EXPECT_GT(server.refusedCount(), 0);
        EXPECT_LE(server.refusedCount(), 2 * 16) << "nothing is sent ahead after the first refusals";
    }
}

TEST_P(CurlCrowdTest, everyBodyArrivesAtLast)
{
    for (const int limit : {1, 4}) {
        const Downloads downloads = serveAtOnce(limit);
        curl.prefetchDownloads(downloads);
        for (int i = 0; i < kCount; ++i) {
            ASSERT_TRUE(get(downloads[static_cast<std::size_t>(i)])) << i << ": " << reason;
            EXPECT_EQ(readFile(downloads[static_cast<std::size_t>(i)].target), bodyOf(i));
        }
        EXPECT_GT(server.refusedCount(), 0);
        EXPECT_LE(server.refusedCount(), 2 * 16) << "nothing is sent ahead after the first refusals";
    }
}

TEST_P(CurlCrowdTest, requestInTurnIsAskedAgainWithoutTheOthers)
{
    curl.prefetchDownloads(serveAtOnce(15));
    // This request was not announced, and it comes while the announced ones are in progress.
    ASSERT_TRUE(header(server.url("/first"))) << curl.lastAnswer().reason;
    EXPECT_EQ(status, 200);
}

TEST_P(CurlCrowdTest, requestInTurnThatIsRefusedBesideAnyOtherIsMadeAlone)
{
    curl.setConnectionLimit(3);
    Downloads downloads = serve(8);
    const auto others = std::make_shared<std::atomic<int>>(0);
    server.otherwise([others, refused = refusal()](const FaultRequest& request) {
        if (request.path() == "/turn")
            return *others > 0 ? refused : FaultReply::ok("");
        ++*others;
        std::this_thread::sleep_for((1 + request.connection % 3) * 80ms);
        --*others;
        return FaultReply::ok("body");
    });
    for (Curl::DownloadRequest& download : downloads)
        download.url += "/slow";
    announce(downloads);
    ASSERT_TRUE(header(server.url("/turn"))) << curl.lastAnswer().reason;
    EXPECT_EQ(status, 200);
}

TEST_P(CurlCrowdTest, requestInTurnThatIsRefusedAmongOthersIsAskedAgain)
{
    delay = 100ms;
    const Downloads downloads = serve(kCount);
    server.onInTurn("/alone", {refusal(), FaultReply::ok("")});
    server.on("/slow", FaultReply::ok("").pauseAt(0, 2 * delay));
    announce(downloads);
    // When the first body has arrived, others are in progress.
    ASSERT_TRUE(get(downloads.front())) << reason;
    ASSERT_TRUE(header(server.url("/alone"))) << curl.lastAnswer().reason;
    EXPECT_EQ(status, 200);
    EXPECT_EQ(server.requestsFor("/alone").size(), 2U);
    if (GetParam() == Refusal::Closed)
        return;                         // the transfer library repeated it on a new connection
    std::this_thread::sleep_for(delay); // some requests may be on their way to the server still
    const std::size_t most = server.requests().size() + 5;
    ASSERT_TRUE(header(server.url("/slow")));
    EXPECT_LE(server.requests().size(), most) << "nothing is sent ahead any more";
}

TEST_P(CurlCrowdTest, refusalOfOneThatIsAskedAloneCounts)
{
    serveAtOnce(0);
    const std::size_t before = server.requests().size();
    EXPECT_EQ(header(server.url("/1")), GetParam() != Refusal::Closed);
    EXPECT_LE(server.requests().size(), before + 2) << "a kept connection that ended is tried once more";
}

INSTANTIATE_TEST_SUITE_P(Refusals, CurlCrowdTest,
                         testing::Values(Refusal::TooMany, Refusal::Unavailable, Refusal::Closed));

namespace {

class CurlConnectionsTest : public CurlDownloadsFixture
{
};

} // namespace

TEST_F(CurlConnectionsTest, noMoreThanSixteenAreOpenedUnlessTheHostSaysSo)
{
    const Downloads downloads = serve(100);
    for (const int limit : {0, 5, 40}) {
        if (limit != 0)
            curl.setConnectionLimit(limit);
        server.dropConnections();
        learnLatency();
        std::vector<Curl::HeaderRequest> headers;
        for (const auto& download : downloads)
            headers.push_back({download.url, {}});
        const int before = server.connectionCount();
        curl.prefetchHeaders(headers);
        for (const auto& request : headers)
            EXPECT_TRUE(header(request.url));
        curl.prefetchHeaders({});
        curl.prefetchDownloads(downloads);
        for (const auto& download : downloads)
            EXPECT_TRUE(get(download));
        EXPECT_LE(server.connectionCount() - before + 1, limit == 0 ? 16 : limit);
        EXPECT_GT(server.connectionCount() - before, 2);
    }
}

} // namespace test
