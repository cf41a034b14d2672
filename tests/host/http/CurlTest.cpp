#include <cerrno>
#include <cstring>
#include <sys/stat.h>
#include <thread>

#include "tests/host/http/CurlFixture.h"
#include "tests/support/StubServices.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace test {

namespace {

class CurlTest : public CurlFixture
{
};

/// A body in which every byte depends on its position.
std::string patterned(std::size_t size)
{
    std::string text(size, 0);
    for (std::size_t i = 0; i < size; ++i)
        text[i] = static_cast<char>((i * 31 + i / 256) & 0xFF);
    return text;
}

} // namespace

TEST_F(CurlTest, downloadedFileIsTheBody)
{
    const std::string content = patterned(1'000'003);
    server.on("/a", FaultReply::ok(content));
    EXPECT_TRUE(fetch(server.url("/a")));
    EXPECT_EQ(readFile(target()), content);
    EXPECT_THAT(files(), ElementsAre("a.orvlib"));
    EXPECT_EQ(server.requests().front().method, "GET");
}

TEST_F(CurlTest, downloadReplacesTheTarget)
{
    folder.write("a.orvlib", "old and longer than the new one");
    server.on("/a", FaultReply::ok("new"));
    EXPECT_TRUE(curl.download_to_location(server.url("/a"), target(), reason));
    EXPECT_EQ(readFile(target()), "new");
}

TEST_F(CurlTest, downloadGoesToAFreshTemporaryFile)
{
    ScopedHost host;
    server.on("/a", FaultReply::ok("body"));
    const fileString first = curl.download(server.url("/a"));
    const fileString second = curl.download(server.url("/a"));
    EXPECT_NE(first, second);
    EXPECT_EQ(readFile(first), "body");
    EXPECT_THAT(first.toNativeString(), StartsWith(host.paths().getTempPath().toNativeString()));
    EXPECT_TRUE(curl.download(server.url("/missing")).empty());
    EXPECT_EQ(listTree(host.paths().getTempPath().toNativeString()).size(), 2u);
}

TEST_F(CurlTest, emptyBodyGivesAnEmptyFile)
{
    server.on("/a", FaultReply::ok(""));
    EXPECT_TRUE(fetch(server.url("/a")));
    EXPECT_EQ(readFile(target()), "");
}

TEST_F(CurlTest, anyStatusBut200IsAFailedDownload)
{
    for (const int code : {201, 202, 203, 204, 206, 300, 304, 400, 401, 403, 404, 410, 416, 500, 503, 599}) {
        server.on("/a", FaultReply::status(code, code == 204 || code == 304 ? "" : "error page"));
        folder.write("a.orvlib", "old");
        EXPECT_FALSE(fetch(server.url("/a")));
        EXPECT_EQ(reason, "HTTP " + std::to_string(code));
        EXPECT_NE(errorNumber, 0);
        EXPECT_NE(errorNumber, Curl::kAbortedByCallback);
        EXPECT_EQ(readFile(target()), "old");
        EXPECT_THAT(files(), ElementsAre("a.orvlib"));
    }
}

TEST_F(CurlTest, chunkedAndUnmeasuredBodiesArrive)
{
    server.on("/chunked", FaultReply::chunked({"one, ", "two, ", "three"}));
    server.on("/until-close", FaultReply::untilClose("to the end"));
    EXPECT_TRUE(fetch(server.url("/chunked")));
    EXPECT_EQ(readFile(target()), "one, two, three");
    EXPECT_TRUE(fetch(server.url("/until-close")));
    EXPECT_EQ(readFile(target()), "to the end");
}

TEST_F(CurlTest, noEncodingIsOffered)
{
    server.on("/a", FaultReply::ok("as served"));
    EXPECT_TRUE(fetch(server.url("/a")));
    EXPECT_EQ(server.requests().front().header("Accept-Encoding"), "");
}

