// A "yes" of the cancel question ends every kind of request at any point.
#include <atomic>

#include "tests/host/http/CurlFixture.h"
#include "tests/host/http/SlowNames.h"

using testing::IsEmpty;

namespace test {

namespace {

/// How many times the question answers "no" before it answers "yes".
std::atomic<int> patience{0};

bool isOutOfPatience()
{
    return patience-- <= 0;
}

/// Says "yes" only once, when the patience is over.
bool saysYesOnce()
{
    return patience-- == 0;
}

bool doesNotKnow()
{
    throw 1;
}

/// Uses the service's default timeouts, which are longer than these tests. If a request ends, the cancel
/// question has ended it.
class CurlCancelTest : public CurlFixture
{
protected:
    void SetUp() override
    {
        server.otherwise([](const FaultRequest&) { return FaultReply::silence(); });
        server.on("/body", FaultReply::ok("0123456789").silentInBodyAt(4));
        server.on("/redirect", FaultReply::redirect("/silent"));
        EXPECT_EQ(Curl::setCancelQuestion(&isOutOfPatience), nullptr);
        patience = 20;
    }
    void TearDown() override { EXPECT_EQ(Curl::setCancelQuestion(nullptr), &isOutOfPatience); }

    void expectCancelled()
    {
        EXPECT_EQ(curl.lastAnswer().reason, "Callback aborted");
        EXPECT_LE(patience, 0);
    }
};

/// One "yes" must be enough.
class CurlCancelOnceTest : public CurlCancelTest
{
protected:
    void SetUp() override
    {
        CurlCancelTest::SetUp();
        Curl::setCancelQuestion(&saysYesOnce);
    }
    void TearDown() override
    {
        curl.prefetchHeaders({});
        curl.prefetchDownloads({});
        Curl::setRateLimit(0);
        Curl::setCancelQuestion(&isOutOfPatience);
        CurlCancelTest::TearDown();
    }
    /// Makes requests so that the service has measured a server that takes 15 ms to answer. Only such a
    /// server is asked ahead.
    void learnLatency()
    {
        patience = 1'000'000;
        server.on("/first", FaultReply::ok("").pauseAt(0, std::chrono::milliseconds(15)));
        for (int i = 0; i < 3; ++i)
            EXPECT_TRUE(header(server.url("/first")));
        patience = 5;
    }
    /// Announces four downloads that the server never sends.
    std::vector<Curl::DownloadRequest> announceSilentOnes()
    {
        learnLatency();
        std::vector<Curl::DownloadRequest> downloads;
        for (const char* name : {"0", "1", "2", "3"})
            downloads.push_back({server.url(std::string("/") + name), {}, target(name), 100});
        curl.prefetchDownloads(downloads);
        return downloads;
    }
};

} // namespace

TEST_F(CurlCancelTest, headerRequestEnds)
{
    EXPECT_FALSE(header(server.url("/silent")));
    expectCancelled();
}

TEST_F(CurlCancelTest, pageEnds)
{
    EXPECT_FALSE(browse(server.url("/silent")));
    expectCancelled();
    patience = 20;
    EXPECT_FALSE(browse(server.url("/body")));
    expectCancelled();
}

TEST_F(CurlCancelTest, requestEndsWithoutTheAddressOfTheServer)
{
    const SlowNames names;
    EXPECT_LT(timeOf([&] { EXPECT_FALSE(header("http://slow.test/")); }), std::chrono::seconds(3));
    expectCancelled();
}

TEST_F(CurlCancelTest, questionThatThrowsEndsEachRequestAsAFailure)
{
    Curl::setCancelQuestion(&doesNotKnow);
    EXPECT_FALSE(header(server.url("/silent")));
    EXPECT_FALSE(browse(server.url("/silent")));
    EXPECT_EQ(curl.lastAnswer().reason, "Callback aborted");
    EXPECT_EQ(curl.urlAfterRedirects(server.url("/redirect")), "");
    EXPECT_FALSE(fetch(server.url("/silent")));
    EXPECT_EQ(curl.lastAnswer().reason, "Callback aborted");
    EXPECT_THAT(files(), IsEmpty());
    Curl::setCancelQuestion(&isOutOfPatience);
}

TEST_F(CurlCancelTest, redirectWalkEnds)
{
    EXPECT_EQ(curl.urlAfterRedirects(server.url("/redirect")), "");
    expectCancelled();
}

TEST_F(CurlCancelTest, downloadEndsWithTheNumberOfACancel)
{
    for (const char* path : {"/silent", "/body"}) {
        patience = 20;
        EXPECT_FALSE(fetch(server.url(path)));
        expectCancelled();
        EXPECT_EQ(reason, "Callback aborted");
        EXPECT_EQ(errorNumber, Curl::kAbortedByCallback);
    }
    EXPECT_THAT(files(), IsEmpty());
}

TEST_F(CurlCancelTest, answerThatIsAskedForAheadEnds)
{
    curl.prefetchHeaders({{server.url("/silent1"), {}}, {server.url("/silent2"), {}}});
    EXPECT_FALSE(header(server.url("/silent1")));
    expectCancelled();
    curl.prefetchHeaders({});
}

TEST_F(CurlCancelOnceTest, requestsInTurnEnd)
{
    EXPECT_FALSE(header(server.url("/silent")));
    expectCancelled();
    patience = 20;
    EXPECT_FALSE(browse(server.url("/redirect")));
    expectCancelled();
    patience = 20;
    EXPECT_FALSE(fetch(server.url("/body")));
    expectCancelled();
    EXPECT_EQ(errorNumber, Curl::kAbortedByCallback);
}

TEST_F(CurlCancelOnceTest, answerThatIsAskedForAheadEnds)
{
    learnLatency();
    curl.prefetchHeaders({{server.url("/silent1"), {}}, {server.url("/silent2"), {}}});
    EXPECT_FALSE(header(server.url("/silent1")));
    expectCancelled();
    EXPECT_LE(server.requestsFor("/silent1").size(), 1u);
}

TEST_F(CurlCancelOnceTest, bodyThatIsFetchedAheadEnds)
{
    const auto downloads = announceSilentOnes();
    EXPECT_FALSE(curl.download_to_location(downloads[0].url, downloads[0].target, {}, nullptr, nullptr,
                                           reason, errorNumber));
    expectCancelled();
    EXPECT_EQ(errorNumber, Curl::kAbortedByCallback);
    EXPECT_LE(server.requestsFor("/0").size(), 1u);
}

TEST_F(CurlCancelOnceTest, requestThatWaitsForAConnectionIsNotSent)
{
    curl.setConnectionLimit(2);
    announceSilentOnes();
    EXPECT_FALSE(header(server.url("/turn")));
    expectCancelled();
    EXPECT_THAT(server.requestsFor("/turn"), IsEmpty());
}

TEST_F(CurlCancelOnceTest, waitForTheRateEnds)
{
    server.on("/slow", FaultReply::ok(std::string(10'000, 'x')));
    Curl::setRateLimit(1'000);
    EXPECT_FALSE(fetch(server.url("/slow")));
    expectCancelled();
    EXPECT_EQ(errorNumber, Curl::kAbortedByCallback);
}

TEST_F(CurlCancelOnceTest, waitForTheRateDoesNotKeepTheProcessorBusy)
{
    server.on("/slow", FaultReply::ok(std::string(400, 'x')));
    Curl::setRateLimit(1'000);
    patience = 3'000; // half a second takes about fifty questions
    EXPECT_TRUE(fetch(server.url("/slow"))) << reason;
}

TEST_F(CurlCancelTest, connectionThatIsNotTakenEnds)
{
    server.stopAccepting();
    EXPECT_FALSE(header(server.url("/silent")));
    expectCancelled();
}

TEST_F(CurlCancelTest, nothingIsAskedOnceItIsCancelled)
{
    patience = 0;
    EXPECT_FALSE(header(server.url("/body")));
    expectCancelled();
    EXPECT_FALSE(browse(server.url("/body")));
    expectCancelled();
    EXPECT_EQ(curl.urlAfterRedirects(server.url("/body")), "");
    expectCancelled();
    EXPECT_FALSE(fetch(server.url("/body")));
    expectCancelled();
    EXPECT_EQ(errorNumber, Curl::kAbortedByCallback);
    EXPECT_THAT(server.requests(), IsEmpty());
    EXPECT_EQ(server.connectionCount(), 0);
}

TEST_F(CurlCancelTest, cancelClosesNoAddress)
{
    for (int i = 0; i < 5; ++i) {
        patience = 3;
        EXPECT_FALSE(header(server.url("/silent")));
    }
    server.on("/a", FaultReply::ok(""));
    patience = 1'000'000;
    EXPECT_TRUE(header(server.url("/a")));
}

} // namespace test
