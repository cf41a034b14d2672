// Downloads whose partial file is kept and resumed.
#include <sys/file.h>
#include <unistd.h>

#include "OrvLibrary/host/impl/files/FileHandle_p.h"
#include "tests/host/http/CurlFixture.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace test {

namespace {

const std::string kWhole = "0123456789";

class CurlResumeTest : public CurlFixture
{
protected:
    CurlResumeTest() : CurlFixture(shortLimits()) {}

    bool resume(const std::string& validator = "\"v1\"")
    {
        const auto count = [](void* list, double total, double downloaded, double, double) {
            static_cast<std::vector<std::pair<double, double>>*>(list)->emplace_back(total, downloaded);
            return 0;
        };
        reason.clear();
        errorNumber = 0;
        counts.clear();
        const Curl::ResumableDownload download{
            server.url("/a"), {"X-Own: 1"}, target(), partial(), validator};
        return curl.downloadResumable(download, &counts, count, reason, errorNumber);
    }
    fileString partial() const { return folder.file("a.partial"); }
    /// A reply with the bytes from `from` on.
    static FaultReply rest(std::size_t from, const std::vector<std::string>& lines = {"ETag: \"v1\""})
    {
        std::vector<std::string> all = lines;
        all.push_back("Content-Range: bytes " + std::to_string(from) + "-9/10");
        return FaultReply::status(206, kWhole.substr(from), all);
    }

    std::vector<std::pair<double, double>> counts;
};

} // namespace

TEST_F(CurlResumeTest, cutBodyGoesOnWhereItBroke)
{
    FaultReply cut = FaultReply::ok(kWhole, {"ETag: \"v1\""});
    server.onInTurn("/a", {cut.cutBodyAt(4), rest(4)});
    EXPECT_FALSE(resume(""));
    EXPECT_EQ(server.requests().back().header("Range"), "");
    EXPECT_THAT(files(), ElementsAre("a.partial"));
    EXPECT_EQ(readFile(partial()), "0123");
    EXPECT_TRUE(resume()) << reason;
    EXPECT_EQ(server.requests().back().header("Range"), "bytes=4-");
    EXPECT_EQ(server.requests().back().header("If-Range"), "\"v1\"");
    EXPECT_EQ(server.requests().back().header("X-Own"), "1");
    EXPECT_THAT(files(), ElementsAre("a.orvlib"));
    EXPECT_EQ(readFile(target()), kWhole);
    EXPECT_THAT(counts, ElementsAre(std::pair(10.0, 10.0)));
    EXPECT_EQ(curl.lastAnswer().status, 206);
}

