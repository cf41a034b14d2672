#include <deque>
#include <filesystem>
#include <thread>

#include <gmock/gmock.h>

#include "OrvHost/update/CarefulCurl.h"
#include "tests/support/StubServices.h"
#include "tests/support/TempFolder.h"

using OrvHost::CarefulCurl;
using OrvHost::CatalogReport;
using OrvHost::PartialFiles;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

namespace {

constexpr std::int64_t kMoreThanAnyDisk = std::int64_t{1} << 60;
const std::string kUrl = "http://service.example/c?&library=Doors.orvlib&product=P&version=1";
const std::string kTag = "ETag: \"new\"\r\n";

/// Answers header requests with the prepared lines, and downloads with the next of the prepared bodies.
class BodyService : public test::DeadCurl
{
public:
    struct Body
    {
        std::string content;
        std::int64_t status = 200;
        int errorNumber = 0; ///< 0 for success
        std::string reason = {};
    };

    std::string lines = kTag + "Content-Length: 4\r\n";
    std::deque<Body> bodies;
    std::string bodyLines = kTag;
    std::function<void()> onBody = [] {};
    std::vector<fileString> partials; ///< of each download; empty where it was not resumable
    std::vector<int> told;            ///< what the progress function returned
    std::vector<std::string> announced;

    bool getURLHeader(const std::string&, const std::vector<std::string>&, std::string& headerText,
                      std::int64_t& status) override
    {
        mLast = {200, "HTTP/1.1 200 OK\r\n" + lines + "\r\n", "", ""};
        headerText = mLast.headerText;
        status = mLast.status;
        return true;
    }
    using DeadCurl::download_to_location;
    bool download_to_location(const std::string&, const fileString& target, const std::vector<std::string>&,
                              void* context, ProgressFunction progress, std::string& reason,
                              int& errorNumber) override
    {
        return send(fileString(), target, context, progress, reason, errorNumber);
    }
    bool downloadResumable(const ResumableDownload& request, void* context, ProgressFunction progress,
                           std::string& reason, int& errorNumber) override
    {
        return send(request.partial, request.target, context, progress, reason, errorNumber);
    }
    void prefetchDownloads(const std::vector<DownloadRequest>& requests) override
    {
        announced.clear();
        for (const DownloadRequest& request : requests)
            announced.push_back(request.url);
    }
    Answer lastAnswer() override { return mLast; }

private:
    bool send(const fileString& partial, const fileString& target, void* context, ProgressFunction progress,
              std::string& reason, int& errorNumber)
    {
        partials.push_back(partial);
        onBody();
        const Body body = bodies.front();
        bodies.pop_front();
        const auto size = static_cast<double>(body.content.size());
        told.push_back(progress(context, size, size, 0, 0));
        mLast = {body.status, "HTTP/1.1 200 OK\r\n" + bodyLines + "\r\n", body.reason, ""};
        reason = body.reason;
        errorNumber = body.errorNumber;
        if (errorNumber == 0)
            test::writeFile(target.toNativeString(), body.content);
        return errorNumber == 0;
    }

    Answer mLast;
};

class CarefulCurlDownload : public testing::Test
{
protected:
    CarefulCurl careful(std::int64_t reserve = 0)
    {
        CarefulCurl::Settings settings;
        settings.partialFolder = partialFolder;
        settings.diskReserve = reserve;
        settings.retries.retries = 2;
        settings.retries.firstPause = std::chrono::milliseconds(0);
        settings.retries.isCancelled = [this] { return isCancelled; };
        return CarefulCurl(service, settings);
    }
    static void askHeader(CarefulCurl& curl)
    {
        std::string text;
        std::int64_t status = 0;
        curl.getURLHeader(kUrl, {}, text, status);
    }
    bool fetch(CarefulCurl& curl)
    {
        reason.clear();
        number = 0;
        return curl.download_to_location(kUrl, target, {}, nullptr, nullptr, reason, number);
    }
    /// The reason for refusing a body of this length on a disk without room.
    std::string refusal(const std::string& length)
    {
        service.lines = kTag + length;
        CarefulCurl curl = careful(kMoreThanAnyDisk);
        askHeader(curl);
        EXPECT_FALSE(fetch(curl));
        return reason;
    }
    static CatalogReport reportOf(const CarefulCurl& curl) { return curl.report().catalogs.at(0); }

