#include <algorithm>
#include <limits>
#include <set>
#include <thread>

#include "tests/host/http/CurlFixture.h"

using testing::AllOf;
using testing::Ge;
using testing::Le;
using namespace std::chrono_literals;

namespace test {

namespace {

using Headers = std::vector<Curl::HeaderRequest>;

class CurlPrefetchTest : public CurlFixture
{
protected:
    CurlPrefetchTest() : CurlFixture(limits()) {}
    ~CurlPrefetchTest() override { curl.prefetchHeaders({}); }

    static HttpLimits limits()
    {
        HttpLimits limits;
        limits.totalTimeout = 2s;
        return limits;
    }
    /// Header requests for "/0", "/1" and so on.
    Headers list(int count) const
    {
        Headers headers;
        for (int i = 0; i < count; ++i)
            headers.push_back(
                {server.url("/" + std::to_string(i)), {"If-None-Match: \"" + std::to_string(i) + "\""}});
        return headers;
    }
    bool ask(const Curl::HeaderRequest& request) { return header(request.url, request.headerLines); }
    /// Makes requests so that the service has measured how long the server takes to respond.
    void learnLatency()
    {
        for (int i = 0; i < 3; ++i)
            header(server.url("/first"));
    }
    void answerAfter(std::chrono::milliseconds time)
    {
        server.otherwise([time](const FaultRequest& request) {
            return FaultReply::ok("", {"ETag: \"" + request.path() + "\""}).pauseAt(0, time);
        });
        learnLatency();
    }
};

} // namespace

TEST_F(CurlPrefetchTest, callsGetTheirOwnAnswersAndEachIsAskedOnce)
{
    for (const auto delay : {0ms, 2ms, 15ms}) {
        SCOPED_TRACE(delay.count());
        server.otherwise([delay](const FaultRequest& request) {
            const int number = std::atoi(request.path().c_str() + 1);
            const int codes[] = {200, 304, 404, 403, 500, 204};
            return FaultReply::status(codes[number % 6], "", {"ETag: \"" + request.path() + "\""})
                .pauseAt(0, delay);
        });
        learnLatency();
        const std::size_t before = server.requests().size();
        const Headers headers = list(150);
        curl.prefetchHeaders(headers);
        for (int i = 0; i < 150; ++i) {
            ASSERT_TRUE(ask(headers[static_cast<std::size_t>(i)])) << i;
            const int codes[] = {200, 304, 404, 403, 500, 204};
            EXPECT_EQ(status, codes[i % 6]);
            EXPECT_THAT(headerText, testing::HasSubstr("ETag: \"/" + std::to_string(i) + "\"\r\n"));
        }
        EXPECT_EQ(server.requests().size(), before + 150);
        EXPECT_EQ(server.requests().back().method, "HEAD");
    }
}

TEST_F(CurlPrefetchTest, headerLinesAreSentAndTellRequestsApart)
{
    answerAfter(0ms);
    curl.prefetchHeaders({{server.url("/a"), {"X: 1"}}, {server.url("/a"), {"X: 2"}}});
    EXPECT_TRUE(header(server.url("/a"), {"X: 2"}));
    EXPECT_TRUE(header(server.url("/a"), {"X: 1"}));
    const auto asked = server.requestsFor("/a");
    ASSERT_EQ(asked.size(), 2u);
    // Their order may vary: on a busy machine they use two connections.
    EXPECT_EQ(asked[0].header("X") + asked[1].header("X"), asked[0].header("X") == "1" ? "12" : "21");
    EXPECT_TRUE(header(server.url("/a"), {"X: 3"}));
    EXPECT_EQ(server.requestsFor("/a").size(), 3u);
}

TEST_F(CurlPrefetchTest, answerServesOneCall)
{
    answerAfter(0ms);
    const Headers headers{list(1)[0], list(1)[0]};
    curl.prefetchHeaders(headers);
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(ask(headers[0]));
    EXPECT_EQ(server.requestsFor("/0").size(), 3u);
}

TEST_F(CurlPrefetchTest, nearServerIsAskedOnOneConnection)
{
    answerAfter(0ms);
    const Headers headers = list(300);
    int fewest = std::numeric_limits<int>::max();
    // On a busy machine even a near server sometimes responds late and is treated as a distant one.
    for (int tries = 0; tries < 20 && fewest > 1; ++tries) {
        server.dropConnections();
        const int before = server.connectionCount();
        learnLatency();
        curl.prefetchHeaders(headers);
        for (const auto& request : headers)
            EXPECT_TRUE(ask(request));
        fewest = std::min(fewest, server.connectionCount() - before);
    }
    EXPECT_EQ(fewest, 1);
}

TEST_F(CurlPrefetchTest, nearServerSeesTheRequestsInTheOrderOfTheCalls)
{
    server.otherwise([](const FaultRequest& request) {
        const int codes[] = {200, 304, 404, 301, 500};
        const int code = codes[std::atoi(request.path().c_str() + 1) % 5];
        const FaultReply reply = code == 301 ? FaultReply::redirect("/to" + request.path())
                                             : FaultReply::status(code, "", {"ETag: \"x\""});
        return FaultReply(reply).pauseAt(0, 2ms);
    });
    const Headers headers = list(40);
    std::vector<std::string> wanted, seen;
    // On a busy machine even a near server sometimes responds late and is treated as a distant one.
    for (int tries = 0; tries < 20 && (wanted.empty() || seen != wanted); ++tries) {
        learnLatency();
        const std::size_t before = server.requests().size();
        wanted.clear();
        seen.clear();
        curl.prefetchHeaders(headers);
        for (std::size_t i = 0; i < headers.size(); ++i) {
            const std::string path = "/" + std::to_string(i);
            wanted.push_back("HEAD " + path);
            EXPECT_TRUE(ask(headers[i]));
            if (i % 5 == 2) {
                wanted.push_back("GET " + path);
                browse(headers[i].url);
            } else if (i % 5 == 3) {
                wanted.push_back("HEAD /to" + path);
            }
        }
        const auto asked = server.requests();
        for (std::size_t i = before; i < asked.size(); ++i)
            seen.push_back(asked[i].method + " " + asked[i].path());
    }
    EXPECT_EQ(seen, wanted);
}

TEST_F(CurlPrefetchTest, farServerIsAskedOnManyConnectionsAtOnce)
{
    answerAfter(30ms);
    const Headers headers = list(200);
    const auto time = timeOf([&] {
        curl.prefetchHeaders(headers);
        for (const auto& request : headers)
            EXPECT_TRUE(ask(request));
    });
    EXPECT_LT(time, 3s); // one after the other they take 6 s
    EXPECT_THAT(server.connectionCount(), AllOf(Ge(10), Le(16)));
}

TEST_F(CurlPrefetchTest, hostMayLowerTheNumberOfConnections)
{
    answerAfter(15ms);
    curl.setConnectionLimit(5);
    const Headers headers = list(50);
    curl.prefetchHeaders(headers);
    for (const auto& request : headers)
        EXPECT_TRUE(ask(request));
    EXPECT_EQ(server.connectionCount(), 5);
}

TEST_F(CurlPrefetchTest, hostMayLowerThatNumberForTheDefaultService)
{
    std::thread([this] { // the end of the thread closes its connections
        answerAfter(15ms);
        Curl& service = Curl::get();
        std::int64_t answer = 0;
        for (int i = 0; i < 3; ++i)
            service.getURLHeader(server.url("/first"), {}, headerText, answer);
        const int before = server.connectionCount();
        Curl::setConnectionLimit(4);
        const Headers headers = list(40);
        service.prefetchHeaders(headers);
        for (const auto& request : headers)
            EXPECT_TRUE(service.getURLHeader(request.url, request.headerLines, headerText, answer));
        EXPECT_EQ(server.connectionCount(), before - 1 + 4);
        Curl::setConnectionLimit(16);
    })
        .join();
}

TEST_F(CurlPrefetchTest, serverWithOneWorkerIsAskedInTurn)
{
    server.limitWorkers(1);
    answerAfter(20ms);
    const Headers headers = list(30);
    const auto time = timeOf([&] {
        curl.prefetchHeaders(headers);
        for (const auto& request : headers)
            EXPECT_TRUE(ask(request));
    });
    EXPECT_LT(time, 6s);
}

TEST_F(CurlPrefetchTest, serverWithFewWorkersIsAskedOnTheirConnections)
{
    server.limitWorkers(4);
    answerAfter(20ms);
    const Headers headers = list(60);
    curl.prefetchHeaders(headers);
    for (const auto& request : headers)
        EXPECT_TRUE(ask(request));
    std::set<int> connections;
    const auto asked = server.requests();
    for (std::size_t i = asked.size() - 20; i < asked.size(); ++i)
        connections.insert(asked[i].connection);
    EXPECT_THAT(connections.size(), AllOf(Ge(2u), Le(4u)));
}

TEST_F(CurlPrefetchTest, serverThatTakesNoMoreConnectionsIsAskedOnThoseItHas)
{
    answerAfter(20ms);
    server.stopAccepting();
    server.limitBacklog(0);
    const std::size_t before = server.requests().size();
    const Headers headers = list(20);
    curl.prefetchHeaders(headers);
    for (const auto& request : headers)
        EXPECT_TRUE(ask(request)) << request.url;
    EXPECT_EQ(server.requests().size(), before + 20);
}

TEST_F(CurlPrefetchTest, lateAnswerOnAServedConnectionIsWaitedFor)
{
    answerAfter(15ms);
    curl.setConnectionLimit(2);
    // Longer than a connection may be in the server's queue.
    server.on("/3", FaultReply::ok("").pauseAt(0, 1'300ms));
    const Headers headers = list(10);
    curl.prefetchHeaders(headers);
    for (const auto& request : headers)
        EXPECT_TRUE(ask(request));
    EXPECT_EQ(server.requestsFor("/3").size(), 1u);
}

TEST_F(CurlPrefetchTest, lateAnswerOfAServerThatClosesConnectionsIsWaitedFor)
{
    server.otherwise([](const FaultRequest& request) {
        FaultReply reply = FaultReply::ok("");
        return reply.pauseAt(0, request.path() == "/3" ? 800ms : 0ms).close();
    });
    learnLatency();
    const Headers headers = list(6);
    curl.prefetchHeaders(headers);
    for (const auto& request : headers)
        EXPECT_TRUE(ask(request));
    EXPECT_EQ(server.requestsFor("/3").size(), 1u);
}

TEST_F(CurlPrefetchTest, redirectOfOneIsFollowedWhenItIsAsked)
{
    answerAfter(15ms);
    server.on("/1", FaultReply::redirect("/elsewhere"));
    const Headers headers = list(3);
    curl.prefetchHeaders(headers);
    for (const auto& request : headers)
        EXPECT_TRUE(ask(request));
    EXPECT_EQ(server.requestsFor("/elsewhere").size(), 1u);
    curl.prefetchHeaders({headers[1]});
    EXPECT_TRUE(ask(headers[1]));
    EXPECT_THAT(headerText, testing::HasSubstr("\"/elsewhere\""));
}

TEST_F(CurlPrefetchTest, faultOfOneIsTheFaultOfItsCallAlone)
{
    answerAfter(15ms);
    const std::map<int, FaultReply> faults{
        {3, FaultReply::raw("").close()}, {4, FaultReply::ok("").cutAt(20)},
        {7, FaultReply::raw("").reset()}, {8, FaultReply::raw("garbage\r\n\r\n").close()},
        {12, FaultReply::silence()},
    };
    for (const auto& [number, reply] : faults)
        server.on("/" + std::to_string(number), reply);
    const Headers headers = list(20);
    curl.prefetchHeaders(headers);
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(ask(headers[static_cast<std::size_t>(i)]), faults.count(i) == 0) << i;
}

TEST_F(CurlPrefetchTest, serverThatRefusesMoreThanOneConnectionIsAskedOnThatOne)
{
    server.limitConnections(1);
    server.otherwise([](const FaultRequest&) { return FaultReply::ok("").pauseAt(0, 15ms); });
    learnLatency();
    const Headers headers = list(40);
    curl.prefetchHeaders(headers);
    for (const auto& request : headers)
        EXPECT_TRUE(ask(request)) << request.url;
    EXPECT_GT(server.connectionCount(), 1);
}

TEST_F(CurlPrefetchTest, deadServerIsGivenUpInTheOrderOfTheCalls)
{
    answerAfter(15ms);
    server.otherwise([](const FaultRequest&) { return FaultReply::raw("").close(); });
    const Headers headers = list(300);
    curl.prefetchHeaders(headers);
    for (const auto& request : headers)
        EXPECT_FALSE(ask(request));
    EXPECT_LT(server.requests().size(), 220u);
    EXPECT_FALSE(fetch(server.url("/x")));
    EXPECT_THAT(reason, testing::HasSubstr("no answer from"));
}

TEST_F(CurlPrefetchTest, silentServerIsGivenUpAfterThreeThatAreAskedAlone)
{
    answerAfter(15ms);
    server.otherwise([](const FaultRequest&) { return FaultReply::silence(); });
    const Headers headers = list(20);
    const auto time = timeOf([&] {
        curl.prefetchHeaders(headers);
        for (const auto& request : headers)
            EXPECT_FALSE(ask(request));
    });
    // One timeout is 2 s. The first batch waits once, then three single requests wait, and then the address
    // is given up.
    EXPECT_LT(time, 10s);
    EXPECT_LE(server.requestsFor("/3").size(), 1u);
}

TEST_F(CurlPrefetchTest, otherRequestsMayStandInBetween)
{
    answerAfter(15ms);
    server.on("/file", FaultReply::ok(std::string(100'000, 'f')));
    const Headers headers = list(40);
    curl.prefetchHeaders(headers);
    EXPECT_TRUE(ask(headers[0]));
    EXPECT_TRUE(fetch(server.url("/file")));
    EXPECT_TRUE(browse(server.url("/file")));
    for (std::size_t i = 1; i < headers.size(); ++i)
        EXPECT_TRUE(ask(headers[i]));
    EXPECT_EQ(server.requestsFor("/39").size(), 1u);
}

TEST_F(CurlPrefetchTest, furtherListTakesThePlaceOfTheFormerOne)
{
    answerAfter(15ms);
    server.on("/0", FaultReply::silence());
    curl.prefetchHeaders(list(10));
    header(server.url("/other"));
    EXPECT_TRUE(server.waitForRequests(4));
    EXPECT_EQ(server.requestsFor("/0").size(), 1u);
    EXPECT_LT(timeOf([&] { curl.prefetchHeaders({}); }), 1s);
    server.on("/0", FaultReply::ok(""));
    EXPECT_TRUE(ask(list(1)[0]));
}

TEST_F(CurlPrefetchTest, threadMayEndBeforeItsAnswersCame)
{
    answerAfter(15ms);
    server.otherwise([](const FaultRequest&) { return FaultReply::silence(); });
    const auto time = timeOf([&] {
        std::thread([&] {
            curl.prefetchHeaders(list(10));
            header(server.url("/first"));
        }).join();
    });
    EXPECT_LT(time, 10s);
    EXPECT_GT(server.requests().size(), 4u);
}

TEST_F(CurlPrefetchTest, addressesOutsideOfTheWebArePassedOver)
{
    answerAfter(0ms);
    curl.prefetchHeaders({{"file:///etc/passwd", {}}, {"", {}}, {server.url("/0"), {}}});
    EXPECT_FALSE(header("file:///etc/passwd"));
    EXPECT_FALSE(header(""));
    EXPECT_TRUE(header(server.url("/0")));
}

} // namespace test