TEST_F(CurlTest, requestsNameTheLibrary)
{
    EXPECT_TRUE(header(server.url("/a")));
    EXPECT_EQ(server.requests().front().header("User-Agent"), "libOrvLibrary");
}

TEST_F(CurlTest, headerLinesAreSentAsGiven)
{
    server.on("/a", FaultReply::ok(""));
    EXPECT_TRUE(header(server.url("/a"), {"If-None-Match: \"a b\"", "X-Empty:", "X-Other: 1", "X-Short:1"}));
    const FaultRequest request = server.requests().front();
    EXPECT_EQ(request.method, "HEAD");
    EXPECT_EQ(request.header("If-None-Match"), "\"a b\"");
    EXPECT_EQ(request.header("X-Other"), "1");
    EXPECT_EQ(request.header("X-Short"), "1");
    EXPECT_THAT(request.headerLines, testing::Contains(StartsWith("X-Empty:")));
}

TEST_F(CurlTest, strayCarriageReturnInAHeaderLineIsNotSent)
{
    server.on("/a", FaultReply::ok(""));
    EXPECT_TRUE(header(server.url("/a"), {"If-None-Match: \"ab\r\"", "X: 1\r\nY: 2"}));
    const FaultRequest request = server.requests().front();
    EXPECT_EQ(request.header("If-None-Match"), "\"ab\"");
    EXPECT_EQ(request.header("X"), "1Y: 2");
    EXPECT_EQ(request.header("Y"), "");
}

TEST_F(CurlTest, namesWithBlanksAndForeignLettersAreAskedForEncoded)
{
    server.on("/content", FaultReply::ok("body"));
    EXPECT_TRUE(fetch(server.url("/content?&library=T\xc3\xbcren & 100% a+b%20.orvlib&x=\xfc")));
    EXPECT_EQ(server.requests().front().target,
              "/content?&library=T%C3%BCren%20&%20100%25%20a+b%20.orvlib&x=%FC");
}

TEST_F(CurlTest, dotsInThePathAreSentAsBuilt)
{
    server.on("/a/../b/./c", FaultReply::ok("x"));
    EXPECT_TRUE(fetch(server.url("/a/../b/./c")));
}

TEST_F(CurlTest, headerIsHandedOutForAnyStatus)
{
    for (const int code : {200, 204, 206, 300, 304, 400, 401, 403, 404, 407, 410, 500, 503, 599}) {
        server.on("/a", FaultReply::status(code, "", {"ETag: \"x\""}));
        EXPECT_TRUE(header(server.url("/a"))) << code;
        EXPECT_EQ(status, code);
        EXPECT_THAT(headerText, StartsWith("HTTP/1.1 " + std::to_string(code)));
        EXPECT_THAT(headerText, HasSubstr("\r\nETag: \"x\"\r\n"));
    }
}

TEST_F(CurlTest, unchangedAnswerWithALengthIsAnAnswer)
{
    server.on("/a",
              FaultReply::raw("HTTP/1.1 304 Unchanged\r\nContent-Length: 123456\r\nETag: \"x\"\r\n\r\n"));
    EXPECT_TRUE(header(server.url("/a")));
    EXPECT_EQ(status, 304);
    EXPECT_THAT(headerText, HasSubstr("Content-Length: 123456"));
}

TEST_F(CurlTest, headerKeepsALengthThatIsNoNumber)
{
    for (const std::string length : {"abc", "-5", "", "12x", "99999999999999999999999"}) {
        server.on("/a", FaultReply::raw("HTTP/1.1 200 OK\r\nContent-Length: " + length + "\r\n\r\n").close());
        EXPECT_TRUE(header(server.url("/a"))) << length;
        EXPECT_THAT(headerText, HasSubstr("Content-Length:"));
    }
}