    test::TempFolder folder;
    BodyService service;
    const fileString target = folder.file("target");
    fileString partialFolder = folder.file("partial");
    std::string reason;
    int number = 0;
    bool isCancelled = false;
};

} // namespace

TEST_F(CarefulCurlDownload, bodyIsPutIntoThePartialFileOfItsVersion)
{
    service.bodies = {{"four"}, {"four"}};
    CarefulCurl curl = careful();
    askHeader(curl);
    EXPECT_TRUE(fetch(curl));
    EXPECT_THAT(service.told, ElementsAre(0));
    service.lines = "ETag: W/\"new\"\r\nContent-Length: 4\r\n"; // does not identify the bytes
    askHeader(curl);
    EXPECT_TRUE(fetch(curl));
    const fileString partial =
        PartialFiles(partialFolder).fileFor("http://service.example/c?Doors.orvlib", "\"new\"");
    EXPECT_THAT(service.partials, ElementsAre(partial, fileString()));
}

TEST_F(CarefulCurlDownload, nothingIsKeptWithoutAFolder)
{
    partialFolder = {};
    service.bodies = {{"four"}};
    CarefulCurl curl = careful();
    askHeader(curl);
    EXPECT_TRUE(fetch(curl));
    EXPECT_THAT(service.partials, ElementsAre(fileString()));
}

TEST_F(CarefulCurlDownload, refusedBodyHasTheNumberOfASenselessAnswer)
{
    service.bodies = {{"seventy"}, {"<html>"}};
    CarefulCurl curl = careful();
    askHeader(curl);
    EXPECT_FALSE(fetch(curl));
    EXPECT_EQ(number, 8);
    service.bodyLines = "Content-Type: text/html\r\n";
    EXPECT_FALSE(fetch(curl));
    EXPECT_EQ(number, 8);
    EXPECT_EQ(reason, "a web page instead of a catalog");
    EXPECT_FALSE(target.pathExists());
    EXPECT_FALSE(fetch(curl)) << "no request is made any more";
    EXPECT_EQ(number, 8);
    EXPECT_THAT(reason, StartsWith("http://service.example/c answers with web pages"));
    EXPECT_THAT(service.partials, SizeIs(2));
}

TEST_F(CarefulCurlDownload, onlyWhatWasAnnouncedIsCompared)
{
    service.lines = kTag;
    service.bodies = {{"any length"}};
    CarefulCurl curl = careful();
    askHeader(curl);
    EXPECT_TRUE(fetch(curl));
    EXPECT_EQ(reportOf(curl).bytes, 10);
    service.lines = "Content-Length: 4\r\n";
    service.bodies = {{"four"}};
    askHeader(curl);
    EXPECT_TRUE(fetch(curl));
    service.lines = kTag;
    service.bodies = {{"four"}};
    service.bodyLines.clear();
    askHeader(curl);
    EXPECT_TRUE(fetch(curl));
}

TEST_F(CarefulCurlDownload, reportHasTheLastBody)
{
    service.bodies = {{"", 503, 22, "HTTP 503"}, {"four"}, {"", 404, 22, "HTTP 404"}};
    service.onBody = [] { std::this_thread::sleep_for(std::chrono::milliseconds(20)); };
    CarefulCurl curl = careful();
    askHeader(curl);
    EXPECT_TRUE(fetch(curl));
    CatalogReport report = reportOf(curl);
    EXPECT_TRUE(report.isDownloadTried);
    EXPECT_TRUE(report.isDownloaded);
    EXPECT_EQ(report.bodyStatus, 200);
    EXPECT_EQ(report.bytes, 4);
    EXPECT_EQ(report.reason, "");
    EXPECT_GE(report.time, std::chrono::milliseconds(40));
    EXPECT_FALSE(fetch(curl));
    report = reportOf(curl);
    EXPECT_FALSE(report.isDownloaded);
    EXPECT_EQ(report.bodyStatus, 404);
    EXPECT_EQ(report.bytes, 0);
    EXPECT_EQ(report.reason, "HTTP 404");
    EXPECT_EQ(number, 22);
    EXPECT_GE(report.time, std::chrono::milliseconds(60));
}

TEST_F(CarefulCurlDownload, cancelledBodyHasNoReason)
{
    service.bodies = {{"", 200, Curl::kAbortedByCallback, "aborted"}};
    service.onBody = [this] { isCancelled = true; };
    CarefulCurl curl = careful();
    askHeader(curl);
    EXPECT_FALSE(fetch(curl));
    EXPECT_EQ(reportOf(curl).reason, "");
    EXPECT_TRUE(reportOf(curl).isDownloadTried);
}

