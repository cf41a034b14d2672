// The service's report about the last request of the calling thread.
#include <map>
#include <thread>

#include "tests/host/http/CurlFixture.h"

using testing::HasSubstr;

namespace test {

namespace {

class CurlAnswerTest : public CurlFixture
{
protected:
    CurlAnswerTest() : CurlFixture(shortLimits()) {}
};

} // namespace

TEST_F(CurlAnswerTest, everyKindOfRequestTellsItsFinalAnswer)
{
    server.on("/from", FaultReply::redirect("/a"));
    server.on("/a", FaultReply::ok("body", {"ETag: \"t\""}));
    const auto expectAnswer = [&](const char* kind) {
        const Curl::Answer answer = curl.lastAnswer();
        EXPECT_EQ(answer.status, 200) << kind;
        EXPECT_THAT(answer.headerText, HasSubstr("ETag: \"t\"")) << kind;
        EXPECT_EQ(answer.reason, "") << kind;
        EXPECT_EQ(answer.url, server.url("/a")) << kind;
    };
    ASSERT_TRUE(header(server.url("/from")));
    expectAnswer("header");
    ASSERT_TRUE(browse(server.url("/from")));
    expectAnswer("page");
    ASSERT_TRUE(fetch(server.url("/from")));
    expectAnswer("download");
    ASSERT_EQ(curl.urlAfterRedirects(server.url("/from")), server.url("/a"));
    expectAnswer("redirects");
}

TEST_F(CurlAnswerTest, errorStatusIsAnAnswer)
{
    server.on("/a", FaultReply::status(503, "busy", {"Retry-After: 7"}));
    ASSERT_TRUE(header(server.url("/a")));
    EXPECT_EQ(curl.lastAnswer().status, 503);
    EXPECT_THAT(curl.lastAnswer().headerText, HasSubstr("Retry-After: 7"));
    EXPECT_EQ(curl.lastAnswer().reason, "");
    ASSERT_FALSE(fetch(server.url("/a")));
    EXPECT_EQ(curl.lastAnswer().status, 503);
    EXPECT_EQ(curl.lastAnswer().reason, "HTTP 503");
}

TEST_F(CurlAnswerTest, missingAnswerHasAReasonAndNoStatus)
{
    server.on("/a", FaultReply::ok("body"));
    ASSERT_TRUE(header(server.url("/a")));
    const std::string url = server.url("/silent");
    server.on("/silent", FaultReply::silence());
    EXPECT_FALSE(header(url));
    EXPECT_EQ(curl.lastAnswer().status, 0);
    EXPECT_EQ(curl.lastAnswer().headerText, "");
    EXPECT_EQ(curl.lastAnswer().reason, "Operation timed out");
    EXPECT_EQ(curl.lastAnswer().url, url);
    EXPECT_FALSE(header("no address"));
    EXPECT_EQ(curl.lastAnswer().reason, "not a web address");
    server.stopListening();
    server.dropConnections();
    EXPECT_EQ(curl.urlAfterRedirects(url), "");
    EXPECT_THAT(curl.lastAnswer().reason, HasSubstr("connect"));
}

TEST_F(CurlAnswerTest, headerThatIsTooLargeIsToldAsSuch)
{
    const std::string longText(301 * 1024, 'x');
    std::string manyLines = "X-Many: 0";
    for (int count = 0; count < 301; ++count)
        manyLines += "\r\nX-Many: " + std::string(1024, 'x');
    const std::map<std::string, FaultReply> replies = {
        {"/line", FaultReply::ok("body", {"X-Long: " + longText})},
        {"/lines", FaultReply::ok("body", {manyLines})},
        {"/status", FaultReply::raw("HTTP/1.1 200 " + longText + "\r\n\r\n")},
        {"/endless", FaultReply::raw("HTTP/1.1 200 OK\r\nX-Endless: " + longText).silentAt(301 * 1024)},
    };
    for (const auto& [path, reply] : replies) {
        server.on(path, reply);
        EXPECT_FALSE(header(server.url(path))) << path;
        EXPECT_EQ(curl.lastAnswer().reason, "header too large") << path;
        EXPECT_EQ(curl.lastAnswer().status, 0) << path;
        EXPECT_FALSE(fetch(server.url(path))) << path;
        EXPECT_EQ(reason, "header too large") << path;
        EXPECT_EQ(curl.urlAfterRedirects(server.url(path)), "") << path;
        EXPECT_EQ(curl.lastAnswer().reason, "header too large") << path;
    }
}

TEST_F(CurlAnswerTest, closedAddressTellsWhatItWasClosedFor)
{
    server.stopListening();
    for (int i = 0; i < 3; ++i)
        EXPECT_FALSE(header(server.url("/a")));
    EXPECT_FALSE(header(server.url("/a")));
    EXPECT_THAT(curl.lastAnswer().reason, HasSubstr("no answer from 127.0.0.1:"));
    EXPECT_THAT(curl.lastAnswer().reason, HasSubstr("a moment ago: Failed to connect"));
}

TEST_F(CurlAnswerTest, cutBodyKeepsItsHeader)
{
    server.on("/a", FaultReply::ok("0123456789", {"ETag: \"t\""}).cutBodyAt(4));
    EXPECT_FALSE(fetch(server.url("/a")));
    EXPECT_EQ(curl.lastAnswer().status, 200);
    EXPECT_THAT(curl.lastAnswer().headerText, HasSubstr("ETag: \"t\""));
    EXPECT_EQ(curl.lastAnswer().reason, reason);
}

TEST_F(CurlAnswerTest, answerThatWasAskedForAheadCountsWhenItIsTaken)
{
    server.on("/a", FaultReply::ok("", {"ETag: \"a\""}));
    server.on("/b", FaultReply::ok("", {"ETag: \"b\""}));
    curl.prefetchHeaders({{server.url("/a"), {}}, {server.url("/b"), {}}});
    ASSERT_TRUE(header(server.url("/a")));
    EXPECT_THAT(curl.lastAnswer().headerText, HasSubstr("\"a\""));
    ASSERT_TRUE(header(server.url("/b")));
    EXPECT_THAT(curl.lastAnswer().headerText, HasSubstr("\"b\""));
}

TEST_F(CurlAnswerTest, eachThreadHasItsOwn)
{
    server.on("/a", FaultReply::ok(""));
    ASSERT_TRUE(header(server.url("/a")));
    std::thread([&] { EXPECT_EQ(curl.lastAnswer().status, 0); }).join();
    EXPECT_EQ(curl.lastAnswer().status, 200);
}

TEST_F(CurlAnswerTest, encodedBodyIsNotStored)
{
    for (const char* coding : {"gzip", "br", "x-own"}) {
        server.on("/a", FaultReply::gzipped("plain").withHeader(std::string("Content-Encoding: ") + coding));
        const std::string expected = std::string("the body is encoded (Content-Encoding: ") + coding + ")";
        EXPECT_FALSE(fetch(server.url("/a")));
        EXPECT_EQ(reason, expected);
        EXPECT_EQ(curl.lastAnswer().status, 200);
        EXPECT_FALSE(browse(server.url("/a")));
        EXPECT_EQ(body, "");
        EXPECT_EQ(curl.lastAnswer().reason, expected);
        EXPECT_TRUE(header(server.url("/a")));
    }
    server.on("/a", FaultReply::ok("plain", {"Content-Encoding: Identity"}));
    EXPECT_TRUE(fetch(server.url("/a"))) << reason;
    EXPECT_TRUE(browse(server.url("/a")));
}

TEST_F(CurlAnswerTest, noCacheOnTheWayMayAnswer)
{
    server.on("/a", FaultReply::ok(""));
    ASSERT_TRUE(header(server.url("/a")));
    ASSERT_TRUE(browse(server.url("/a")));
    ASSERT_TRUE(fetch(server.url("/a")));
    for (const FaultRequest& request : server.requests())
        EXPECT_EQ(request.header("Cache-Control"), "no-cache");
    ASSERT_TRUE(header(server.url("/a"), {"cache-control: max-age=0"}));
    EXPECT_EQ(server.requests().back().header("Cache-Control"), "max-age=0");
}

} // namespace test
