#include "OrvHost/update/CarefulCurl.h"

#include <deque>

#include <gmock/gmock.h>

#include "OrvHost/update/ServiceAnswer.h"
#include "tests/support/TempFolder.h"

using OrvHost::CarefulCurl;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

const std::string kRedirect = "http://service.example/redirect";
const std::string kHeaderUrl = "http://service.example/c?&library=Doors.orvlib&product=P&version=1";
const std::string kIndexUrl = "http://service.example/c?&library=Index.txt&product=P&version=1";
const std::string kSound = "HTTP/1.1 200 OK\r\nETag: \"new\"\r\nContent-Length: 4\r\n\r\n";
const std::string kPage = "HTTP/1.1 200 OK\r\nContent-Type: Text/HTML\r\nContent-Length: 4\r\n\r\n";

/// Returns one prepared response per request and records the requests.
class ScriptedCurl : public Curl
{
public:
    struct Step
    {
        Answer answer;
        std::string body = {};
        int errorNumber = 0; ///< of a download; 0 for success
    };

    std::deque<Step> steps;
    std::vector<std::string> asked;
    std::vector<ResumableDownload> resumed;
    std::vector<std::string> announced; ///< "2 headers" and so on

    bool downloadable(const std::string&) override { return true; }
    fileString download(const std::string&) override { return {}; }
    bool download_to_location(const std::string&, const fileString&, std::string&) override { return false; }
    bool download_to_location(const std::string& url, const fileString& target,
                              const std::vector<std::string>&, void* context, ProgressFunction progress,
                              std::string& reason, int& errorNumber) override
    {
        const Step step = take(url);
        for (std::size_t bytes = 1; progress && bytes <= step.body.size(); ++bytes)
            progress(context, static_cast<double>(step.body.size()), static_cast<double>(bytes), 0, 0);
        reason = step.answer.reason;
        errorNumber = step.errorNumber;
        if (errorNumber == 0)
            test::writeFile(target.toNativeString(), step.body);
        return errorNumber == 0;
    }
    bool downloadResumable(const ResumableDownload& request, void* context, ProgressFunction progress,
                           std::string& reason, int& errorNumber) override
    {
        resumed.push_back(request);
        return download_to_location(request.url, request.target, {}, context, progress, reason, errorNumber);
    }
    bool getURLHeader(const std::string& url, const std::vector<std::string>&, std::string& headerText,
                      std::int64_t& status) override
    {
        const Step step = take(url);
        headerText = step.answer.headerText;
        status = step.answer.status;
        return status != 0;
    }
    bool browseURL(const std::string& url, const std::vector<std::string>&, std::string& body, bool,
                   int) override
    {
        const Step step = take(url);
        body = step.body;
        return step.answer.status == 200;
    }
    std::string urlAfterRedirects(const std::string& url) override
    {
        return take(url).answer.status == 0 ? std::string() : "http://service.example/c?";
    }
    Answer lastAnswer() override { return mLast; }
    void prefetchHeaders(const std::vector<HeaderRequest>& requests) override
    {
        announced.push_back(std::to_string(requests.size()) + " headers");
    }
    void prefetchDownloads(const std::vector<DownloadRequest>& requests) override
    {
        announced.push_back(std::to_string(requests.size()) + " downloads");
    }

private:
    Step take(const std::string& url)
    {
        asked.push_back(url);
        const Step step = steps.empty() ? Step{{0, "", "no answer prepared", ""}} : steps.front();
        if (!steps.empty())
            steps.pop_front();
        mLast = step.answer;
        return step;
    }

    Answer mLast;
};

class CarefulCurlTest : public testing::Test
{
protected:
    CarefulCurl careful(int retries = 3)
    {
        CarefulCurl::Settings settings;
        settings.url = kRedirect;
        settings.indexName = "Index.txt";
        settings.partialFolder = folder.file("partial");
        settings.retries.retries = retries;
        settings.retries.firstPause = std::chrono::milliseconds(1);
        settings.retries.isCancelled = [this] { return isCancelled; };
        return CarefulCurl(script, settings);
    }
    static ScriptedCurl::Step failure(const std::string& reason, int number = 0)
    {
        return {{0, "", reason, ""}, "", number};
    }
    static ScriptedCurl::Step busy(const std::string& line = "")
    {
        return {{503, "HTTP/1.1 503 Busy\r\n" + line + "\r\n", "HTTP 503", ""}, "", 22};
    }
    bool askHeader(CarefulCurl& curl)
    {
        std::string text;
        std::int64_t status = 0;
        return curl.getURLHeader(kHeaderUrl, {"If-None-Match: \"old\""}, text, status);
    }
    bool fetch(CarefulCurl& curl)
    {
        int number = 0;
        return curl.download_to_location(kHeaderUrl, folder.file("target"), {}, nullptr, nullptr, reason,
                                         number);
    }

