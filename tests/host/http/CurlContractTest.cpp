#include <chrono>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include "tests/host/ServiceContract.h"
#include "tests/support/FaultServer.h"

using test::FaultReply;

namespace {

int countAndGoOn(void* context, double, double, double, double)
{
    ++*static_cast<int*>(context);
    return 0;
}

int abortAtOnce(void*, double, double, double, double)
{
    return 1;
}

class CurlContract : public test::ServiceContract
{
protected:
    fileString target() const { return mFolder.file("download/target"); }

    bool fetch(const std::string& path, Curl::ProgressFunction progress = nullptr, void* context = nullptr)
    {
        return Curl::get().download_to_location(mServer.url(path), target(), {"If-None-Match: \"x\""},
                                                context, progress, mReason, mErrorNumber);
    }

    std::vector<std::string> downloads() const { return test::listTree(mFolder.path() + "/download"); }

    void SetUp() override { mFolder.write("download/target", "old"); }

    test::FaultServer mServer;
    std::string mReason;
    int mErrorNumber = 0;
};

TEST_P(CurlContract, aDownloadReplacesTheTarget)
{
    mServer.on("/a", FaultReply::ok("new"));
    EXPECT_TRUE(fetch("/a"));
    EXPECT_EQ(test::readFile(target()), "new");
    EXPECT_EQ(mServer.requests().front().header("If-None-Match"), "\"x\"");
    EXPECT_TRUE(Curl::get().download_to_location(mServer.url("/a"), target(), mReason));
    EXPECT_THAT(downloads(), testing::ElementsAre("target"));
    expectCalls(test::Service::Curl);
}

TEST_P(CurlContract, announcedDownloadsAreMadeAsOthers)
{
    std::vector<Curl::DownloadRequest> requests;
    for (const char* name : {"/1", "/2", "/3", "/4", "/5"}) {
        mServer.on(name, FaultReply::ok(name).pauseAt(0, std::chrono::milliseconds(7)));
        requests.push_back({mServer.url(name), {}, mFolder.file(std::string("download") + name), 2});
    }
    mServer.on("/3", FaultReply::status(503, "busy"));
    std::string text;
    std::int64_t status = 0;
    EXPECT_TRUE(Curl::get().getURLHeader(mServer.url("/1"), {}, text, status));
    Curl::get().prefetchDownloads(requests);
    for (const auto& request : requests) {
        const bool isBusy = request.url == mServer.url("/3");
        EXPECT_EQ(Curl::get().download_to_location(request.url, request.target, {}, nullptr, nullptr, mReason,
                                                   mErrorNumber),
                  !isBusy);
        EXPECT_EQ(request.target.pathExists(), !isBusy);
    }
    EXPECT_EQ(mReason, "HTTP 503");
    EXPECT_EQ(test::readFile(requests[4].target), "/5");
    Curl::get().prefetchDownloads(requests);
    Curl::get().prefetchDownloads({});
    EXPECT_THAT(downloads(), testing::ElementsAre("1", "2", "4", "5", "target"));
    EXPECT_TRUE(Curl::get().download_to_location(requests[4].url, requests[4].target, mReason));
}

TEST_P(CurlContract, aFailureSaysWhyAndLeavesTheTarget)
{
    mServer.on("/status", FaultReply::status(503, "busy"));
    mServer.on("/cut", FaultReply::ok(std::string(100, 'x')).cutAt(90));
    EXPECT_FALSE(fetch("/status"));
    EXPECT_EQ(mReason, "HTTP 503");
    mReason.clear();
    EXPECT_FALSE(fetch("/cut"));
    EXPECT_NE(mReason, "");
    EXPECT_NE(mErrorNumber, 0);
    EXPECT_TRUE(Curl::get().download(mServer.url("/status")).empty());
    EXPECT_EQ(test::readFile(target()), "old");
    EXPECT_THAT(downloads(), testing::ElementsAre("target"));
}

TEST_P(CurlContract, progressIsToldAtLeastOnceAndMayAbort)
{
    mServer.on("/a", FaultReply::ok("new"));
    int calls = 0;
    EXPECT_TRUE(fetch("/a", countAndGoOn, &calls));
    EXPECT_GE(calls, 1);
    EXPECT_FALSE(fetch("/a", abortAtOnce));
    EXPECT_EQ(mErrorNumber, Curl::kAbortedByCallback);
    EXPECT_NE(mReason, "");
    EXPECT_THAT(downloads(), testing::ElementsAre("target"));
}

TEST_P(CurlContract, aTemporaryDownloadBelongsToTheCaller)
{
    mServer.on("/a", FaultReply::ok("new"));
    const fileString file = Curl::get().download(mServer.url("/a"));
    EXPECT_EQ(test::readFile(file), "new");
}

TEST_P(CurlContract, headersComeWithAnyStatusAndNotWithoutAnAnswer)
{
    mServer.on("/a", FaultReply::status(404, "", {"ETag: \"tag\""}));
    std::string text = "untouched";
    std::int64_t status = -1;
    EXPECT_TRUE(Curl::get().getURLHeader(mServer.url("/a"), {}, text, status));
    EXPECT_EQ(status, 404);
    EXPECT_THAT(text, testing::HasSubstr("ETag: \"tag\""));
    EXPECT_EQ(mServer.requests().front().method, "HEAD");
    text = "untouched";
    mServer.on("/none", FaultReply::raw("").close());
    EXPECT_FALSE(Curl::get().getURLHeader(mServer.url("/none"), {}, text, status));
    EXPECT_EQ(text, "untouched");
    EXPECT_EQ(status, 404);
}

TEST_P(CurlContract, aPageIsHandedOutWhateverItsStatus)
{
    mServer.on("/good", FaultReply::ok("page"));
    mServer.on("/bad", FaultReply::status(404, "sorry"));
    mServer.on("/moved", FaultReply::redirect("/good"));
    std::string body;
    EXPECT_TRUE(Curl::get().browseURL(mServer.url("/moved"), {}, body, true, 0));
    EXPECT_EQ(body, "page");
    EXPECT_FALSE(Curl::get().browseURL(mServer.url("/bad"), {}, body, true, 0));
    EXPECT_EQ(body, "sorry");
}

TEST_P(CurlContract, theAddressAfterRedirectsKeepsItsTrailingQuestionMark)
{
    mServer.on("/redirect", FaultReply::redirect("/content?"));
    mServer.on("/content", FaultReply::status(404));
    mServer.on("/content?", FaultReply::status(404));
    EXPECT_EQ(Curl::get().urlAfterRedirects(mServer.url("/redirect")), mServer.url("/content?"));
}

TEST_P(CurlContract, onlyAddressesOfTheWebAreDownloadable)
{
    EXPECT_TRUE(Curl::get().downloadable("http://host/x"));
    EXPECT_TRUE(Curl::get().downloadable("HTTPS://host"));
    for (const std::string text : {"", "/a/file", "file:///a", "ftp://host/x", "http://", "C:\\x"})
        EXPECT_FALSE(Curl::get().downloadable(text)) << text;
}

TEST_P(CurlContract, mayBeUsedFromEveryThread)
{
    mServer.on("/a", FaultReply::ok("new"));
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([&, thread] {
            for (int round = 0; round < 5; ++round) {
                const fileString file = mFolder.file("thread" + std::to_string(thread));
                std::string reason;
                EXPECT_TRUE(Curl::get().download_to_location(mServer.url("/a"), file, reason)) << reason;
                EXPECT_EQ(test::readFile(file), "new");
            }
        });
    for (std::thread& thread : threads)
        thread.join();
}

ORV_TEST_IMPLEMENTATIONS(CurlContract);

} // namespace
