// A "yes" of the cancel question ends every kind of request at any point.
#include <atomic>

#include "tests/host/http/CurlFixture.h"
#include "tests/host/http/SlowNames.h"

using testing::IsEmpty;
using testing::SizeIs;

namespace test {

namespace {

/// How many times the question answers "no" before it answers "yes".
std::atomic<int> patience{0};

bool isOutOfPatience()
{
    return patience-- <= 0;
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