TEST_F(CurlTest, headerIsTheFinalBlockAloneAndUnfolded)
{
    server.on("/first", FaultReply::redirect("/a"));
    server.on("/a", FaultReply::raw("HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 103 Early Hints\r\nLink: x\r\n\r\n"
                                    "HTTP/1.1 200 OK\r\nETag:\r\n \"folded\"\r\nContent-Length: 0\r\n\r\n"));
    EXPECT_TRUE(header(server.url("/first")));
    EXPECT_EQ(headerText, "HTTP/1.1 200 OK\r\nETag: \"folded\"\r\nContent-Length: 0\r\n\r\n");
    EXPECT_EQ(status, 200);
}

TEST_F(CurlTest, failedHeaderRequestTouchesNoOutput)
{
    server.on("/a", FaultReply::raw("").close());
    EXPECT_FALSE(header(server.url("/a")));
    EXPECT_EQ(headerText, "untouched");
    EXPECT_EQ(status, -1);
}

TEST_F(CurlTest, pageOfAnErrorIsHandedOutWithAFailure)
{
    server.on("/good", FaultReply::ok("page"));
    server.on("/gone", FaultReply::status(404, "not published"));
    EXPECT_TRUE(browse(server.url("/good")));
    EXPECT_EQ(body, "page");
    EXPECT_FALSE(browse(server.url("/gone")));
    EXPECT_EQ(body, "not published");
    EXPECT_EQ(server.requests().back().method, "GET");
    server.on("/bad", FaultReply::status(400, "bad request"));
    EXPECT_FALSE(browse(server.url("/bad")));
    EXPECT_EQ(body, "bad request");
}

TEST_F(CurlTest, pageReplacesWhatTheBodyHeld)
{
    body = "former";
    server.on("/a", FaultReply::ok(""));
    EXPECT_TRUE(browse(server.url("/a")));
    EXPECT_EQ(body, "");
}

TEST_F(CurlTest, pageOfARedirectIsTheBodyWhenRedirectsAreNotFollowed)
{
    server.on("/a", FaultReply::status(302, "moved", {"Location: /b"}));
    server.on("/b", FaultReply::ok("there"));
    EXPECT_TRUE(browse(server.url("/a"), false));
    EXPECT_EQ(body, "moved");
    EXPECT_TRUE(browse(server.url("/a"), true));
    EXPECT_EQ(body, "there");
}

TEST_F(CurlTest, manyHeaderRequestsTakeOneConnection)
{
    server.otherwise([](const FaultRequest&) { return FaultReply::ok("x"); });
    for (int i = 0; i < 100; ++i)
        EXPECT_TRUE(header(server.url("/" + std::to_string(i))));
    EXPECT_EQ(server.connectionCount(), 1);
}

TEST_F(CurlTest, allKindsOfRequestsShareTheConnection)
{
    server.on("/redirect", FaultReply::redirect("/content?"));
    server.otherwise([](const FaultRequest&) { return FaultReply::ok("x"); });
    EXPECT_EQ(curl.urlAfterRedirects(server.url("/redirect")), server.url("/content?"));
    EXPECT_TRUE(browse(server.url("/index")));
    EXPECT_TRUE(header(server.url("/a")));
    server.on("/gone", FaultReply::status(404, std::string(1000, 'x')));
    EXPECT_FALSE(fetch(server.url("/gone")));
    EXPECT_TRUE(fetch(server.url("/a")));
    EXPECT_EQ(server.connectionCount(), 1);
}

TEST_F(CurlTest, connectionThatDiedMeanwhileIsReplaced)
{
    server.on("/a", FaultReply::ok("x"));
    EXPECT_TRUE(header(server.url("/a")));
    server.dropConnections();
    EXPECT_TRUE(header(server.url("/a")));
    EXPECT_TRUE(fetch(server.url("/a")));
    EXPECT_EQ(server.connectionCount(), 2);
}