    test::TempFolder folder;
    ScriptedCurl script;
    std::string reason;
    bool isCancelled = false;
};

} // namespace

TEST_F(CarefulCurlTest, busyAndBrokenHeaderRequestsAreMadeAgain)
{
    script.steps = {busy(),
                    failure("Recv failure: Connection reset by peer"),
                    busy("Retry-After: 0\r\n"),
                    {{200, kSound, "", ""}}};
    CarefulCurl curl = careful();
    EXPECT_TRUE(askHeader(curl));
    EXPECT_THAT(script.asked, SizeIs(4));
    const OrvHost::ServiceReport report = curl.report();
    ASSERT_THAT(report.catalogs, SizeIs(1));
    EXPECT_EQ("Doors.orvlib", report.catalogs[0].asked);
    EXPECT_EQ("old", report.catalogs[0].sentTag);
    EXPECT_EQ("new", report.catalogs[0].tag);
    EXPECT_EQ(4, report.catalogs[0].length);
    EXPECT_EQ("", report.catalogs[0].reason);
    EXPECT_TRUE(report.catalogs[0].isNew());
}

TEST_F(CarefulCurlTest, permanentFailureIsAskedOnce)
{
    for (const char* const text : {"Could not resolve host: service.example",
                                   "SSL certificate problem: unable to get local issuer certificate",
                                   "no answer from service.example:80 a moment ago: timed out"}) {
        script.asked.clear();
        script.steps = {failure(text)};
        CarefulCurl curl = careful();
        EXPECT_FALSE(askHeader(curl));
        EXPECT_THAT(script.asked, SizeIs(1));
        EXPECT_EQ(text, curl.report().catalogs[0].reason);
    }
}

TEST_F(CarefulCurlTest, longRetryAfterAndACancelEndTheTries)
{
    script.steps = {busy("Retry-After: 31\r\n")};
    CarefulCurl curl = careful();
    askHeader(curl);
    EXPECT_THAT(script.asked, SizeIs(1));
    isCancelled = true;
    script.steps = {busy()};
    askHeader(curl);
    EXPECT_THAT(script.asked, SizeIs(2));
    EXPECT_EQ("", curl.report().catalogs[0].reason) << "a cancel is no failure";
}

TEST_F(CarefulCurlTest, serviceThatIsDownIsAskedOnceForEachFurtherRequest)
{
    script.steps.assign(9, busy());
    CarefulCurl curl = careful(1);
    for (int request = 0; request < 4; ++request)
        askHeader(curl);
    EXPECT_THAT(script.asked, SizeIs(2 + 2 + 2 + 1));
}

TEST_F(CarefulCurlTest, webPageEndsAllRequests)
{
    script.steps = {{{200, kPage, "", ""}}};
    CarefulCurl curl = careful();
    EXPECT_FALSE(askHeader(curl));
    EXPECT_EQ(kRedirect + " answers with web pages (a login page?), not as a catalog service",
              curl.report().verdict);
    EXPECT_FALSE(askHeader(curl));
    EXPECT_FALSE(fetch(curl));
    EXPECT_EQ(curl.report().verdict, reason);
    EXPECT_EQ("", curl.urlAfterRedirects(kRedirect));
    EXPECT_EQ(curl.report().verdict, curl.lastAnswer().reason);
    EXPECT_THAT(script.asked, SizeIs(1));
}

TEST_F(CarefulCurlTest, nothingIsAnnouncedBehindAWebPageAndWhatWasIsDropped)
{
    CarefulCurl curl = careful();
    const auto announce = [&curl] {
        curl.prefetchHeaders({{kHeaderUrl, {}}});
        curl.prefetchDownloads({{kHeaderUrl, {}, fileString("a"), 1}});
    };
    announce();
    EXPECT_THAT(script.announced, testing::ElementsAre("1 headers", "1 downloads"));
    script.announced.clear();
    script.steps = {{{200, kPage, "", ""}}};
    EXPECT_FALSE(askHeader(curl));
    EXPECT_THAT(script.announced, testing::ElementsAre("0 headers", "0 downloads"));
    announce();
    EXPECT_THAT(script.announced, SizeIs(2));
}

TEST_F(CarefulCurlTest, indexHasItsNamesAndMarkupIsNone)
{
    CarefulCurl good = careful();
    std::string body;
    script.steps = {{{200, kSound, "", ""}, "Doors.orvlib\r\n\nRoofs.orvlib"}};
    EXPECT_TRUE(good.browseURL(kIndexUrl, {}, body, true, 0));
    EXPECT_EQ((std::set<std::string>{"Doors.orvlib", "Roofs.orvlib"}), good.report().indexNames);
    EXPECT_TRUE(good.report().index.isGood);
    CarefulCurl bad = careful();
    script.steps = {{{200, kSound, "", ""}, "\xef\xbb\xbf \n<html>"}};
    EXPECT_FALSE(bad.browseURL(kIndexUrl, {}, body, true, 0));
    EXPECT_FALSE(bad.report().index.isGood);
    EXPECT_NE("", bad.report().verdict);
}

