#include <cerrno>
#include <cstring>
#include <thread>

#include "tests/host/http/CurlDownloadsFixture.h"

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::EndsWith;
using testing::Ge;
using testing::IsEmpty;
using testing::Le;
using testing::SizeIs;
using testing::StartsWith;
using namespace std::chrono_literals;

namespace test {

namespace {

class CurlPrefetchDownloadsTest : public CurlDownloadsFixture
{
};

} // namespace

TEST_F(CurlPrefetchDownloadsTest, eachTargetGetsItsOwnBodyAndEachIsAskedForOnce)
{
    const Downloads downloads = serve(100);
    announce(downloads);
    for (int i = 0; i < 100; ++i) {
        ASSERT_TRUE(get(downloads[static_cast<std::size_t>(i)])) << reason;
        EXPECT_EQ(readFile(downloads[static_cast<std::size_t>(i)].target), bodyOf(i));
        EXPECT_EQ(curl.lastAnswer().url, server.url(nameOf(i)));
    }
    EXPECT_EQ(server.requests().size(), requestsBefore + 100);
    for (int i = 0; i < 100; ++i) {
        ASSERT_THAT(server.requestsFor(nameOf(i)), SizeIs(1));
        EXPECT_EQ(server.requestsFor(nameOf(i))[0].header("X-Number"), std::to_string(i));
        EXPECT_EQ(server.requestsFor(nameOf(i))[0].method, "GET");
    }
    EXPECT_THAT(files(), SizeIs(100));
}

TEST_F(CurlPrefetchDownloadsTest, farServerIsAskedForManyAtOnce)
{
    delay = 60ms;
    const Downloads downloads = serve(100);
    const auto time = timeOf([&] {
        announce(downloads);
        for (const auto& download : downloads)
            EXPECT_TRUE(get(download));
    });
    EXPECT_LT(time, 4s); // one after the other they take 6 s
    EXPECT_THAT(server.connectionCount(), AllOf(Ge(5), Le(65)));
}

TEST_F(CurlPrefetchDownloadsTest, nearServerIsAskedInTurnOnOneConnection)
{
    delay = 0ms;
    const Downloads downloads = serve(20);
    server.on("/near", FaultReply::ok(""));
    learnLatency("/near");
    curl.prefetchDownloads(downloads);
    for (std::size_t i = 0; i < downloads.size(); ++i) {
        EXPECT_EQ(server.requests().size(), requestsBefore + i);
        EXPECT_TRUE(get(downloads[i]));
        EXPECT_EQ(server.requests().back().path(), nameOf(static_cast<int>(i)));
    }
    EXPECT_EQ(server.requests().size(), requestsBefore + 20);
    EXPECT_EQ(server.connectionCount(), 1);
}

TEST_F(CurlPrefetchDownloadsTest, threeDownloadsAreAskedForInTurn)
{
    const Downloads downloads = serve(3);
    announce(downloads);
    for (std::size_t i = 0; i < downloads.size(); ++i) {
        EXPECT_EQ(server.requests().size(), requestsBefore + i);
        EXPECT_TRUE(get(downloads[i]));
    }
    EXPECT_EQ(server.connectionCount(), 1);
}

TEST_F(CurlPrefetchDownloadsTest, serverNobodyHasAskedYetIsAskedInTurn)
{
    const Downloads downloads = serve(10);
    curl.prefetchDownloads(downloads);
    EXPECT_TRUE(get(downloads[0]));
    EXPECT_EQ(server.requests().size(), 1u);
}

TEST_F(CurlPrefetchDownloadsTest, progressIsToldAsInTurnOfWhatHasArrivedAndOfWhatGrows)
{
    const Downloads downloads = serve(6, 100'000);
    Listener inTurn, arrived, growing;
    ASSERT_TRUE(get(downloads[0], &inTurn));
    server.on(nameOf(5), FaultReply::ok(bodyOf(5, 100'000)).pauseAt(0, delay).pauseAt(30'000, 200ms));
    announce(downloads);
    waitForBody(downloads[0]);
    EXPECT_TRUE(get(downloads[0], &arrived));
    EXPECT_EQ(arrived.counts, inTurn.counts);
    EXPECT_THAT(inTurn.counts, SizeIs(25)); // after every 4 KiB and at the end
    EXPECT_TRUE(get(downloads[5], &growing));
    EXPECT_EQ(growing.counts, inTurn.counts);
    EXPECT_EQ(server.requestsFor(nameOf(5)).size(), 1u);
}

TEST_F(CurlPrefetchDownloadsTest, failureAheadIsNotReportedAndAskedForAnew)
{
    const Downloads downloads = serve(8);
    const FaultReply good = FaultReply::ok(bodyOf(3));
    const FaultReply bad[] = {
        FaultReply::ok(bodyOf(3)).cutAt(5000),
        FaultReply::raw("").reset(),
        FaultReply::status(503, "busy"),
        FaultReply::raw("garbage\r\n\r\n").close(),
        FaultReply::ok(bodyOf(3), {"Repr-Digest: sha-256=:AAAA:"}),
    };
    for (const FaultReply& reply : bad) {
        server.onInTurn(nameOf(3), {reply, good});
        announce(downloads);
        waitForBody(downloads[7]);
        Listener listener;
        for (const auto& download : downloads)
            ASSERT_TRUE(get(download, &listener)) << reason;
        EXPECT_EQ(readFile(downloads[3].target), bodyOf(3));
    }
}

TEST_F(CurlPrefetchDownloadsTest, failureInItsTurnIsReportedOnce)
{
    const Downloads downloads = serve(4);
    server.on(nameOf(0), FaultReply::ok(bodyOf(0)).pauseAt(9'000, 300ms).cutAt(9'500));
    announce(downloads);
    Listener listener;
    EXPECT_FALSE(get(downloads[0], &listener));
    EXPECT_NE(reason, "");
    EXPECT_NE(errorNumber, 0);
    EXPECT_THAT(listener.counts, ElementsAre(4096, 8192));
    EXPECT_EQ(server.requestsFor(nameOf(0)).size(), 1u);
    EXPECT_FALSE(downloads[0].target.pathExists());
    for (std::size_t i = 1; i < 4; ++i)
        EXPECT_TRUE(get(downloads[i]));
    EXPECT_THAT(files(), SizeIs(3));
}

TEST_F(CurlPrefetchDownloadsTest, failureThatStaysIsThatOfItsCallAlone)
{
    const Downloads downloads = serve(8);
    server.on(nameOf(2), FaultReply::status(404, "gone"));
    server.on(nameOf(5), FaultReply::raw("").close());
    announce(downloads);
    for (std::size_t i = 0; i < 8; ++i) {
        EXPECT_EQ(get(downloads[i]), i != 2 && i != 5) << i;
        EXPECT_EQ(reason == "HTTP 404", i == 2);
    }
    EXPECT_THAT(files(), SizeIs(6));
}

TEST_F(CurlPrefetchDownloadsTest, abortEndsItsOwnTransferAlone)
{
    const Downloads downloads = serve(5);
    server.on(nameOf(1), FaultReply::ok(bodyOf(1)).silentAt(6'000));
    announce(downloads);
    waitForBody(downloads[0]);
    Listener early, late, other;
    early.abortAt = 4096;
    EXPECT_FALSE(get(downloads[0], &early));
    EXPECT_EQ(reason, "Callback aborted");
    EXPECT_EQ(errorNumber, Curl::kAbortedByCallback);
    EXPECT_THAT(early.counts, ElementsAre(4096));
    late.abortAt = 4096;
    EXPECT_FALSE(get(downloads[1], &late));
    EXPECT_EQ(errorNumber, Curl::kAbortedByCallback);
    EXPECT_TRUE(get(downloads[2], &other));
    curl.prefetchDownloads({});
    EXPECT_THAT(files(), ElementsAre("2.download"));
    EXPECT_EQ(server.requestsFor(nameOf(2)).size(), 1u);
}

TEST_F(CurlPrefetchDownloadsTest, progressFunctionMayThrow)
{
    const Downloads downloads = serve(5);
    server.on(nameOf(1), FaultReply::ok(bodyOf(1)).pauseAt(6'000, 100ms));
    announce(downloads);
    waitForBody(downloads[0]);
    for (std::size_t i = 0; i < 2; ++i) {
        Listener listener;
        listener.onCall = [&] {
            if (listener.counts.size() == 2)
                throw std::runtime_error("no more");
        };
        EXPECT_FALSE(get(downloads[i], &listener));
        EXPECT_EQ(reason, "no more");
        EXPECT_EQ(errorNumber, Curl::kAbortedByCallback);
    }
    EXPECT_TRUE(get(downloads[2]));
    curl.prefetchDownloads({});
    EXPECT_THAT(files(), ElementsAre("2.download"));
}

TEST_F(CurlPrefetchDownloadsTest, progressFunctionMayAskForOtherThings)
{
    const Downloads downloads = serve(5, 5000);
    announce(downloads);
    server.on("/other", FaultReply::ok("other"));
    Listener listener;
    listener.onCall = [&] {
        curl.prefetchDownloads({}); // has no effect any more
        EXPECT_TRUE(browse(server.url("/other")));
        EXPECT_TRUE(curl.download_to_location(server.url("/other"), folder.file("other"), reason));
    };
    for (const auto& download : downloads)
        EXPECT_TRUE(get(download, &listener));
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(server.requestsFor(nameOf(i)).size(), 1u);
    EXPECT_THAT(files(), SizeIs(6));
}

TEST_F(CurlPrefetchDownloadsTest, emptyListDiscardsWhatWasNotAskedFor)
{
    const Downloads downloads = serve(5);
    server.on(nameOf(2), FaultReply::ok(bodyOf(2)).silentAt(6'000));
    announce(downloads);
    waitForBody(downloads[0]);
    EXPECT_THAT(files(), AllOf(SizeIs(Ge(2u)), Each(AllOf(StartsWith("."), EndsWith(".orv-new")))));
    EXPECT_LT(timeOf([&] { curl.prefetchDownloads({}); }), 1s);
    EXPECT_THAT(files(), IsEmpty());
    EXPECT_TRUE(get(downloads[0]));
    EXPECT_EQ(server.requestsFor(nameOf(0)).size(), 2u);
}

TEST_F(CurlPrefetchDownloadsTest, furtherListTakesThePlaceOfTheFormerOne)
{
    const Downloads downloads = serve(10);
    announce({downloads.begin(), downloads.begin() + 5});
    waitForBody(downloads[0]);
    announce({downloads.begin() + 5, downloads.end()});
    waitForBody(downloads[5]);
    EXPECT_TRUE(get(downloads[0]));
    EXPECT_TRUE(get(downloads[5]));
    EXPECT_EQ(server.requestsFor(nameOf(0)).size(), 2u);
    EXPECT_EQ(server.requestsFor(nameOf(5)).size(), 1u);
}

TEST_F(CurlPrefetchDownloadsTest, threadMayEndBeforeItsBodiesWereAskedFor)
{
    const Downloads downloads = serve(8);
    server.on(nameOf(1), FaultReply::ok(bodyOf(1)).silentAt(6'000));
    const auto time = timeOf([&] {
        std::thread([&] {
            announce(downloads);
            waitForBody(downloads[0]);
        }).join();
    });
    EXPECT_LT(time, 5s);
    EXPECT_THAT(files(), IsEmpty());
}

TEST_F(CurlPrefetchDownloadsTest, bodyLongerThanAnnouncedIsAskedForInTurn)
{
    Downloads downloads = serve(6);
    downloads[3].size = 100;
    server.on(nameOf(4), FaultReply::chunked({bodyOf(4), "and more"}).pauseAt(0, delay));
    announce(downloads);
    waitForBody(downloads[5]);
    for (const auto& download : downloads)
        EXPECT_TRUE(get(download)) << reason;
    EXPECT_EQ(readFile(downloads[3].target), bodyOf(3));
    EXPECT_EQ(readFile(downloads[4].target), bodyOf(4) + "and more");
}

TEST_F(CurlPrefetchDownloadsTest, bodyLongerThanAnnouncedMayGrowInItsTurn)
{
    Downloads downloads = serve(4);
    server.on(nameOf(0), FaultReply::chunked({bodyOf(0), "and more"}).pauseAt(9'000, 200ms));
    announce(downloads);
    EXPECT_TRUE(get(downloads[0])) << reason;
    EXPECT_EQ(readFile(downloads[0].target), bodyOf(0) + "and more");
    EXPECT_EQ(server.requestsFor(nameOf(0)).size(), 1u);
}

TEST_F(CurlPrefetchDownloadsTest, redirectOfOneIsFollowedWhenItIsAskedFor)
{
    const Downloads downloads = serve(5);
    server.on(nameOf(2), FaultReply::redirect("/elsewhere"));
    server.on("/elsewhere", FaultReply::ok("from elsewhere"));
    announce(downloads);
    for (const auto& download : downloads)
        EXPECT_TRUE(get(download));
    EXPECT_EQ(readFile(downloads[2].target), "from elsewhere");
    EXPECT_EQ(server.requestsFor("/elsewhere").size(), 1u);
}

TEST_F(CurlPrefetchDownloadsTest, otherRequestForTheTargetIsMadeAsAsked)
{
    const Downloads downloads = serve(5);
    announce(downloads);
    waitForBody(downloads[0]);
    Curl::DownloadRequest other = downloads[0];
    other.url = server.url("/other");
    server.on("/other", FaultReply::ok("other"));
    EXPECT_TRUE(get(other));
    EXPECT_EQ(readFile(other.target), "other");
    Curl::DownloadRequest conditional = downloads[1];
    conditional.headerLines = {"X-Number: another"};
    EXPECT_TRUE(get(conditional));
    EXPECT_EQ(server.requestsFor(nameOf(1)).back().header("X-Number"), "another");
    EXPECT_THAT(files(), testing::IsSupersetOf({"0.download", "1.download"}));
}

TEST_F(CurlPrefetchDownloadsTest, twoDownloadsToOneTargetAreMadeInTurn)
{
    Downloads downloads = serve(5);
    downloads[3].target = downloads[1].target;
    announce(downloads);
    const auto time = timeOf([&] {
        for (const auto& download : downloads) {
            EXPECT_TRUE(get(download));
            const std::string number = download.headerLines[0].substr(10);
            EXPECT_EQ(readFile(download.target), bodyOf(std::stoi(number)));
        }
    });
    EXPECT_LT(time, 3s);
    EXPECT_THAT(files(), SizeIs(4));
}

TEST_F(CurlPrefetchDownloadsTest, otherRequestsMayStandInBetween)
{
    const Downloads downloads = serve(20);
    server.on("/file", FaultReply::ok(std::string(100'000, 'f')));
    announce(downloads);
    EXPECT_TRUE(get(downloads[0]));
    EXPECT_TRUE(fetch(server.url("/file")));
    EXPECT_TRUE(browse(server.url("/file")));
    for (std::size_t i = 1; i < downloads.size(); ++i)
        EXPECT_TRUE(get(downloads[i]));
    EXPECT_EQ(server.requestsFor(nameOf(19)).size(), 1u);
}

TEST_F(CurlPrefetchDownloadsTest, targetThatCannotBeWrittenFailsInItsTurn)
{
    Downloads downloads = serve(5);
    downloads[2].target = folder.file("missing/2.download");
    announce(downloads);
    for (std::size_t i = 0; i < downloads.size(); ++i)
        EXPECT_EQ(get(downloads[i]), i != 2);
    EXPECT_FALSE(get(downloads[2]));
    EXPECT_EQ(reason, std::string("write error: ") + std::strerror(ENOENT));
}

TEST_F(CurlPrefetchDownloadsTest, addressesOutsideOfTheWebArePassedOver)
{
    Downloads downloads = serve(5);
    downloads[1].url = "file:///etc/passwd";
    downloads[2].url = "";
    announce(downloads);
    for (std::size_t i = 0; i < downloads.size(); ++i)
        EXPECT_EQ(get(downloads[i]), i != 1 && i != 2);
}

namespace {

class CurlPrefetchDownloadsLimitsTest : public CurlDownloadsFixture
{
protected:
    CurlPrefetchDownloadsLimitsTest() : CurlDownloadsFixture(limits()) {}

    static HttpLimits limits()
    {
        HttpLimits limits = shortLimits();
        limits.totalTimeout = 10s;
        limits.progressInterval = 20ms;
        return limits;
    }
};

class CurlPrefetchDownloadsFullDiskTest : public CurlDownloadsFixture
{
protected:
    CurlPrefetchDownloadsFullDiskTest() : CurlDownloadsFixture(limits()) {}

    static HttpLimits limits()
    {
        HttpLimits limits;
        limits.spare.bytes = std::int64_t{1} << 60;
        limits.spare.share = 1; // the whole disk
        return limits;
    }
};

} // namespace

TEST_F(CurlPrefetchDownloadsLimitsTest, silenceInItsTurnIsToldAsEver)
{
    const Downloads downloads = serve(5);
    server.on(nameOf(0), FaultReply::ok(bodyOf(0)).silentAt(5'000));
    announce(downloads);
    header(server.url("/first"));
    Listener listener;
    listener.onCall = [&] { listener.abortAt = listener.counts.size() == 5 ? 0 : -1; };
    EXPECT_FALSE(get(downloads[0], &listener));
    EXPECT_EQ(errorNumber, Curl::kAbortedByCallback);
    EXPECT_THAT(listener.counts, SizeIs(5));
    EXPECT_EQ(listener.counts[0], 4096);
    EXPECT_TRUE(get(downloads[1]));
}

TEST_F(CurlPrefetchDownloadsLimitsTest, silentOneWithoutAProgressFunctionEndsByItself)
{
    const Downloads downloads = serve(5);
    server.on(nameOf(0), FaultReply::ok(bodyOf(0)).silentAt(5'000));
    announce(downloads);
    EXPECT_LT(timeOf([&] { EXPECT_FALSE(get(downloads[0])); }), 3s);
    EXPECT_EQ(reason, "Operation too slow");
    EXPECT_TRUE(get(downloads[1]));
}

TEST_F(CurlPrefetchDownloadsFullDiskTest, diskThatIsFullFailsEachInItsTurn)
{
    const Downloads downloads = serve(5);
    announce(downloads);
    for (const auto& download : downloads) {
        EXPECT_FALSE(get(download));
        EXPECT_THAT(reason, testing::StartsWith("disk full: "));
    }
    EXPECT_THAT(files(), IsEmpty());
}

} // namespace test
