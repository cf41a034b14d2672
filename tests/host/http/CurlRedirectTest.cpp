#include "tests/host/http/CurlFixture.h"

using testing::HasSubstr;
using testing::IsEmpty;

namespace test {

namespace {

class CurlRedirectTest : public CurlFixture
{
protected:
    /// Redirects "/0" to "/1" and so on, `count` times.
    void chain(int count)
    {
        for (int i = 0; i < count; ++i)
            server.on("/" + std::to_string(i), FaultReply::redirect("/" + std::to_string(i + 1)));
        server.on("/" + std::to_string(count), FaultReply::ok("end"));
    }
};

} // namespace

TEST_F(CurlRedirectTest, loneTrailingQuestionMarkSurvives)
{
    server.on("/redirect", FaultReply::redirect("/content?"));
    EXPECT_EQ(curl.urlAfterRedirects(server.url("/redirect")), server.url("/content?"));
    server.on("/absolute", FaultReply::redirect(server.url("/content?")));
    EXPECT_EQ(curl.urlAfterRedirects(server.url("/absolute")), server.url("/content?"));
}

TEST_F(CurlRedirectTest, finalAddressCountsWhateverItsStatus)
{
    for (const int code : {200, 304, 403, 404, 405, 500, 503}) {
        server.on("/redirect", FaultReply::redirect("/final"));
        server.on("/final", FaultReply::status(code));
        EXPECT_EQ(curl.urlAfterRedirects(server.url("/redirect")), server.url("/final")) << code;
    }
    EXPECT_EQ(curl.urlAfterRedirects(server.url("/none?")), server.url("/none?"));
}

TEST_F(CurlRedirectTest, finalAddressDoesNotWaitForABodyThatNeverComes)
{
    server.on("/redirect", FaultReply::redirect("/final"));
    server.on("/final", FaultReply::ok(std::string(100, 'x')).silentInBodyAt(10));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(curl.urlAfterRedirects(server.url("/redirect")), server.url("/final"));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    EXPECT_EQ(curl.lastAnswer().status, 200);
    EXPECT_EQ(curl.lastAnswer().reason, "");
}

TEST_F(CurlRedirectTest, everyKindOfRedirectIsFollowed)
{
    server.on("/b", FaultReply::ok("end"));
    for (const int code : {301, 302, 303, 307, 308}) {
        server.on("/a", FaultReply::redirect("b", code));
        EXPECT_TRUE(fetch(server.url("/a"))) << code;
        EXPECT_EQ(readFile(target()), "end");
        EXPECT_TRUE(header(server.url("/a"))) << code;
        EXPECT_EQ(status, 200);
        EXPECT_EQ(server.requests().back().method, "HEAD");
    }
}

TEST_F(CurlRedirectTest, tenRedirectsAreFollowedAndTheEleventhFails)
{
    chain(10);
    EXPECT_TRUE(fetch(server.url("/0")));
    EXPECT_TRUE(header(server.url("/0")));
    EXPECT_TRUE(browse(server.url("/0")));
    EXPECT_EQ(curl.urlAfterRedirects(server.url("/0")), server.url("/10"));
    chain(11);
    EXPECT_FALSE(fetch(server.url("/0")));
    EXPECT_EQ(reason, "too many redirects");
    EXPECT_FALSE(header(server.url("/0")));
    EXPECT_FALSE(browse(server.url("/0")));
    EXPECT_EQ(curl.urlAfterRedirects(server.url("/0")), "");
    EXPECT_TRUE(fetch(server.url("/1")));
}

TEST_F(CurlRedirectTest, circleIsNoAnswer)
{
    server.on("/a", FaultReply::redirect("/b"));
    server.on("/b", FaultReply::redirect("/a"));
    server.on("/self", FaultReply::redirect("/self"));
    for (const char* path : {"/a", "/self"}) {
        EXPECT_EQ(curl.urlAfterRedirects(server.url(path)), "");
        EXPECT_FALSE(fetch(server.url(path)));
        EXPECT_EQ(reason, "redirects in a circle");
        EXPECT_FALSE(header(server.url(path)));
    }
}

TEST_F(CurlRedirectTest, redirectsOutOfTheWebAreRefused)
{
    const fileString secret = folder.write("secret", "x");
    for (const std::string& location : {"file://" + secret.toNativeString(), std::string("ftp://127.0.0.1/x"),
                                        std::string("javascript:x"), std::string("http://")}) {
        server.on("/a", FaultReply::redirect(location));
        EXPECT_FALSE(fetch(server.url("/a"))) << location;
        EXPECT_THAT(reason, HasSubstr("forbidden"));
        EXPECT_FALSE(header(server.url("/a")));
        EXPECT_FALSE(browse(server.url("/a")));
        EXPECT_EQ(curl.urlAfterRedirects(server.url("/a")), "");
        EXPECT_FALSE(folder.file("a.orvlib").pathExists());
    }
}

TEST_F(CurlRedirectTest, redirectWithoutAPlaceIsAnAnswer)
{
    server.on("/a", FaultReply::status(302, "nowhere"));
    server.on("/b", FaultReply::status(302, "nowhere", {"Location:"}));
    for (const char* path : {"/a", "/b"}) {
        EXPECT_EQ(curl.urlAfterRedirects(server.url(path)), server.url(path));
        EXPECT_TRUE(header(server.url(path)));
        EXPECT_EQ(status, 302);
        EXPECT_FALSE(fetch(server.url(path)));
        EXPECT_EQ(reason, "HTTP 302");
    }
}

TEST_F(CurlRedirectTest, unansweredRedirectHasNoAddress)
{
    server.on("/redirect", FaultReply::redirect("/final"));
    server.on("/final", FaultReply::raw("").close());
    EXPECT_EQ(curl.urlAfterRedirects(server.url("/redirect")), "");
}

TEST_F(CurlRedirectTest, bodyOfARedirectIsNotTold)
{
    server.on("/a", FaultReply::redirect("/b", 302, std::string(20000, 'r')));
    server.on("/b", FaultReply::ok("1234"));
    std::vector<double> counts;
    const auto record = [](void* list, double, double count, double, double) {
        static_cast<std::vector<double>*>(list)->push_back(count);
        return 0;
    };
    EXPECT_TRUE(fetch(server.url("/a"), {}, record, &counts));
    EXPECT_THAT(counts, testing::ElementsAre(4));
    EXPECT_EQ(readFile(target()), "1234");
}

TEST_F(CurlRedirectTest, redirectLeadsOnWhateverBecomesOfItsBody)
{
    const FaultReply sound = FaultReply::redirect("/b", 302, std::string(100, 'r'));
    const FaultReply silent = FaultReply(sound).silentInBodyAt(10);
    const FaultReply cut = FaultReply(sound).cutBodyAt(10);
    const FaultReply large = FaultReply::redirect("/b", 302, std::string(1'000'000, 'r'));
    server.on("/b", FaultReply::ok("1234"));
    for (const FaultReply& reply : {silent, cut, large}) {
        server.on("/a", reply);
        EXPECT_EQ(curl.urlAfterRedirects(server.url("/a")), server.url("/b")) << curl.lastAnswer().reason;
        EXPECT_TRUE(browse(server.url("/a")));
        EXPECT_TRUE(fetch(server.url("/a"))) << reason;
    }
}

TEST_F(CurlRedirectTest, fragmentIsDropped)
{
    server.on("/a", FaultReply::redirect("/b?x#part"));
    server.on("/b", FaultReply::ok(""));
    EXPECT_EQ(curl.urlAfterRedirects(server.url("/a")), server.url("/b?x"));
    EXPECT_EQ(curl.urlAfterRedirects(server.url("/b?#part")), server.url("/b?"));
}

TEST_F(CurlRedirectTest, secretsStayWithTheirServer)
{
    FaultServer other;
    other.on("/b", FaultReply::ok(""));
    server.on("/same", FaultReply::redirect("/b"));
    server.on("/b", FaultReply::ok(""));
    server.on("/a", FaultReply::redirect(other.url("/b")));
    const std::vector<std::string> lines{"Authorization: Basic x", "cookie: y", "X-Other: z"};
    EXPECT_TRUE(header(server.url("/a"), lines));
    EXPECT_EQ(other.requests().front().header("Authorization"), "");
    EXPECT_EQ(other.requests().front().header("Cookie"), "");
    EXPECT_EQ(other.requests().front().header("X-Other"), "z");
    EXPECT_TRUE(header(server.url("/same"), lines));
    EXPECT_EQ(server.requests().back().header("Authorization"), "Basic x");
}

} // namespace test