TEST_F(CurlTest, threadsDoNotShareConnections)
{
    server.on("/a", FaultReply::ok("x"));
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([this] {
            std::string text;
            std::int64_t code = 0;
            for (int k = 0; k < 20; ++k)
                EXPECT_TRUE(curl.getURLHeader(server.url("/a"), {}, text, code));
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(server.connectionCount(), 4);
}

TEST_F(CurlTest, digestIsChecked)
{
    const std::string right = "Repr-Digest: sha-256=:ungWv48Bz+pBQUDeXa4iI7ADYaOWF3qctBD/YfIAFa0=:";
    server.on("/right", FaultReply::ok("abc", {right}));
    server.on("/wrong", FaultReply::ok("abd", {right}));
    EXPECT_TRUE(fetch(server.url("/right")));
    folder.write("a.orvlib", "old");
    EXPECT_FALSE(fetch(server.url("/wrong")));
    EXPECT_EQ(reason, "digest mismatch");
    EXPECT_EQ(readFile(target()), "old");
    EXPECT_THAT(files(), ElementsAre("a.orvlib"));
}

TEST_F(CurlTest, downloadableIsAWebAddress)
{
    EXPECT_TRUE(curl.downloadable("HTTPS://example.org/a.orvlibz"));
    EXPECT_FALSE(curl.downloadable("/home/a.orvlibz"));
    EXPECT_FALSE(curl.downloadable("file:///home/a.orvlibz"));
}

TEST_F(CurlTest, onlyWebAddressesAreFetched)
{
    const fileString secret = folder.write("secret", "x");
    for (const std::string& url : {"file://" + secret.toNativeString(), secret.toNativeString(),
                                   std::string("ftp://127.0.0.1/a"), std::string()}) {
        EXPECT_FALSE(fetch(url)) << url;
        EXPECT_FALSE(reason.empty());
        EXPECT_FALSE(header(url));
        EXPECT_FALSE(browse(url));
        EXPECT_EQ(curl.urlAfterRedirects(url), "");
    }
    EXPECT_THAT(files(), ElementsAre("secret"));
}

TEST_F(CurlTest, diskFailuresGiveTheSystemsText)
{
    server.on("/a", FaultReply::ok("x"));
    EXPECT_FALSE(curl.download_to_location(server.url("/a"), folder.file("missing/a"), reason));
    EXPECT_EQ(reason, std::string("write error: ") + std::strerror(ENOENT));
    folder.write("b/c", "");
    EXPECT_FALSE(curl.download_to_location(server.url("/a"), folder.file("b"), reason));
    EXPECT_EQ(reason, std::string("write error: ") + std::strerror(EISDIR));
    EXPECT_FALSE(curl.download_to_location(server.url("/a"), fileString(), reason));
    EXPECT_THAT(reason, StartsWith("write error: "));
    EXPECT_THAT(files(), ElementsAre("b/", "b/c"));
}

TEST_F(CurlTest, targetThatCannotBeReplacedAtTheEndStays)
{
    server.on("/a", FaultReply::ok(std::string(8192, 'a')));
    const auto putFolderThere = [](void* self, double, double, double, double) {
        static_cast<CurlTest*>(self)->folder.write("a.orvlib/kept", "x");
        return 0;
    };
    EXPECT_FALSE(fetch(server.url("/a"), {}, putFolderThere, this));
    EXPECT_EQ(reason, std::string("write error: ") + std::strerror(EISDIR));
    EXPECT_THAT(files(), ElementsAre("a.orvlib/", "a.orvlib/kept"));
}

TEST_F(CurlTest, proxyIsAskedForEveryAddressUntilItIsTakenAway)
{
    server.otherwise([](const test::FaultRequest& request) { return FaultReply::ok(request.target); });
    curl.setProxy(server.url(""));
    const std::string url = "http://catalogs.invalid/a.orvlib?key=1";
    EXPECT_TRUE(fetch(url));
    EXPECT_EQ(test::readFile(target()), url);
    EXPECT_TRUE(browse(url));
    EXPECT_EQ(body, url);
    EXPECT_TRUE(header(url));
    EXPECT_EQ(curl.urlAfterRedirects(url), url);
    curl.setProxy("");
    EXPECT_FALSE(browse(url)) << "there is no such host";
    EXPECT_TRUE(browse(server.url("/a")));
    EXPECT_EQ(body, "/a");
}

TEST_F(CurlTest, answerOfAProxyToTheTunnelIsNoAnswerOfTheServer)
{
    const std::string url = "https://catalogs.invalid/a";
    // The proxy refuses the tunnel, or opens it and then closes the connection.
    const FaultReply replies[] = {FaultReply::status(403),
                                  FaultReply::raw("HTTP/1.1 200 Connection established\r\n\r\n").close()};
    for (const FaultReply& reply : replies) {
        server.otherwise([reply](const test::FaultRequest&) { return reply; });
        curl.setProxy(server.url(""));
        EXPECT_FALSE(header(url));
        EXPECT_FALSE(browse(url));
        EXPECT_FALSE(fetch(url));
        EXPECT_EQ(curl.urlAfterRedirects(url), "");
        EXPECT_EQ(curl.lastAnswer().status, 0);
        EXPECT_NE(curl.lastAnswer().reason, "");
    }
    EXPECT_EQ(server.requests().front().method, "CONNECT");
}

TEST_F(CurlTest, proxyOfTheProcessIsThatOfTheDefaultService)
{
    server.otherwise([](const test::FaultRequest& request) { return FaultReply::ok(request.target); });
    Curl::setProxy(server.url(""));
    EXPECT_TRUE(Curl::get().browseURL("http://catalogs.invalid/a", {}, body, true, 0));
    Curl::setProxy("");
    EXPECT_EQ(body, "http://catalogs.invalid/a");
}

TEST_F(CurlTest, serviceOfTheHostsNeedsNeitherToSendAheadNorToFollow)
{
    server.on("/redirect", FaultReply::redirect("/to?"));
    test::DeadCurl dead;
    dead.prefetchHeaders({{server.url("/a"), {}}, {server.url("/b"), {}}});
    EXPECT_EQ(dead.urlAfterRedirects(server.url("/redirect")), server.url("/to?"));
    EXPECT_THAT(server.requestsFor("/a"), testing::IsEmpty());
}

TEST_F(CurlTest, requestFromWithinAProgressFunctionIsServed)
{
    server.on("/a", FaultReply::ok(std::string(8192, 'a')));
    server.on("/b", FaultReply::ok("inner"));
    const auto nested = [](void* self, double, double, double, double) {
        auto* test = static_cast<CurlTest*>(self);
        EXPECT_TRUE(test->browse(test->server.url("/b")));
        return 0;
    };
    EXPECT_TRUE(fetch(server.url("/a"), {}, nested, this));
    EXPECT_EQ(body, "inner");
}

TEST_F(CurlTest, exceptionOfAProgressFunctionEndsTheTransfer)
{
    server.on("/a", FaultReply::ok(std::string(8192, 'a')));
    server.on("/silent", FaultReply::silence());
    const auto throwing = [](void*, double, double, double, double) -> int {
        throw std::runtime_error("host");
    };
    for (const char* path : {"/a", "/silent"}) {
        EXPECT_FALSE(fetch(server.url(path), {}, throwing));
        EXPECT_EQ(reason, "host");
        EXPECT_EQ(errorNumber, Curl::kAbortedByCallback);
        EXPECT_THAT(files(), IsEmpty());
    }
    EXPECT_TRUE(fetch(server.url("/a")));
}

TEST_F(CurlTest, otherThingsThatAProgressFunctionThrowsEndItToo)
{
    server.on("/a", FaultReply::ok("a"));
    const auto throwing = [](void*, double, double, double, double) -> int { throw 1; };
    EXPECT_FALSE(fetch(server.url("/a"), {}, throwing));
    EXPECT_EQ(reason, "Callback aborted");
    EXPECT_EQ(errorNumber, Curl::kAbortedByCallback);
}

} // namespace test