TEST_F(CarefulCurlTest, bodyThatIsNotWhatWasAnnouncedIsRemoved)
{
    script.steps = {{{200, kSound, "", ""}}, {{200, kSound, "", ""}, "seventy"}};
    CarefulCurl curl = careful();
    askHeader(curl);
    EXPECT_FALSE(fetch(curl));
    EXPECT_EQ("another version than announced: 7 bytes instead of 4", reason);
    EXPECT_FALSE(folder.file("target").pathExists());
    script.steps = {{{200, "HTTP/1.1 200 OK\r\nETag: W/\"later\"\r\n\r\n", "", ""}, "four"}};
    EXPECT_FALSE(fetch(curl));
    EXPECT_EQ("another version than announced: tag later instead of new", reason);
    script.steps = {{{200, "HTTP/1.1 200 OK\r\nETag: W/\"new\"\r\n\r\n", "", ""}, "four"}};
    EXPECT_TRUE(fetch(curl));
    EXPECT_TRUE(curl.report().catalogs[0].isDownloaded);
    EXPECT_EQ(4, curl.report().catalogs[0].bytes);
}

TEST_F(CarefulCurlTest, reportTellsHowMuchOfABodyIsThereWhileItComes)
{
    script.steps = {{{200, kSound, "", ""}}, {{200, kSound, "", ""}, "body"}};
    CarefulCurl service = careful();
    ASSERT_TRUE(askHeader(service));
    struct Seen
    {
        CarefulCurl& service;
        std::vector<std::int64_t> received;
    } seen{service, {}};
    const auto look = [](void* context, double, double, double, double) {
        Seen& here = *static_cast<Seen*>(context);
        here.received.push_back(here.service.report().catalogs.front().received);
        return 0;
    };
    int errorNumber = 0;
    EXPECT_TRUE(service.download_to_location(kHeaderUrl, folder.file("Doors.download"), {}, &seen, look,
                                             reason, errorNumber));
    EXPECT_THAT(seen.received, testing::ElementsAre(1, 2, 3, 4));
    EXPECT_EQ(service.report().catalogs.front().received, 0);
    EXPECT_EQ(service.report().catalogs.front().bytes, 4);
}

TEST_F(CarefulCurlTest, brokenBodyIsResumedWithItsStrongTag)
{
    const ScriptedCurl::Step cut{{200, kSound, "transfer closed with 2 bytes remaining to read", ""}, "", 18};
    script.steps = {{{200, kSound, "", ""}}, cut, {{206, kSound, "", ""}, "four"}};
    CarefulCurl curl = careful();
    askHeader(curl);
    EXPECT_TRUE(fetch(curl));
    ASSERT_THAT(script.resumed, SizeIs(2));
    EXPECT_EQ("\"new\"", script.resumed[1].validator);
    EXPECT_EQ(script.resumed[0].partial, script.resumed[1].partial);
    EXPECT_EQ(folder.file("partial"), script.resumed[0].partial.parentPath());
}

TEST_F(CarefulCurlTest, fileThatCannotBeWrittenIsNotTriedAgain)
{
    script.steps = {{{200, kSound, "", ""}},
                    {{200, kSound, "write error: No space left on device", ""}, "", 23}};
    CarefulCurl curl = careful();
    askHeader(curl);
    EXPECT_FALSE(fetch(curl));
    EXPECT_EQ("write error: No space left on device", curl.report().catalogs[0].reason);
    EXPECT_THAT(script.asked, SizeIs(2));
}

TEST(ServiceAnswer, retryAfterIsSecondsOrADate)
{
    using OrvHost::ServiceAnswer::retryAfter;
    EXPECT_EQ(std::chrono::seconds(7), retryAfter("Retry-After: 7\r\n"));
    EXPECT_EQ(std::chrono::seconds(0), retryAfter("Retry-After: Sun, 06 Nov 1994 08:49:37 GMT\r\n"));
    EXPECT_GT(*retryAfter("Retry-After: Fri, 31 Dec 2100 23:59:59 GMT\r\n"), std::chrono::hours(1));
    EXPECT_EQ(std::nullopt, retryAfter("Retry-After: soon\r\n"));
    EXPECT_EQ(std::nullopt, retryAfter(""));
}

TEST(ServiceAnswer, validatorIsAStrongTagOrADate)
{
    using OrvHost::ServiceAnswer::validator;
    EXPECT_EQ("\"a\"", validator("ETag: \"a\"\r\nLast-Modified: then\r\n"));
    EXPECT_EQ("then", validator("ETag: W/\"a\"\r\nLast-Modified: then\r\n"));
    EXPECT_EQ("", validator("ETag: W/\"a\"\r\n"));
}
