#include <algorithm>
#include <atomic>

#include "tests/host/http/CurlDownloadsFixture.h"

using testing::IsEmpty;
using testing::SizeIs;
using namespace std::chrono_literals;

namespace test {

namespace {

/// Downloads ahead from servers that allow few connections, refuse connections, or do not exist.
class CurlPrefetchDownloadsServersTest : public CurlDownloadsFixture
{
};

} // namespace

TEST_F(CurlPrefetchDownloadsServersTest, hostMayLowerTheNumberOfConnections)
{
    for (const int limit : {1, 4}) {
        curl.setConnectionLimit(limit);
        const Downloads downloads = serve(30);
        const int before = server.connectionCount();
        announce(downloads);
        for (const auto& download : downloads) {
            EXPECT_TRUE(get(download));
            EXPECT_TRUE(header(server.url("/first")));
        }
        EXPECT_LE(server.connectionCount() - before, limit);
        for (int i = 0; i < 30; ++i)
            EXPECT_THAT(server.requestsFor(nameOf(i)), SizeIs(limit == 1 ? 1 : 2)) << "once in each list";
    }
    EXPECT_GE(server.connectionCount(), 3);
}

TEST_F(CurlPrefetchDownloadsServersTest, requestInTurnGetsAConnectionWithinASecond)
{
    constexpr int kLimit = 4;
    curl.setConnectionLimit(kLimit);
    server.limitConnections(kLimit);
    const Downloads downloads = serve(8);
    for (int i = 0; i < 8; ++i)
        server.on(nameOf(i), FaultReply::ok(bodyOf(i)).silentAt(6'000));
    announce(downloads);
    const int before = server.connectionCount();
    EXPECT_LT(timeOf([&] { EXPECT_TRUE(header(server.url("/first"))); }), 4s);
    EXPECT_EQ(status, 200);
    // One takes the place of the one given up. If the server sees the end too late, it refuses it once.
    EXPECT_LE(server.connectionCount() - before, kLimit + 1);
    EXPECT_THAT(server.requestsFor(nameOf(kLimit - 2)), SizeIs(1));
    EXPECT_THAT(server.requestsFor(nameOf(kLimit)), IsEmpty());
}

TEST_F(CurlPrefetchDownloadsServersTest, serverWithOneWorkerIsAskedInTurn)
{
    server.limitWorkers(1);
    const Downloads downloads = serve(20);
    const auto time = timeOf([&] {
        announce(downloads);
        for (const auto& download : downloads)
            EXPECT_TRUE(get(download)) << reason;
    });
    EXPECT_LT(time, 6s);
}

TEST_F(CurlPrefetchDownloadsServersTest, serverThatTakesNoMoreConnectionsIsAskedOnThoseItHas)
{
    const Downloads downloads = serve(10);
    learnLatency();
    server.stopAccepting();
    server.limitBacklog(0);
    const auto time = timeOf([&] {
        curl.prefetchDownloads(downloads);
        for (const auto& download : downloads)
            EXPECT_TRUE(get(download)) << reason;
    });
    EXPECT_LT(time, 10s);
}

TEST_F(CurlPrefetchDownloadsServersTest, serverThatRefusesMoreThanOneConnectionIsAskedOnThatOne)
{
    const Downloads downloads = serve(40);
    FaultServer picky;
    picky.limitConnections(1);
    picky.otherwise([](const FaultRequest&) { return FaultReply::ok("body").pauseAt(0, 15ms); });
    Downloads refused = downloads;
    for (int i = 0; i < 40; ++i)
        refused[static_cast<std::size_t>(i)].url = picky.url(nameOf(i));
    for (int i = 0; i < 3; ++i)
        header(picky.url("/first"));
    curl.prefetchDownloads(refused);
    for (const auto& download : refused)
        EXPECT_TRUE(get(download)) << reason;
    EXPECT_GT(picky.connectionCount(), 1);
}

TEST_F(CurlPrefetchDownloadsServersTest, requestInTurnIsNotRefusedBecauseOfOneAhead)
{
    Downloads downloads = serve(6);
    FaultServer picky;
    picky.limitConnections(1);
    picky.otherwise([](const FaultRequest&) { return FaultReply::ok("body").pauseAt(0, 80ms); });
    for (int i = 0; i < 6; ++i)
        downloads[static_cast<std::size_t>(i)].url = picky.url(nameOf(i));
    for (int i = 0; i < 3; ++i)
        header(picky.url("/first"));
    curl.prefetchDownloads(downloads);
    // The first download of the list is using the only connection.
    for (const std::size_t i : {3, 0, 1, 2, 4, 5})
        EXPECT_TRUE(get(downloads[i])) << i << reason;
    EXPECT_GT(picky.connectionCount(), 1);
    EXPECT_THAT(picky.requestsFor(nameOf(0)), SizeIs(1));
}

TEST_F(CurlPrefetchDownloadsServersTest, requestRefusedBesideTheLastOneAheadIsMadeAgain)
{
    curl.setConnectionLimit(2);
    Downloads downloads = serve(4);
    downloads[3].url = server.url("/last");
    server.otherwise([this](const FaultRequest& request) {
        if (request.path() == "/last") {
            server.waitForRequests(requestsBefore + 5); // it ends while the refusal is on its way
            return FaultReply::ok("body");
        }
        const bool isFirst = server.requestsFor("/turn").size() == 1;
        return isFirst ? FaultReply::status(503).pauseAt(0, 200ms) : FaultReply::ok("");
    });
    announce(downloads);
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_TRUE(get(downloads[i])) << reason;
    ASSERT_TRUE(header(server.url("/turn"))) << curl.lastAnswer().reason;
    EXPECT_EQ(status, 200);
}

TEST_F(CurlPrefetchDownloadsServersTest, slowOneAheadMakesRoomWithinASecond)
{
    Downloads downloads = serve(6);
    std::atomic<int> toRefuse{5};
    FaultServer picky;
    picky.otherwise([&toRefuse](const FaultRequest& request) {
        if (request.path() == "/first")
            return FaultReply::ok("").pauseAt(0, 20ms);
        if (request.connection == 0)
            return FaultReply::ok("body").pauseAt(0, 10s);
        return toRefuse-- > 0 ? FaultReply::raw("").reset() : FaultReply::ok("body");
    });
    for (int i = 0; i < 6; ++i)
        downloads[static_cast<std::size_t>(i)].url = picky.url(nameOf(i));
    for (int i = 0; i < 3; ++i)
        header(picky.url("/first"));
    curl.prefetchDownloads(downloads);
    EXPECT_LT(timeOf([&] { EXPECT_TRUE(get(downloads[3])) << reason; }), 8s);
    EXPECT_TRUE(get(downloads[0])) << reason;
    EXPECT_THAT(picky.requestsFor(nameOf(0)), SizeIs(2));
}

TEST_F(CurlPrefetchDownloadsServersTest, serverThatHasNoneOfTheFilesIsSoonAskedInTurn)
{
    constexpr int kCount = 60;
    const Downloads downloads = serve(kCount);
    for (int i = 0; i < kCount; ++i)
        server.on(nameOf(i), FaultReply::status(404).pauseAt(0, delay));
    announce(downloads);
    for (const auto& request : downloads)
        EXPECT_FALSE(get(request));
    EXPECT_LE(server.requests().size() - requestsBefore, kCount + 2U * 16U)
        << "an answer that brings no file is asked for again in its turn";
}

TEST_F(CurlPrefetchDownloadsServersTest, downloadThatCannotBeContinuedTakesTheBodyAhead)
{
    const Downloads downloads = serve(6);
    announce(downloads);
    const std::pair<fileString, std::string> parts[] = {{folder.file("missing.partial"), "\"v1\""},
                                                        {folder.write("empty.partial", ""), "\"v1\""},
                                                        {folder.write("some.partial", "abc"), ""}};
    for (std::size_t i = 0; i < downloads.size(); ++i) {
        const auto& asked = downloads[i];
        const auto& [partial, validator] = parts[i % 3];
        const Curl::ResumableDownload download{asked.url, asked.headerLines, asked.target, partial,
                                               validator};
        EXPECT_TRUE(curl.downloadResumable(download, nullptr, nullptr, reason, errorNumber)) << reason;
        EXPECT_EQ(readFile(asked.target), bodyOf(static_cast<int>(i)));
        EXPECT_THAT(server.requestsFor(nameOf(static_cast<int>(i))), SizeIs(1));
    }
}

TEST_F(CurlPrefetchDownloadsServersTest, downloadThatCanBeContinuedIsAskedForInItsTurn)
{
    const Downloads downloads = serve(6);
    announce(downloads);
    const auto& asked = downloads.back();
    const Curl::ResumableDownload download{asked.url, asked.headerLines, asked.target,
                                           folder.write("some.partial", "f"), "\"v1\""};
    EXPECT_TRUE(curl.downloadResumable(download, nullptr, nullptr, reason, errorNumber)) << reason;
    // It may be sent ahead as well, before or after.
    const std::vector<FaultRequest> requests = server.requestsFor(nameOf(5));
    EXPECT_TRUE(std::any_of(requests.begin(), requests.end(), [](const FaultRequest& request) {
        return request.header("Range") == "bytes=1-";
    }));
}

TEST_F(CurlPrefetchDownloadsServersTest, downloadsFromANearServerHoldThoseFromAFarOneNotUp)
{
    Downloads downloads = serve(6);
    FaultServer near;
    for (std::size_t i = 0; i < 3; ++i) {
        downloads[i].url = near.url(nameOf(static_cast<int>(i)));
        header(near.url("/first"));
    }
    announce(downloads);
    moveOnWhile([&] { return server.requestsFor(nameOf(5)).empty(); });
    EXPECT_THAT(server.requestsFor(nameOf(5)), SizeIs(1));
}

TEST_F(CurlPrefetchDownloadsServersTest, addressThatWasGivenUpIsNotAskedAhead)
{
    const Downloads downloads = serve(6);
    learnLatency();
    server.on("/dead", FaultReply::raw("").close());
    for (int i = 0; i < 3; ++i)
        EXPECT_FALSE(header(server.url("/dead")));
    const std::size_t before = server.requests().size();
    const int connections = server.connectionCount();
    curl.prefetchDownloads(downloads);
    curl.prefetchHeaders({{server.url("/a"), {}}, {server.url("/b"), {}}});
    FaultServer other;
    other.on("/a", FaultReply::ok("").pauseAt(0, 50ms));
    EXPECT_TRUE(header(other.url("/a")));
    EXPECT_EQ(server.requests().size(), before);
    EXPECT_EQ(server.connectionCount(), connections);
    curl.prefetchHeaders({});
}

TEST_F(CurlPrefetchDownloadsServersTest, bodyAheadIsAnAnswerOnceItIsAskedFor)
{
    const Downloads downloads = serve(4);
    server.on("/dead", FaultReply::raw("").close());
    announce(downloads);
    waitForBody(downloads[0]);
    const auto failTwice = [&] { return !header(server.url("/dead")) && !header(server.url("/dead")); };
    EXPECT_TRUE(failTwice());
    EXPECT_TRUE(get(downloads[0])) << reason;
    EXPECT_TRUE(failTwice());
    EXPECT_TRUE(header(server.url("/first"))) << "three in a row without an answer would close the address";
    EXPECT_THAT(server.requestsFor(nameOf(0)), SizeIs(1));
}

TEST_F(CurlPrefetchDownloadsServersTest, deadServerIsGivenUpInTheOrderOfTheCalls)
{
    const Downloads downloads = serve(100);
    announce(downloads);
    for (int i = 0; i < 100; ++i)
        server.on(nameOf(i), FaultReply::raw("").close());
    Downloads dead = downloads;
    announce(dead);
    for (std::size_t i = 0; i < dead.size(); ++i) {
        EXPECT_FALSE(get(dead[i]));
        EXPECT_EQ(reason.find("no answer from") != std::string::npos, i >= 3) << i << reason;
    }
    EXPECT_LT(server.requests().size(), requestsBefore + 80);
    EXPECT_THAT(files(), IsEmpty());
}

} // namespace test
