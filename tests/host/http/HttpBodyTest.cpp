#include "OrvLibrary/host/impl/http/HttpBody_p.h"

#include <gtest/gtest.h>

#include "tests/support/TempFolder.h"

using namespace std::chrono_literals;

namespace test {

namespace {

class HttpBodyTest : public testing::Test
{
protected:
    HttpLimits limits;
    TempFolder folder;
};

} // namespace

TEST_F(HttpBodyTest, eachAnswerOfAChainMayHaveAsManyBytesThatNobodyNeeds)
{
    limits.errorPageBytes = 1000;
    HttpBody body(limits);
    for (int i = 0; i < 2; ++i) {
        EXPECT_TRUE(body.begin(302, ""));
        EXPECT_TRUE(body.receive(nullptr, 600));
        EXPECT_TRUE(body.receive(nullptr, 400));
    }
    EXPECT_FALSE(body.receive(nullptr, 1));
}

TEST_F(HttpBodyTest, headerLinesCountForTheSpeed)
{
    const auto later = HttpLimits::Clock::now() + 31s;
    FileBody silent(limits, folder.file("a")), slow(limits, folder.file("b"));
    slow.headerReceived(40);
    EXPECT_EQ(silent.watch(later), CURLE_OPERATION_TIMEDOUT);
    EXPECT_EQ(slow.watch(later), CURLE_OK);
}

TEST_F(HttpBodyTest, cancelEndsTheDigestOfThePartialFile)
{
    const std::string header = "HTTP/1.1 206 OK\r\nContent-Range: bytes 4-9/10\r\n"
                               "Repr-Digest: sha-256=:hNiYd/DUBB77a/kaFvAkjy/Vc+avBcGflr7bn4gveII=:\r\n";
    FileBody body(limits, folder.file("a"), folder.write("a.partial", "0123"));
    ASSERT_EQ(body.resume("\"v1\""), 4);
    Curl::setCancelQuestion([] { return true; });
    EXPECT_FALSE(body.begin(206, header));
    Curl::setCancelQuestion(nullptr);
    EXPECT_EQ(body.failure().error, Curl::kAbortedByCallback);
    EXPECT_EQ(body.failure().reason, "Callback aborted");
    EXPECT_TRUE(folder.file("a.partial").pathExists());
}

} // namespace test