TEST_F(CarefulCurlDownload, everyBodyHasItsOwnTries)
{
    const BodyService::Body busy{"", 503, 22, "HTTP 503"};
    CarefulCurl curl = careful();
    askHeader(curl);
    for (int body = 0; body < 2; ++body) {
        service.bodies = {busy, busy, {"four"}};
        EXPECT_TRUE(fetch(curl)) << body;
    }
    service.bodies = {busy, busy, busy, {"four"}};
    EXPECT_FALSE(fetch(curl));
    EXPECT_THAT(service.bodies, SizeIs(1));
}

TEST_F(CarefulCurlDownload, bodyThatArrivedShowsThatTheServiceIsNotDown)
{
    const BodyService::Body busy{"", 503, 22, "HTTP 503"};
    CarefulCurl curl = careful();
    askHeader(curl);
    for (int round = 0; round < 2; ++round) {
        for (int body = 0; body < 2; ++body) {
            service.bodies = {busy, busy, busy};
            EXPECT_FALSE(fetch(curl));
            EXPECT_THAT(service.bodies, IsEmpty()) << "after " << round << " sound bodies";
        }
        service.bodies = {{"four"}};
        EXPECT_TRUE(fetch(curl));
    }
}

TEST_F(CarefulCurlDownload, bytesAreCountedFromTheBeginningOfEachBody)
{
    service.bodies = {{"four"}, {"four"}};
    CarefulCurl curl = careful();
    askHeader(curl);
    std::vector<std::int64_t> received;
    service.onBody = [&] { received.push_back(reportOf(curl).received); };
    fetch(curl);
    fetch(curl);
    EXPECT_THAT(received, ElementsAre(0, 0));
}

TEST_F(CarefulCurlDownload, neededRoomIsToldRoundedUp)
{
    for (const auto& [length, text] : {std::pair("0", "0 bytes"),
                                       {"999", "999 bytes"},
                                       {"1000", "1 KB"},
                                       {"1001", "2 KB"},
                                       {"999001", "1 MB"},
                                       {"1000000", "1 MB"},
                                       {"2000000000", "2 GB"},
                                       {"3000000000001", "4 TB"}})
        EXPECT_THAT(refusal("Content-Length: " + std::string(length) + "\r\n"),
                    StartsWith("disk full: " + std::string(text) + " needed, "));
    EXPECT_THAT(refusal(""), StartsWith("disk full: 0 bytes needed, "));
    EXPECT_EQ(number, 23);
    EXPECT_THAT(service.partials, IsEmpty());
}

TEST_F(CarefulCurlDownload, bytesOfThePartialFileNeedNoRoom)
{
    const fileString partial =
        PartialFiles(partialFolder).fileFor("http://service.example/c?Doors.orvlib", "\"new\"");
    EXPECT_THAT(refusal("Content-Length: 4\r\n"), HasSubstr(" 4 bytes needed"));
    test::writeFile(partial.toNativeString(), "xxx");
    EXPECT_THAT(refusal("Content-Length: 4\r\n"), HasSubstr(" 1 bytes needed"));
}

TEST_F(CarefulCurlDownload, announcedDownloadsAreNotCheckedForRoomAgain)
{
    service.lines = kTag + "Content-Length: " + std::to_string(kMoreThanAnyDisk) + "\r\n";
    CarefulCurl curl = careful(1);
    askHeader(curl);
    curl.prefetchDownloads({{kUrl, {}, target, 1}});
    service.bodies = {{"four"}};
    EXPECT_FALSE(fetch(curl));
    EXPECT_THAT(reason, StartsWith("another version than announced"));
    curl.prefetchDownloads({});
    EXPECT_FALSE(fetch(curl));
    EXPECT_THAT(reason, StartsWith("disk full"));
}

TEST_F(CarefulCurlDownload, everythingFetchedAheadMustFitTogether)
{
    const auto free = static_cast<std::int64_t>(std::filesystem::space(folder.path()).available);
    CarefulCurl curl = careful(1);
    curl.prefetchDownloads({{"a", {}, folder.file("a"), free / 5 * 3},
                            {"b", {}, folder.file("b"), free / 5 * 3},
                            {"c", {}, folder.file("c"), 1}});
    EXPECT_THAT(service.announced, ElementsAre("a", "c"));
}
