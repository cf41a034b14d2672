// Bodies are fetched ahead over HTTP/2, where parallel requests share a connection.
#include <optional>
#include <set>

#include "tests/host/http/CurlDownloadsFixture.h"
#include "tests/host/http/Http2Front.h"
#include "tests/host/http/TransferLibrary.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using namespace std::chrono_literals;

namespace test {

namespace {

class CurlHttp2Test : public CurlDownloadsFixture
{
protected:
    void SetUp() override
    {
        if (!Http2Front::isAvailable())
            GTEST_SKIP() << "no server that speaks HTTP/2";
        open(1'000);
    }
    ~CurlHttp2Test() override { curl.prefetchDownloads({}); }

    void open(int requestsOfAConnection)
    {
        front.emplace(server.port(), requestsOfAConnection);
        trusted.emplace(front->certificate());
    }
    /// Creates the files at the server. The list has the addresses at the front.
    Downloads serveBehind(int count)
    {
        Downloads downloads = serve(count);
        for (int i = 0; i < count; ++i)
            downloads[static_cast<std::size_t>(i)].url = front->url(nameOf(i));
        return downloads;
    }
    /// Lets the service measure the response time of the front, then announces the downloads.
    void announce(const Downloads& downloads)
    {
        for (int i = 0; i < 3; ++i)
            ASSERT_TRUE(header(front->url("/first")));
        requestsBefore = server.requests().size();
        curl.prefetchDownloads(downloads);
    }
    void holdBack(int number) { server.on(nameOf(number), FaultReply::ok(bodyOf(number)).silentAt(6'000)); }
    std::size_t bodiesAsked() const { return server.requests().size() - requestsBefore; }
    /// The connections of the requests to the files. Expects HTTP/2 for all of them.
    std::set<std::string> connections() const
    {
        std::set<std::string> found;
        for (const FaultRequest& request : server.requests()) {
            if (request.header("X-Connection").empty())
                continue; // "/step" is requested from the server directly
            EXPECT_EQ(request.header("X-Protocol"), "HTTP/2.0");
            found.insert(request.header("X-Connection"));
        }
        return found;
    }
    void expectArrives(const Downloads& downloads, std::size_t number)
    {
        ASSERT_TRUE(get(downloads[number])) << number << reason;
        EXPECT_TRUE(readFile(downloads[number].target) == bodyOf(static_cast<int>(number))) << number;
    }

    std::optional<Http2Front> front;
    std::optional<TrustedCertificate> trusted;
};

} // namespace

TEST_F(CurlHttp2Test, bodiesAreAskedForOnceOnTheConnectionThatIsThere)
{
    const Downloads downloads = serveBehind(60);
    announce(downloads);
    for (std::size_t i = 0; i < downloads.size(); ++i)
        expectArrives(downloads, i);
    EXPECT_EQ(bodiesAsked(), 60u);
    EXPECT_THAT(connections(), SizeIs(1));
    EXPECT_THAT(files(), SizeIs(60));
}

TEST_F(CurlHttp2Test, manyHeaderRequestsTakeAsManyConnectionsAsTheHostAllows)
{
    curl.setConnectionLimit(3);
    std::vector<Curl::HeaderRequest> requests;
    for (int i = 0; i < 250; ++i)
        requests.push_back({front->url("/first?" + std::to_string(i)), {}});
    announce({});
    curl.prefetchHeaders(requests);
    for (const Curl::HeaderRequest& request : requests)
        EXPECT_TRUE(header(request.url)) << request.url;
    EXPECT_EQ(bodiesAsked(), 250u);
    EXPECT_THAT(connections(), SizeIs(3));
}

TEST_F(CurlHttp2Test, aHundredAreUnderWayAtOnceAndEndTogether)
{
    const Downloads downloads = serveBehind(110);
    for (int i = 0; i < 110; ++i)
        holdBack(i);
    announce(downloads);
    const auto bodiesBegun = [&] { return files().size(); };
    moveOnWhile([&] { return bodiesBegun() < 100; });
    for (int i = 0; i < 6; ++i)
        header(server.url("/first"));
    EXPECT_EQ(bodiesBegun(), 100u);
    EXPECT_THAT(connections(), SizeIs(1));
    EXPECT_LT(timeOf([&] { curl.prefetchDownloads({}); }), 1s);
    EXPECT_THAT(files(), IsEmpty());
    server.on(nameOf(0), FaultReply::ok(bodyOf(0)));
    expectArrives(downloads, 0);
    EXPECT_THAT(connections(), SizeIs(1));
}

TEST_F(CurlHttp2Test, abortEndsItsOwnStreamAlone)
{
    const Downloads downloads = serveBehind(6);
    holdBack(1);
    announce(downloads);
    expectArrives(downloads, 0);
    Listener listener;
    listener.abortAt = 4096;
    EXPECT_FALSE(get(downloads[1], &listener));
    EXPECT_EQ(errorNumber, Curl::kAbortedByCallback);
    for (std::size_t i = 2; i < downloads.size(); ++i)
        expectArrives(downloads, i);
    EXPECT_EQ(bodiesAsked(), 6u);
    EXPECT_THAT(connections(), SizeIs(1));
    EXPECT_THAT(files(), SizeIs(5));
}

TEST_F(CurlHttp2Test, streamThatFailsAheadIsAskedForAnewAndTheOthersGoOn)
{
    const Downloads downloads = serveBehind(8);
    server.onInTurn(nameOf(3), {FaultReply::ok(bodyOf(3)).cutAt(5'000), FaultReply::ok(bodyOf(3))});
    server.onInTurn(nameOf(5), {FaultReply::status(503, "busy"), FaultReply::ok(bodyOf(5))});
    announce(downloads);
    waitForBody(downloads[7]);
    for (std::size_t i = 0; i < downloads.size(); ++i)
        expectArrives(downloads, i);
    EXPECT_THAT(server.requestsFor(nameOf(3)), SizeIs(2));
    EXPECT_THAT(server.requestsFor(nameOf(5)), SizeIs(2));
    EXPECT_EQ(bodiesAsked() - server.requestsFor("/step").size(), 10u);
    EXPECT_THAT(connections(), SizeIs(1));
}

TEST_F(CurlHttp2Test, serverThatEndsItsConnectionsGivesAllBodies)
{
    for (const int requests : {2, 20}) {
        SCOPED_TRACE(requests);
        open(requests);
        const std::size_t before = connections().size();
        const Downloads downloads = serveBehind(60);
        announce(downloads);
        for (std::size_t i = 0; i < downloads.size(); ++i)
            expectArrives(downloads, i);
        EXPECT_GE(connections().size() - before, 60u / static_cast<unsigned>(requests));
        EXPECT_THAT(files(), SizeIs(60));
    }
}

TEST_F(CurlHttp2Test, serverThatIsGoneFailsEachInItsTurn)
{
    const Downloads downloads = serveBehind(8);
    for (int i = 2; i < 8; ++i)
        holdBack(i);
    announce(downloads);
    expectArrives(downloads, 0);
    waitForBody(downloads[1]);
    front->stop();
    const auto time = timeOf([&] {
        expectArrives(downloads, 1); // it had arrived before
        for (std::size_t i = 2; i < downloads.size(); ++i) {
            EXPECT_FALSE(get(downloads[i]));
            EXPECT_NE(reason, "");
        }
    });
    EXPECT_LT(time, 5s);
    EXPECT_THAT(files(), ElementsAre("0.download", "1.download"));
}

} // namespace test