TEST_F(CurlResumeTest, countsStartAtWhatWasThere)
{
    folder.write("a.partial", std::string(100'000, 'x'));
    server.on("/a", FaultReply::status(206, std::string(100'000, 'y'),
                                       {"Content-Range: bytes 100000-199999/200000"}));
    EXPECT_TRUE(resume()) << reason;
    ASSERT_FALSE(counts.empty());
    EXPECT_GT(counts.front().second, 100'000);
    EXPECT_EQ(counts.back(), std::pair(200'000.0, 200'000.0));
    EXPECT_EQ(readFile(target()), std::string(100'000, 'x') + std::string(100'000, 'y'));
}

TEST_F(CurlResumeTest, wholeAnswerReplacesWhatWasThere)
{
    folder.write("a.partial", "old bytes that are longer than the new ones");
    server.on("/a", FaultReply::ok(kWhole, {"ETag: \"v2\""}));
    EXPECT_TRUE(resume()) << reason;
    EXPECT_EQ(readFile(target()), kWhole);
    EXPECT_THAT(files(), ElementsAre("a.orvlib"));
}

TEST_F(CurlResumeTest, answerThatGoesOnElsewhereIsAskedForAnew)
{
    const std::vector<std::string> ranges{"bytes 3-9/10", "bytes 4-8/10", "bytes 4-9/*", "bytes 5-9/10",
                                          "items 4-9/10", "bytes 4-9/9",  "bytes x",     ""};
    for (const std::string& range : ranges) {
        folder.write("a.partial", "0123");
        server.onInTurn("/a", {FaultReply::status(206, kWhole.substr(4), {"Content-Range: " + range}),
                               FaultReply::ok(kWhole)});
        const std::size_t before = server.requests().size();
        EXPECT_TRUE(resume()) << range << ": " << reason;
        EXPECT_EQ(server.requests().size(), before + 2) << range;
        EXPECT_EQ(server.requests().back().header("Range"), "");
        EXPECT_EQ(readFile(target()), kWhole) << range;
    }
}

TEST_F(CurlResumeTest, restOfAnotherVersionIsAskedForAnew)
{
    folder.write("a.partial", "0123");
    server.onInTurn("/a", {rest(4, {"ETag: \"v2\""}), FaultReply::ok(kWhole)});
    EXPECT_TRUE(resume()) << reason;
    EXPECT_EQ(server.requests().size(), 2u);
    EXPECT_EQ(readFile(target()), kWhole);
}

TEST_F(CurlResumeTest, rangeThatCannotBeServedIsAskedForAnew)
{
    folder.write("a.partial", "0123456789 and more");
    server.onInTurn("/a",
                    {FaultReply::status(416, "", {"Content-Range: bytes */10"}), FaultReply::ok(kWhole)});
    EXPECT_TRUE(resume()) << reason;
    EXPECT_EQ(server.requests().size(), 2u);
    EXPECT_EQ(readFile(target()), kWhole);
}

TEST_F(CurlResumeTest, weakTagAndNoTagStartAnew)
{
    server.on("/a", FaultReply::ok(kWhole));
    for (const char* validator : {"", "W/\"v1\""}) {
        folder.write("a.partial", "0123");
        EXPECT_TRUE(resume(validator)) << reason;
        EXPECT_EQ(server.requests().back().header("Range"), "");
    }
}

TEST_F(CurlResumeTest, dateIsAValidator)
{
    const std::string date = "Sat, 21 Nov 2026 10:00:00 GMT";
    folder.write("a.partial", "0123");
    server.on("/a", rest(4, {"Last-Modified: " + date}));
    EXPECT_TRUE(resume(date)) << reason;
    EXPECT_EQ(server.requests().back().header("If-Range"), date);
    EXPECT_EQ(readFile(target()), kWhole);
}

TEST_F(CurlResumeTest, errorsLeaveThePartialFileAlone)
{
    folder.write("a.partial", "0123");
    for (const FaultReply& reply :
         {FaultReply::status(503, "busy"), FaultReply::status(404, "gone"), FaultReply::raw("").close(),
          FaultReply::ok("packed", {"Content-Encoding: gzip"})}) {
        server.on("/a", reply);
        EXPECT_FALSE(resume());
        EXPECT_NE(reason, "");
        EXPECT_EQ(readFile(partial()), "0123");
    }
    EXPECT_THAT(files(), ElementsAre("a.partial"));
}

TEST_F(CurlResumeTest, failureBeforeTheFirstByteLeavesNothing)
{
    server.on("/a", FaultReply::ok(kWhole).cutBodyAt(0));
    EXPECT_FALSE(resume(""));
    EXPECT_THAT(files(), IsEmpty());
}

TEST_F(CurlResumeTest, digestIsOfTheWholeFile)
{
    const std::string whole = "Repr-Digest: sha-256=:hNiYd/DUBB77a/kaFvAkjy/Vc+avBcGflr7bn4gveII=:";
    const std::string wrong = "Repr-Digest: sha-256=:AAAAd/DUBB77a/kaFvAkjy/Vc+avBcGflr7bn4gveII=:";
    folder.write("a.partial", "0123");
    server.on("/a", rest(4, {whole}));
    EXPECT_TRUE(resume()) << reason;
    folder.write("a.partial", "0123");
    server.on("/a", rest(4, {wrong}));
    EXPECT_FALSE(resume());
    EXPECT_EQ(reason, "digest mismatch");
    // The bytes are known to be wrong, so no download may resume from them.
    EXPECT_THAT(files(), ElementsAre("a.orvlib"));
}

TEST_F(CurlResumeTest, partialFileInUseIsLeftAlone)
{
    folder.write("a.partial", "0123");
    const host::FileHandle other = host::openForLock(partial().toNativeString());
    ASSERT_EQ(flock(other.get(), LOCK_EX), 0);
    server.on("/a", rest(4));
    EXPECT_FALSE(resume());
    EXPECT_EQ(reason, "the partial file is in use");
    EXPECT_THAT(server.requests(), IsEmpty());
    EXPECT_EQ(readFile(partial()), "0123");
}

TEST_F(CurlResumeTest, cancelKeepsThePartialFile)
{
    FaultReply reply = FaultReply::ok(kWhole);
    server.on("/a", reply.silentInBodyAt(4));
    const Curl::ResumableDownload download{server.url("/a"), {}, target(), partial(), ""};
    const auto cancel = [](void*, double, double, double, double) { return 1; };
    EXPECT_FALSE(curl.downloadResumable(download, nullptr, cancel, reason, errorNumber));
    EXPECT_EQ(reason, "Callback aborted");
    EXPECT_EQ(errorNumber, Curl::kAbortedByCallback);
    EXPECT_EQ(readFile(partial()), "0123");
}

} // namespace test
